// What the catalogue has against a message that is about to be sent.
#pragma once

#include "tools/tyx/busargument.h"

#include <QByteArrayView>
#include <QString>

namespace tyx {

struct Draft {
    QByteArray channel;
    QByteArray message;
    Encoded arguments;
};

// One line, empty when there is nothing to say: arguments of another form, a name that is known elsewhere only, or one
// that is nearly a known one. Programs have messages of their own; what is like nothing known is none of our business.
QString objectionTo(const Draft &draft);

// True for a message that only the channel of the process takes, on the channel of the program's name.
bool belongsToProcess(const Draft &draft);

}
