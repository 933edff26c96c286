// The name that a pixmap carries, for the tests of a phone: which picture is it that a widget shows?
#pragma once

#include "platform/tyxexport.h"

#include <QPixmap>
#include <QString>

namespace platform {

// Copies of the pixmap carry its name too, and an empty pixmap carries one like any other. Whatever changes a pixmap or
// makes another one of it (painting, scaling, its image) loses the name.
TYX_EXPORT void setPixmapName(QPixmap &pixmap, const QString &name);

// Null when it carries none. Icons have one in a process whose flex bit is set (TYX_FLEX_BIT=1).
TYX_EXPORT QString pixmapName(const QPixmap &pixmap);

}
