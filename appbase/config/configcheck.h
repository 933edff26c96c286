// Tells what a configuration file loses when it is read and saved again.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace config {

struct Remark {
    int line = 0; // from 1
    QString text;
    bool serious = false; // something is lost or altered; else only the spelling changes
};

// Everything worth a remark, in the order of the lines, up to the line at which reading stops. Exported for the tools,
// not installed.
TYX_EXPORT std::vector<Remark> check(const QByteArray &bytes);

// The remark on the line at which reading stops before the end: the next save loses everything from there on.
TYX_EXPORT std::optional<Remark> whereReadingStops(const QByteArray &bytes);

}
