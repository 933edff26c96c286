// Files that are read as a whole.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>

namespace res {

// A resource of a phone is not larger; it is read into memory.
inline constexpr qint64 kMaxResourceBytes = qint64{256} << 20;

// The bytes of a regular file; EINVAL for anything else, EFBIG for more than kMaxResourceBytes, ENOMEM where there is
// no memory for them. A FIFO is not waited for. Exported for the tools, not installed.
TYX_EXPORT platform::Result<QByteArray> fileContent(const QString &path);

}
