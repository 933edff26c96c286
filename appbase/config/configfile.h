// The file under a configuration: its limits and mode, and its bytes, whatever stands at its path.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <sys/types.h>

namespace config {

// Settings are a few kilobytes. What is larger than this is damage, and reading it would take the process down.
inline constexpr qint64 kMaxFileBytes = qint64(128) << 20;

// Everyone on the phone reads and writes settings.
inline constexpr mode_t kFileMode = 0666;

// The whole file. Anything but a regular file (a FIFO, a directory, a device) is EINVAL without waiting for it, a file
// over the limit EFBIG. Exported for the tools, not installed.
TYX_EXPORT platform::Result<QByteArray> readFile(const QString &path, qint64 maxBytes = kMaxFileBytes);

}
