// The file under a configuration: its limits and mode, and its bytes, whatever stands at its path.
#pragma once

#include "platform/system/filecontent.h"

#include <sys/types.h>

namespace config {

// Settings are a few kilobytes. What is larger than this is damage, and reading it would take the process down.
inline constexpr qint64 kMaxFileBytes = qint64(128) << 20;

// Everyone on the phone reads and writes settings.
inline constexpr mode_t kFileMode = 0666;

// As platform::fileContent().
inline platform::Result<QByteArray> readFile(const QString &path, qint64 maxBytes = kMaxFileBytes)
{
    return platform::fileContent(path, maxBytes);
}

}
