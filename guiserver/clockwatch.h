// Tells when somebody sets the clock, the network for example; also when the phone wakes from its sleep.
#pragma once

#include "platform/system/fd.h"

#include <QObject>

class ClockWatch : public QObject {
    Q_OBJECT

public:
    ClockWatch();

Q_SIGNALS:
    void clockSet();

private:
    [[nodiscard]] bool arm() const;
    void look();

    platform::Fd m_timer; // never expires, but is cancelled with every jump
};
