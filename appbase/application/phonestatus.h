// What the input filters ask about the phone, in one place; the answers come from the status table.
#pragma once

#include "settings/status/systemstatus.h"

// Silence when there is no table.
SoundInfo touchPanelSoundInfo();

bool callComesIn(); // it rings, and nobody has answered or rejected it yet
