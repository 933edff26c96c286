#include "platform/system/result.h"

#include <cstring>

namespace platform {

QString SysError::text() const
{
    return QString::fromLocal8Bit(call) + QStringLiteral(": ") + QString::fromLocal8Bit(strerror(number));
}

}
