// What the input filters ask about the phone, in one place.
#pragma once

#include "appbase/application/soundinfo.h"

SoundInfo touchPanelSoundInfo();
SoundInfo hardKeySoundInfo();

bool callComesIn(); // it rings, and nobody has answered or rejected it yet
