<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en_US">
<context>
    <name>1.3.1;CALIBRATE</name>
    <message>
        <source>Touch panel</source>
        <translation>Écran tactile</translation>
    </message>
    <message>
        <source>These places are too close together.</source>
        <translation>Ces points sont trop proches.</translation>
    </message>
    <message>
        <source>These places do not fit together: off by %1 pixels.</source>
        <translation>Ces points ne concordent pas : écart de %1 pixels.</translation>
    </message>
    <message>
        <source>It cannot be stored.</source>
        <translation>Impossible d’enregistrer.</translation>
    </message>
    <message>
        <source>Done. Off by %1 pixels at most.</source>
        <translation>Terminé. Écart maximal : %1 pixels.</translation>
    </message>
    <message>
        <source>Touch the screen to close.</source>
        <translation>Touchez l’écran pour fermer.</translation>
    </message>
    <message>
        <source>Touch the middle of the bright cross.</source>
        <translation>Touchez le centre de la croix claire.</translation>
    </message>
</context>
</TS>
