<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>1.1.1;HELLO</name>
    <message>
        <source>Hello</source>
        <translation>Hello</translation>
    </message>
    <message>
        <source>Say something</source>
        <translation>Say something</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Options</translation>
    </message>
    <message>
        <source>Language: %1</source>
        <translation>Language: %1</translation>
    </message>
    <message>
        <source>You said: %1</source>
        <translation>You said: %1</translation>
    </message>
    <message>
        <source>Message: %1</source>
        <translation>Message: %1</translation>
    </message>
    <message>
        <source>Open: %1</source>
        <translation>Open: %1</translation>
    </message>
    <message>
        <source>Good bye</source>
        <translation>Good bye</translation>
    </message>
    <message>
        <source>Hello, phone!</source>
        <translation>Hello, phone!</translation>
    </message>
    <message>
        <source>All lines will be gone.</source>
        <translation>All lines will be gone.</translation>
    </message>
</context>
<context>
    <name>1.1.2;MENU</name>
    <message>
        <source>Clear the list</source>
        <translation>Clear the list</translation>
    </message>
    <message>
        <source>Say hello</source>
        <translation>Say hello</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Exit</translation>
    </message>
</context>
</TS>
