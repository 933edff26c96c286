// How far a command is, on a terminal, when it takes long enough to wonder.
#pragma once

#include <QElapsedTimer>
#include <QString>

namespace tyx {

// On standard error, beginning half a second after the construction; gone when the object goes.
class Progress {
public:
    Progress(QString what, qsizetype total);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void step(); // one more of `total` is done

private:
    QString m_what;
    qsizetype m_total;
    qsizetype m_done = 0;
    bool m_terminal;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
};

}
