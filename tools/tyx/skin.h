// What a skin file holds, for the commands that look into it.
#pragma once

#include "res/format/resindex.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <map>
#include <tl/expected.hpp>

namespace tyx {

using SkinRects = std::map<QByteArray, res::ImageRect>; // by identifier

// All pictures with their names on one image, colours as swatches; otherwise why there is no room for so many. Needs a
// QGuiApplication, for the fonts.
tl::expected<QImage, QString> contactSheet(const QString &title, const QImage &atlas, const SkinRects &rects);

}
