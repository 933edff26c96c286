// One phone on a machine. Its tables and the files that name them are the machine's, whatever runtime folder a server
// uses: a second one would initialise the first one's tables, and remove them when it ends.
#pragma once

#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/system/result.h"

// Held by the server as long as it lives. A server that was killed gives it back with its descriptors, which its
// children do not inherit.
class PhoneClaim {
public:
    // After makeKeyFiles(), on the status table's file: EWOULDBLOCK when another server has it.
    static platform::Result<PhoneClaim> take();

private:
    PhoneClaim(platform::Fd file, platform::FileLock lock) : m_file(std::move(file)), m_lock(std::move(lock)) { }

    platform::Fd m_file;
    platform::FileLock m_lock; // goes before the descriptor that it sits on
};
