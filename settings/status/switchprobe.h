// Where the status table asks for the position of headset and flip when it is initialised.
#pragma once

#include "platform/tyxexport.h"

// The keypad handler implements it; it knows the switches since it reads their keys. One in a process: constructing
// installs it, destroying takes it away. Without one both states are zero.
class TYX_EXPORT SwitchProbe {
public:
    SwitchProbe();
    virtual ~SwitchProbe();
    SwitchProbe(const SwitchProbe &) = delete;
    SwitchProbe &operator=(const SwitchProbe &) = delete;

    [[nodiscard]] virtual int headsetState() const = 0; // non-zero: plugged in
    [[nodiscard]] virtual int flipState() const = 0; // 0 closed, 1 open, -1 unknown

    // Null when there is none.
    static const SwitchProbe *installed();
};
