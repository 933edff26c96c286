#include "guiserver/keyfiles.h"

#include "appbase/messaging/soundqueue.h"
#include "platform/system/keyfile.h"
#include "settings/status/statustable.h"

#include <cstdio>

void makeKeyFiles()
{
    for (const char *path : {status::kKeyFile, SoundQueue::kKeyFile}) {
        if (const auto made = platform::makeKeyFile(path); !made)
            std::fprintf(stderr, "tyx-guiserver: cannot make the key file %s: %s; remove what is there\n", path,
                qPrintable(made.error().text()));
    }
}
