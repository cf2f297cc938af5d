<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>varnholt::frmTrash</name>
    <message numerus="yes">
        <source>%n of these cannot be brought back, %1 among them. The library no longer has the places where they were, so that nobody would see them.</source>
        <translation>
            <numerusform>%n of these cannot be brought back, %1. The library no longer has the place where it was, so that nobody would see it.</numerusform>
            <numerusform>%n of these cannot be brought back, %1 among them. The library no longer has the places where they were, so that nobody would see them.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 and %n more are back.</source>
        <translation>
            <numerusform>%1 and %n more are back.</numerusform>
            <numerusform>%1 and %n more are back.</numerusform>
        </translation>
    </message>
</context>
</TS>
