<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>1.2.1;NOTES</name>
    <message>
        <source>Notes</source>
        <translation>Notes</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>New</source>
        <translation>New</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>Notes: %1</source>
        <translation>Notes: %1</translation>
    </message>
    <message>
        <source>Saved: %1</source>
        <translation>Saved: %1</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Not saved: %1</translation>
    </message>
    <message>
        <source>The note could not be saved.</source>
        <translation>The note could not be saved.</translation>
    </message>
</context>
</TS>
