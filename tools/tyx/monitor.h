// What tyx bus monitor does, for other sub-commands that show a part of what goes over the bus.
#pragma once

#include "platform/bus/businspector.h"

#include <functional>

namespace tyx {

// Prints what is wanted, a line a message, until it is stopped or `count` were seen; 0: no end. Yields an exit status.
[[nodiscard]] int monitorBus(
    const std::function<bool(const platform::BusInspector::Sent &)> &isWanted, int count, bool asJson);

}
