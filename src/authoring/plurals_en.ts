<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>varnholt::frmAddNewQuestion</name>
    <message numerus="yes">
        <source>%n saved</source>
        <translation>
            <numerusform>%n saved</numerusform>
            <numerusform>%n saved</numerusform>
        </translation>
    </message>
</context>
</TS>
