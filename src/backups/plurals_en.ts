<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>BackupWords</name>
    <message numerus="yes">
        <source>The newest good backup (%1) holds %n question(s).</source>
        <translation>
            <numerusform>The newest good backup (%1) holds %n question.</numerusform>
            <numerusform>The newest good backup (%1) holds %n questions.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) come back.</source>
        <translation>
            <numerusform>%n question comes back.</numerusform>
            <numerusform>%n questions come back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n answer(s) change.</source>
        <translation>
            <numerusform>%n answer changes.</numerusform>
            <numerusform>%n answers change.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) move to another place.</source>
        <translation>
            <numerusform>%n question moves to another place.</numerusform>
            <numerusform>%n questions move to another place.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n newer question(s) go to the trash.</source>
        <translation>
            <numerusform>%n newer question goes to the trash.</numerusform>
            <numerusform>%n newer questions go to the trash.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) that had been brought back go to the trash again.</source>
        <translation>
            <numerusform>%n question that had been brought back goes to the trash again.</numerusform>
            <numerusform>%n questions that had been brought back go to the trash again.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n assessment(s), topic(s) or subtopic(s) come, go or change their names.</source>
        <translation>
            <numerusform>%n assessment, topic or subtopic comes, goes or changes its name.</numerusform>
            <numerusform>%n assessments, topics or subtopics come, go or change their names.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n missing picture(s) are put back.</source>
        <translation>
            <numerusform>%n missing picture is put back.</numerusform>
            <numerusform>%n missing pictures are put back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n picture(s) change; the present ones are kept beside them.</source>
        <translation>
            <numerusform>%n picture changes; the present one is kept beside it.</numerusform>
            <numerusform>%n pictures change; the present ones are kept beside them.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>varnholt::frmBackups</name>
    <message numerus="yes">
        <source>The backup is made without %n picture(s) that cannot be read.</source>
        <translation>
            <numerusform>The backup is made without %n picture that cannot be read.</numerusform>
            <numerusform>The backup is made without %n pictures that cannot be read.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) of this backup are damaged; the next backup puts good ones there where the library has them.</source>
        <translation>
            <numerusform>%n file of this backup is damaged; the next backup puts a good one there if the library has it.</numerusform>
            <numerusform>%n files of this backup are damaged; the next backup puts good ones there where the library has them.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The library is restored, but %n picture(s) could not be put back.</source>
        <translation>
            <numerusform>The library is restored, but %n picture could not be put back.</numerusform>
            <numerusform>The library is restored, but %n pictures could not be put back.</numerusform>
        </translation>
    </message>
</context>
</TS>
