<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>1.1.1;HELLO</name>
    <message>
        <source>Hello</source>
        <translation>Hallo</translation>
    </message>
    <message>
        <source>Say something</source>
        <translation>Sagen Sie etwas</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Language: %1</source>
        <translation>Sprache: %1</translation>
    </message>
    <message>
        <source>You said: %1</source>
        <translation>Sie sagten: %1</translation>
    </message>
    <message>
        <source>Message: %1</source>
        <translation>Nachricht: %1</translation>
    </message>
    <message>
        <source>Open: %1</source>
        <translation>Öffnen: %1</translation>
    </message>
    <message>
        <source>Good bye</source>
        <translation>Auf Wiedersehen</translation>
    </message>
    <message>
        <source>Hello, phone!</source>
        <translation>Hallo, Telefon!</translation>
    </message>
    <message>
        <source>All lines will be gone.</source>
        <translation>Alle Zeilen gehen verloren.</translation>
    </message>
</context>
<context>
    <name>1.1.2;MENU</name>
    <message>
        <source>Clear the list</source>
        <translation>Liste leeren</translation>
    </message>
    <message>
        <source>Say hello</source>
        <translation>Hallo sagen</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
</context>
</TS>
