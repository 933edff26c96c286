// A phone that sleeps: its screen is black, and no key and no pen reaches anything. In the GUI server; elsewhere these
// functions do nothing.
#pragma once

#include "platform/tyxexport.h"

TYX_EXPORT void SetGuiToSuspension(); // name fixed; also the message "SetGuiToSuspension()" on "TYX/System"

// Everything is as before; also the message "SetGuiToResume()" on "TYX/System", and the key of the flip (F3) coming up,
// which is the flip being opened.
TYX_EXPORT void SetGuiToResume();

TYX_EXPORT bool isGuiSuspended(); // false in every process but the GUI server
