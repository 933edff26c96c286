<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>1.2.1;DOODLE</name>
    <message>
        <source>Doodle</source>
        <translation>Kritzeln</translation>
    </message>
    <message>
        <source>Draw here</source>
        <translation>Hier zeichnen</translation>
    </message>
</context>
</TS>
