<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>varnholt::frmFromPdf</name>
    <message numerus="yes">
        <source>%n page(s) could not be looked at.</source>
        <translation>
            <numerusform>%n page could not be looked at.</numerusform>
            <numerusform>%n pages could not be looked at.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s)</source>
        <translation>
            <numerusform>%n picture</numerusform>
            <numerusform>%n pictures</numerusform>
        </translation>
    </message>
</context>
</TS>
