// The signals that end a program (platform::endSignals()) as an orderly end of the event loop.
#pragma once

#include <QObject>

// In between the signals wait: a process that is still starting cannot end in good order.
void holdTerminationSignals();
void releaseTerminationSignals();

// While it lives, each of them emits received() from the event loop instead of ending the process. One object in a
// process. (Handlers, not blocked signals: a mask would be inherited by the programs that the server starts.)
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();
};
