// The socket of the phone's screen: where it is, whether a server answers there, and who may serve it.
#pragma once

#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/system/result.h"

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

// Held by the one server of this runtime directory.
class Claim {
public:
    // The error EWOULDBLOCK of "flock" says that another server has it.
    static platform::Result<Claim> take();

private:
    Claim(platform::Fd file, platform::FileLock lock);

    platform::Fd m_file;
    platform::FileLock m_lock; // goes before the descriptor that it sits on
};

}
