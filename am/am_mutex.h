// The lock of the application registry.
#pragma once

#include "platform/tyxexport.h"

// Between processes, not threads. Whoever changes the registry takes it first; it is never waited for:
//
//     if (!AM_Mutex::setBusy())
//         return tellTheUserToTryAgain();
//     ...
//     AM_Mutex::setNotBusy();
//
// A process that dies gives the lock back. It is a semaphore whose key is made of the directory of
// AM_Global::getInstalledQtDir(1), so that it is the same one for all. What fails is told on standard error, a line
// each; that somebody else has the lock, too.
class TYX_EXPORT AM_Mutex {
public:
    static bool setBusy(); // takes the lock; false when somebody has it, or when there is no directory

    // Gives it back and removes the semaphore. Works on the semaphore that this process's last setBusy() found, also
    // when that one answered false: then it takes the lock away from whoever has it.
    static bool setNotBusy();

    // Whether somebody has the lock; true as well when there is no directory. Takes it for a moment when it is free:
    // never ask while this process has it.
    static bool isBusy();
};
