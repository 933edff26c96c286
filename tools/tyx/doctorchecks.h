// What can be wrong with a machine that is to be a phone.
#pragma once

#include <QList>
#include <QString>

namespace tyx {

struct Finding {
    enum class State {
        Fine,
        Note, // nothing has to be done: something is not there that a phone can do without
        Wrong
    };

    State state = State::Fine;
    QString about; // what was looked at: a path, or a path and a project id
    QString text; // what was found
    QString cure; // of what is wrong
};

struct Check {
    const char *name;
    QList<Finding> (*look)();
};

// In the order in which a person would look: what all others rest on comes first. No check changes anything.
QList<Check> doctorChecks();

}
