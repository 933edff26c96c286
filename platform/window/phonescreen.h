// The socket of the phone's screen: where it is, whether a server answers there, and who may serve it.
#pragma once

#include "platform/system/lockedfile.h"

#include <QString>
#include <chrono>

namespace phonescreen {

inline constexpr char kSocketName[] = "tyx-screen-0";

// The screen's socket stands beside that of the bus. When that is not where XDG_RUNTIME_DIR says, this call makes the
// directory and names it there, because the Wayland libraries look nowhere else.
platform::Result<> prepareDirectory();

QString socketPath(); // once the directory is prepared

// Waits until a server accepts connections; false when none did in time.
bool waitForServer(std::chrono::milliseconds limit);

// Held by the one server of this runtime directory. The error EWOULDBLOCK of "flock" says that another server has it.
platform::Result<platform::LockedFile> claim();

}
