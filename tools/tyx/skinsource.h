// What a skin is made of: images, colours, rectangles of an image.
#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QStringList>
#include <tl/expected.hpp>
#include <vector>

namespace tyx {

struct SkinPicture {
    QString id;
    QImage image; // Format_ARGB32
};

// In ascending order of the identifiers, each once. Otherwise what is wrong, a line each: what itemsOf() finds, an
// image that does not decode, an identifier that is no picture's, a line that is no colour.
using SkinPictures = tl::expected<std::vector<SkinPicture>, QStringList>;

// The images of a folder or manifest, as itemsOf() has them; a file whose name ends in .colors has a name and #rrggbb
// in each line instead. A colour becomes a small picture, since that is how readers find it.
SkinPictures picturesOf(const QString &folderOrManifest);

struct SkinRect {
    QString id;
    QRect rect;
};

// A text with a name, x, y, width and height in each line. All must lie inside of the image.
tl::expected<std::vector<SkinRect>, QStringList> rectsOf(const QString &path, QSize image);

}
