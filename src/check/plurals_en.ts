<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>CheckWords</name>
    <message numerus="yes">
        <source>%n assessment(s) have a number above 32,767: deleting them fails.</source>
        <translation>
            <numerusform>%n assessment has a number above 32,767: deleting it fails.</numerusform>
            <numerusform>%n assessments have a number above 32,767: deleting them fails.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n topic(s) have a number above 32,767: changing what is in them fails.</source>
        <translation>
            <numerusform>%n topic has a number above 32,767: changing what is in it fails.</numerusform>
            <numerusform>%n topics have a number above 32,767: changing what is in them fails.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n subtopic(s) have a number above 32,767: changing what is in them fails.</source>
        <translation>
            <numerusform>%n subtopic has a number above 32,767: changing what is in it fails.</numerusform>
            <numerusform>%n subtopics have a number above 32,767: changing what is in them fails.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) have a number above 32,767: editing them fails.</source>
        <translation>
            <numerusform>%n question has a number above 32,767: editing it fails.</numerusform>
            <numerusform>%n questions have a number above 32,767: editing them fails.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) are in the trash now.</source>
        <translation>
            <numerusform>%n question is in the trash now.</numerusform>
            <numerusform>%n questions are in the trash now.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The place of %n question(s) is back.</source>
        <translation>
            <numerusform>The place of %n question is back.</numerusform>
            <numerusform>The places of %n questions are back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n text(s) can be saved again.</source>
        <translation>
            <numerusform>%n text can be saved again.</numerusform>
            <numerusform>%n texts can be saved again.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>varnholt::frmCheck</name>
    <message numerus="yes">
        <source>Stopped after %n thing(s) to look at.</source>
        <translation>
            <numerusform>Stopped after %n thing to look at.</numerusform>
            <numerusform>Stopped after %n things to look at.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n thing(s) to look at.</source>
        <translation>
            <numerusform>%n thing to look at.</numerusform>
            <numerusform>%n things to look at.</numerusform>
        </translation>
    </message>
</context>
</TS>
