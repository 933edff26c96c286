// The drivers of the phone's own devices, in the GUI server.
#pragma once

#include "input/devices/qwstyxbuttonshandler.h"

// Part of the server's application object. Made before the status table is initialised, which asks for flip and
// headset.
class InputDrivers {
public:
    InputDrivers();
    ~InputDrivers();
    InputDrivers(const InputDrivers &) = delete;
    InputDrivers &operator=(const InputDrivers &) = delete;

private:
    QWSTyxButtonsHandler m_keys;
};
