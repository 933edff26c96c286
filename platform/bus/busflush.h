// For a process that ends without the ordinary way out.
#pragma once

#include "platform/tyxexport.h"

namespace platform {

// Writes what was sent on the bus and still waits for room in a socket, for at most three seconds. Called at exit() by
// itself; call it before _exit().
TYX_EXPORT void busFlush();

}
