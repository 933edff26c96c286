#include "appbase/application/inputdrivers.h"

#include "appbase/application/suspension.h"
#include "input/devices/touchpanel.h"

InputDrivers::InputDrivers()
{
    // The key of the flip itself is delivered to nobody while the phone sleeps.
    QObject::connect(&m_keys, &QWSTyxButtonsHandler::flipMoved, [](bool open) {
        if (open)
            SetGuiToResume();
    });
    InitializeTouchPanel();
}

InputDrivers::~InputDrivers() { DeinitializeTouchPanel(); }
