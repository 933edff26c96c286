#include "appbase/application/phonestatus.h"

// FIXME: the status table of the phone is missing; these are the answers of a phone that was never set up.
SoundInfo touchPanelSoundInfo() { return {2, 7}; }

SoundInfo hardKeySoundInfo() { return {2, 7}; }

bool callComesIn() { return false; }
