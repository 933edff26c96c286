<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>1.2.1;DOODLE</name>
    <message>
        <source>Doodle</source>
        <translation>Doodle</translation>
    </message>
    <message>
        <source>Draw here</source>
        <translation>Draw here</translation>
    </message>
</context>
</TS>
