<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>varnholt::frmPaper</name>
    <message numerus="yes">
        <source>%n question(s) have no picture that can be shown. A sentence stands in its place.</source>
        <translation>
            <numerusform>%n question has no picture that can be shown. A sentence stands in its place.</numerusform>
            <numerusform>%n questions have no picture that can be shown. A sentence stands in place of each.</numerusform>
        </translation>
    </message>
</context>
</TS>
