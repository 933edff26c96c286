#include "guiserver/keyfiles.h"

#include "platform/system/keyfile.h"

#include <cstdio>

void makeKeyFiles()
{
    for (const char *path : {"/tmp/key_testcommand", "/tmp/touch_sound_msg"}) {
        if (const auto made = platform::makeKeyFile(path); !made)
            std::fprintf(stderr, "tyx-guiserver: cannot make the key file %s: %s; remove what is there\n", path,
                qPrintable(made.error().text()));
    }
}
