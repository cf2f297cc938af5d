<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>SlideWishes</name>
    <message numerus="yes">
        <source>moving on after %n second(s)</source>
        <translation>
            <numerusform>moving on after one second</numerusform>
            <numerusform>moving on after %n seconds</numerusform>
        </translation>
    </message>
</context>
</TS>
