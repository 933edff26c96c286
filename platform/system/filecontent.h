// Files that are read as a whole.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>

namespace platform {

// The bytes of a regular file. EISDIR for a folder and EINVAL for anything else that is none, without waiting for a
// FIFO; EFBIG for more than `maxBytes`, ENOMEM where there is no memory for them. Exported for the tools.
TYX_EXPORT Result<QByteArray> fileContent(const QString &path, qint64 maxBytes);

}
