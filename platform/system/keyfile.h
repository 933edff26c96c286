// The files that System V keys are made of. They lie in /tmp, where anybody may put something else in their place.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <sys/ipc.h>

namespace platform {

// Makes the file unless it is there already; everybody may write to it (0666), since programs of all users touch the
// one of the status table. EEXIST when something is there that is no ordinary file, a link included.
TYX_EXPORT Result<> makeKeyFile(const char *path);

// As ipcKey(), but follows no link and accepts ordinary files only (EINVAL).
Result<key_t> keyOfFile(const char *path, char project);

}
