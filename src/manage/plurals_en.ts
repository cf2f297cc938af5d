<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>UndoWords</name>
    <message numerus="yes">
        <source>%n question(s) added.</source>
        <translation>
            <numerusform>Question added.</numerusform>
            <numerusform>%n questions added.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>“%1” and %n more added.</source>
        <translation>
            <numerusform>“%1” and one more added.</numerusform>
            <numerusform>“%1” and %n more added.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) deleted.</source>
        <translation>
            <numerusform>Question deleted.</numerusform>
            <numerusform>%n questions deleted.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>“%1” and %n more deleted.</source>
        <translation>
            <numerusform>“%1” and one more deleted.</numerusform>
            <numerusform>“%1” and %n more deleted.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) brought back.</source>
        <translation>
            <numerusform>Question brought back.</numerusform>
            <numerusform>%n questions brought back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>“%1” and %n more brought back.</source>
        <translation>
            <numerusform>“%1” and one more brought back.</numerusform>
            <numerusform>“%1” and %n more brought back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n question(s) changed.</source>
        <translation>
            <numerusform>Question changed.</numerusform>
            <numerusform>%n questions changed.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>“%1” and %n more changed.</source>
        <translation>
            <numerusform>“%1” and one more changed.</numerusform>
            <numerusform>“%1” and %n more changed.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: %n question(s) are no longer there.</source>
        <translation>
            <numerusform>Undone: the question is no longer there.</numerusform>
            <numerusform>Undone: %n questions are no longer there.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: “%1” and %n more are no longer there.</source>
        <translation>
            <numerusform>Undone: “%1” and one more are no longer there.</numerusform>
            <numerusform>Undone: “%1” and %n more are no longer there.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: %n question(s) are back.</source>
        <translation>
            <numerusform>Undone: the question is back.</numerusform>
            <numerusform>Undone: %n questions are back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: “%1” and %n more are back.</source>
        <translation>
            <numerusform>Undone: “%1” and one more are back.</numerusform>
            <numerusform>Undone: “%1” and %n more are back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: %n question(s) are deleted again.</source>
        <translation>
            <numerusform>Undone: the question is deleted again.</numerusform>
            <numerusform>Undone: %n questions are deleted again.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: “%1” and %n more are deleted again.</source>
        <translation>
            <numerusform>Undone: “%1” and one more are deleted again.</numerusform>
            <numerusform>Undone: “%1” and %n more are deleted again.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: %n question(s) are as before.</source>
        <translation>
            <numerusform>Undone: the question is as it was.</numerusform>
            <numerusform>Undone: %n questions are as they were.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: “%1” and %n more are as before.</source>
        <translation>
            <numerusform>Undone: “%1” and one more are as they were.</numerusform>
            <numerusform>Undone: “%1” and %n more are as they were.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n more</source>
        <translation>
            <numerusform>%n more</numerusform>
            <numerusform>%n more</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>It is noted how many knew %n question(s).</source>
        <translation>
            <numerusform>It is noted how many knew the question.</numerusform>
            <numerusform>It is noted how many knew these %n questions.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Undone: how many knew %n question(s) is as before.</source>
        <translation>
            <numerusform>Undone: how many knew the question is as before.</numerusform>
            <numerusform>Undone: how many knew these %n questions is as before.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>varnholt::frmAddSeveral</name>
    <message numerus="yes">
        <source>%n more line(s) cannot be saved either.</source>
        <translation>
            <numerusform>One more line cannot be saved either.</numerusform>
            <numerusform>%n more lines cannot be saved either.</numerusform>
        </translation>
    </message>
</context>
</TS>
