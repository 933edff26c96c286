// The icons of the phone: built-in ones, and those that were downloaded in place of some of them.
#pragma once

#include "platform/tyxexport.h"

#include <QPixmap>
#include <QString>
#include <memory>

// Two resource files, of which the second overrides the first. One that is missing answers nothing.
//
//     QPixmap phone = UTIL_Skin::get()->getPixmap("phone");
class TYX_EXPORT UTIL_Skin {
public:
    UTIL_Skin(const QString &baseFile, const QString &downloadedFile); // both are opened now; get() is for the phone's
    ~UTIL_Skin();
    UTIL_Skin(const UTIL_Skin &) = delete;
    UTIL_Skin &operator=(const UTIL_Skin &) = delete;

    // The icons of this process, never null: iconres.tyx in $TYX_RES_ICON_PATH, overridden by the one in
    // $TYX_DOWNLOAD_RES_ICON_PATH. They are opened by the first call.
    static UTIL_Skin *get();
    // Opens the files again, by the environment as it is now. What get() has answered is deleted.
    static void reloadDef();

    bool exists(const QString &id); // in either file; UTIL_Res::createID() makes the identifier of a file's name
    bool pixmapExists(const QString &name); // a pixmap's name is its identifier without ".g"
    // The downloaded one unless that is missing or no image; an empty pixmap when there is none in either file.
    QPixmap getPixmap(const QString &name);
    // The bytes of a resource, where they are; this object keeps them. False, null and 0 when there is none.
    bool get(const QString &id, const char *&data, unsigned int &length);
    // The same by the name of the file that was packed; its folders do not matter.
    bool getByFullFileName(const QString &fileName, const char *&data, unsigned int &length);
    bool getByFileName(const QString &fileName, const char *&data, unsigned int &length);

    static UTIL_Skin *defaultSkin; // null until the first get()

private:
    struct Readers;
    std::unique_ptr<Readers> d;
};
