// The icons of the phone, in layers, as every kind of image that the toolkit has.
#pragma once

#include "platform/tyxexport.h"

#include <QBitmap>
#include <QImage>
#include <QPixmap>
#include <QString>
#include <array>
#include <memory>

class QMovie;
class ZResFileReader;

// Four resource files, each of which overrides those before it. One that is missing, or has an empty name, answers
// nothing.
class TYX_EXPORT ZSkin {
public:
    // All are opened now. skin() is for those of the phone.
    ZSkin(const QString &first, const QString &second, const QString &third, const QString &fourth);
    ~ZSkin();
    ZSkin(const ZSkin &) = delete;
    ZSkin &operator=(const ZSkin &) = delete;

    // The icons of this process, never null: iconres.tyx in $TYX_RES_ICON_PATH, overridden by the one in
    // $TYX_DOWNLOAD_RES_ICON_PATH. They are opened by the first call.
    static ZSkin *skin();
    // Opens the files again, by the environment as it is now. What skin() has answered is deleted.
    static void reloadSkin();

    bool exists(const QString &id); // in any of the files; ZRes::createID() makes the identifier of a file's name
    // The bytes of a resource, where they are; this object keeps them. False, null and 0 when there is none.
    bool get(const QString &id, const char *&data, unsigned int &length);

    // Decoded anew by every call, whatever format the bytes are in. Empty when there is no such resource, when it is
    // no image, or when the image is larger than 64 MiB.
    QPixmap getQPixmap(const QString &id);
    QImage getQImage(const QString &id);
    QBitmap getQBitmap(const QString &id);
    // Never null, but possibly not valid. It has a copy of the bytes, and outlives this object.
    std::unique_ptr<QMovie> getQMovie(const QString &id);

    static ZSkin *defaultSkin; // null until the first skin()

private:
    QByteArrayView bytesOf(const QString &id);

    std::array<std::unique_ptr<ZResFileReader>, 4> m_readers;
};
