// What the application object does with keys and pen before its widgets see them.
#pragma once

#include "appbase/application/hardkeys.h"

class QEvent;
class QKeyEvent;
class QObject;
class ZApplication;

// Belongs to the application object. GUI thread only.
class InputFilters {
public:
    explicit InputFilters(ZApplication &application) : m_application(application) { }
    InputFilters(const InputFilters &) = delete;
    InputFilters &operator=(const InputFilters &) = delete;

    // Every event of every object in the process comes by here; true swallows it.
    bool filter(QObject &watched, QEvent &event);

    void enableHardKeys(bool on) { m_hardKeysEnabled = on; }
    HardKeys &hardKeys() { return m_hardKeys; }

private:
    bool filterKey(QKeyEvent &event);

    ZApplication &m_application;
    bool m_hardKeysEnabled = false;
    HardKeys m_hardKeys;
};
