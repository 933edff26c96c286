<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en_US">
<context>
    <name>1.1.1;HELLO</name>
    <message>
        <source>Hello</source>
        <translation>Bonjour</translation>
    </message>
    <message>
        <source>Say something</source>
        <translation>Dites quelque chose</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Options</translation>
    </message>
    <message>
        <source>Language: %1</source>
        <translation>Langue : %1</translation>
    </message>
    <message>
        <source>You said: %1</source>
        <translation>Vous avez dit : %1</translation>
    </message>
    <message>
        <source>Message: %1</source>
        <translation>Message : %1</translation>
    </message>
    <message>
        <source>Open: %1</source>
        <translation>Ouvrir : %1</translation>
    </message>
    <message>
        <source>Good bye</source>
        <translation>Au revoir</translation>
    </message>
    <message>
        <source>Hello, phone!</source>
        <translation>Bonjour, téléphone !</translation>
    </message>
    <message>
        <source>All lines will be gone.</source>
        <translation>Toutes les lignes seront perdues.</translation>
    </message>
</context>
<context>
    <name>1.1.2;MENU</name>
    <message>
        <source>Clear the list</source>
        <translation>Vider la liste</translation>
    </message>
    <message>
        <source>Say hello</source>
        <translation>Dire bonjour</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Quitter</translation>
    </message>
</context>
</TS>
