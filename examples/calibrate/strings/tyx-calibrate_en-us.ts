<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>1.3.1;CALIBRATE</name>
    <message>
        <source>Touch panel</source>
        <translation>Touch panel</translation>
    </message>
    <message>
        <source>These places are too close together.</source>
        <translation>These places are too close together.</translation>
    </message>
    <message>
        <source>These places do not fit together: off by %1 pixels.</source>
        <translation>These places do not fit together: off by %1 pixels.</translation>
    </message>
    <message>
        <source>It cannot be stored.</source>
        <translation>It cannot be stored.</translation>
    </message>
    <message>
        <source>Done. Off by %1 pixels at most.</source>
        <translation>Done. Off by %1 pixels at most.</translation>
    </message>
    <message>
        <source>Touch the screen to close.</source>
        <translation>Touch the screen to close.</translation>
    </message>
    <message>
        <source>Touch the middle of the bright cross.</source>
        <translation>Touch the middle of the bright cross.</translation>
    </message>
</context>
</TS>
