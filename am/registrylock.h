// How the registry is locked.
//
//     the semaphore set     the lock                                       takeRegistry()
//     is not there          is free                                        makes it, 1, and takes it: 0
//     has the value 1       is free: its holder died, or could not remove it    takes it: 0
//     has the value 0       is held, or being made                         answers false
//
// releaseRegistry() gives back and removes in one step. Giving back first would leave a moment in which another process
// takes the lock in a set that then vanishes under it, and a third one makes a new set and takes the lock as well.
#pragma once

#include "platform/system/sysv.h"

#include <ctime>

namespace am {

// Who is told what failed: the prefix says where.
using Report = void (*)(const char *prefix, const platform::SysError &error);

bool takeRegistry(Report report);
bool releaseRegistry(Report report);

// As the environment has it; text would be made of it and bytes again, which takes as long as a system call. Null where
// AM_Global::getInstalledQtDir() answers null; valid until the environment changes.
const char *installedQtDirectory(int device);

// EINVAL when the directory's number makes a key that is IPC_PRIVATE: with it, every process would get a lock of its
// own.
platform::Result<key_t> registryKey(const char *directory);

// What others see of the lock. Nothing is made or changed.
struct RegistryState {
    int id = -1;
    unsigned long semaphores = 0; // 1, unless the set belongs to another program
    int value = 0;
    pid_t process = 0; // that changed it last; the holder while the value is 0
    bool wasUsed = false; // false: it was made and never taken
    std::time_t since = 0; // when it was made

    [[nodiscard]] bool isHeld() const { return value == 0; }
    static platform::Result<RegistryState> look(key_t key); // ENOENT: there is none, the lock is free
};

}
