<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>1.3.1;CALIBRATE</name>
    <message>
        <source>Touch panel</source>
        <translation>Berührungsfeld</translation>
    </message>
    <message>
        <source>These places are too close together.</source>
        <translation>Diese Stellen liegen zu nah beieinander.</translation>
    </message>
    <message>
        <source>These places do not fit together: off by %1 pixels.</source>
        <translation>Diese Stellen passen nicht zusammen: um %1 Pixel daneben.</translation>
    </message>
    <message>
        <source>It cannot be stored.</source>
        <translation>Es kann nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Done. Off by %1 pixels at most.</source>
        <translation>Fertig. Höchstens %1 Pixel daneben.</translation>
    </message>
    <message>
        <source>Touch the screen to close.</source>
        <translation>Zum Schließen den Bildschirm berühren.</translation>
    </message>
    <message>
        <source>Touch the middle of the bright cross.</source>
        <translation>Die Mitte des hellen Kreuzes berühren.</translation>
    </message>
</context>
</TS>
