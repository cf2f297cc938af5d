<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>DrawWishes</name>
    <message numerus="yes">
        <source>%1 has only %2: %n place(s) free.</source>
        <translation>
            <numerusform>%1 has only %2: one place is free.</numerusform>
            <numerusform>%1 has only %2: %n places are free.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Used %n time(s), last on %1.</source>
        <translation>
            <numerusform>Used %n time, last on %1.</numerusform>
            <numerusform>Used %n times, last on %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Used %n time(s), last on %1 with %2.</source>
        <translation>
            <numerusform>Used %n time, last on %1 with %2.</numerusform>
            <numerusform>Used %n times, last on %1 with %2.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PastBuild</name>
    <message numerus="yes">
        <source>%n answer(s) have changed since. Use the new ones?</source>
        <translation>
            <numerusform>%n answer has changed since. Use the new one?</numerusform>
            <numerusform>%n answers have changed since. Use the new ones?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>TestRecord</name>
    <message numerus="yes">
        <source>%1 – %n question(s)</source>
        <translation>
            <numerusform>%1 – %n question</numerusform>
            <numerusform>%1 – %n questions</numerusform>
        </translation>
    </message>
</context>
</TS>
