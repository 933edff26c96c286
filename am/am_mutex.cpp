#include "am/am_mutex.h"

#include "am/registrylock.h"

#include <cstdio>
#include <cstring>

namespace {

void say(const char *prefix, const platform::SysError &error)
{
    std::fprintf(stderr, "%s %s\n", prefix, std::strerror(error.number));
}

}

bool AM_Mutex::setBusy() { return am::takeRegistry(say); }
bool AM_Mutex::setNotBusy() { return am::releaseRegistry(say); }
bool AM_Mutex::isBusy()
{
    if (!setBusy())
        return true;
    setNotBusy();
    return false;
}
