// One decoded image in memory that all processes share.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <memory>

class QBitmap;
class QPixmap;

namespace res {
struct ShareImageData;
}

// An image with its mask, by name. The first process decodes it and stores the pixels in a System V segment; all others
// use those pixels in place.
//
//     UTIL_ShareImage shared(QStringLiteral("SkinImage"));
//     if (!shared.exists())
//         shared.create(data, length);
//     QPixmap atlas;
//     QBitmap mask;
//     if (shared.getImage(atlas) && !atlas.isNull())
//         shared.getMask(mask);
//
// An object is attached when the segment was there as it was made, or after its own create():
//
//     state         getImage, getMask        set      create            destroy
//     not attached  true, argument as before false    true -> attached  true
//     attached      use the segment's pixels true     true              true -> not attached
//
// The segment is never removed and outlives all processes; docs/formats/shared-image.md describes it, and `tyx share`
// shows what there is. What fails is told on standard error, a line each.
//
// Anybody may write to the segment. One whose content is no image, or says that it is larger than the segment, is
// refused; nothing is ever read or written outside.
//
// One object for a name in a process: the lock belongs to the process, which loses it when any object of that name
// dies. It belongs to its creator and is used from one thread. create() and set() work without a QGuiApplication.
class TYX_EXPORT UTIL_ShareImage {
public:
    // Makes the lock file /tmp/UTIL_ShareImage_ + name when it is missing. A link there is not followed.
    explicit UTIL_ShareImage(const QString &name);
    ~UTIL_ShareImage(); // detaches
    UTIL_ShareImage(const UTIL_ShareImage &) = delete;
    UTIL_ShareImage &operator=(const UTIL_ShareImage &) = delete;

    // The lock nests: as many unlock() as lock(). It is a shared one, which several processes can hold at once; it only
    // keeps out a program that locks the file for writing, and is waited for then.
    bool lock();
    bool unlock();

    // Whether there is a segment, and this object knows its size: it does when it was attached once and not destroyed.
    bool exists();

    // Decodes an image of any format, makes the segment or uses the one that is there, and stores the pixels. False
    // when the bytes are no image, when they declare more than 64 MiB of pixels, or when the segment that is there is
    // too small.
    bool create(const char *data, unsigned int length);

    // Decodes an image and stores it in place of the old one. Pixmaps that use the segment show the new pixels at once;
    // they keep the old width and height until getImage() is called again. Of an image that the segment has no room
    // for, as much is stored as fits, which getImage() then refuses. When not attached, the lock that this took stays
    // taken.
    bool set(const char *data, unsigned int length);

    // The same of a pixmap; does not lock. A null mask: all is opaque. Pixmaps of other depths than 16 and 32 are
    // stored with 32. Does nothing when not attached.
    void setData(const QPixmap &pixmap, const QBitmap &mask);

    // The pixmap uses the pixels of the segment. They are not copied: what is stored later shows in the pixmap.
    // Painting on it gives it pixels of its own. It may outlive this object: the segment stays attached as long as it
    // is used.
    bool getImage(QPixmap &pixmap);
    // The same for the mask (Qt::color1 is opaque); a null bitmap when all of the image is opaque.
    bool getMask(QBitmap &bitmap);

    bool destroy(); // detaches; always true

private:
    std::unique_ptr<res::ShareImageData> d;
};
