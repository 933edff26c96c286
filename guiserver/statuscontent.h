// What the status bar shows, made of the phone's state: all decisions, no drawing.
#pragma once

#include "settings/status/systemstatus.h"

#include <QString>

struct StatusContent {
    enum class Call { None, Up, Incoming };
    static constexpr int kUnknown = -1;

    int signalBars = 0; // 0 to 5
    QString operatorName;
    bool roaming = false;
    bool headset = false;
    bool locked = false;
    Call call = Call::None;
    int batteryPercent = kUnknown; // or 0 to 100
    bool charging = false;
    QString title; // of the window in front
    QString time;

    friend bool operator==(const StatusContent &, const StatusContent &) = default;
};

// The state of the phone; title and time stay empty.
//
// The operator is named as the SIM card does at home and as the network does while roaming, if there is such a name.
// The battery counts in percent; a phone that does not gives a level, of which four are full.
StatusContent contentOf(const SystemTableCopy &table);
