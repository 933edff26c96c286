// The messages of the four channels, a row each, in the order of comparison.
#pragma once

#include "appbase/application/zapplication_p.h"
#include "appbase/messaging/route.h"

namespace routes {

using Rows = std::span<const Route<ZApplicationData>>;

Rows process(); // "TYX/Application/" + process id
Rows system(); // "TYX/System"
Rows server(); // "TYX/QtServer"
Rows application(); // "TYX/Application/" + program name

}
