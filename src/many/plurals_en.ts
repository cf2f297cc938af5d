<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>varnholt::frmAddMany</name>
    <message numerus="yes">
        <source>%n file(s) could not be taken in.</source>
        <translation>
            <numerusform>%n file could not be taken in.</numerusform>
            <numerusform>%n files could not be taken in.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s) to be saved</source>
        <translation>
            <numerusform>%n picture to be saved</numerusform>
            <numerusform>%n pictures to be saved</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n saved</source>
        <translation>
            <numerusform>%n saved</numerusform>
            <numerusform>%n saved</numerusform>
        </translation>
    </message>
</context>
</TS>
