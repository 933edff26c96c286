// What a key types. Pure.
#pragma once

#include "platform/window/windowserverbackend.h"

#include <QString>

// The character given with the stroke when there is one, else what the key code stands for.
QString keyText(const KeyStroke &stroke);

// The key code of a stroke that brings only a character.
int keyCode(const KeyStroke &stroke);

// Keys that type or move repeat while they are held; function keys, modifiers and the phone's hard keys do not.
bool repeats(const KeyStroke &stroke);
