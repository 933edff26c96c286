#include "res/skin/util_skin.h"

#include "res/files/resreaderdata.h"
#include "res/files/util_resreader.h"
#include "res/format/resid.h"

struct UTIL_Skin::Readers {
    Readers(const QString &baseFile, const QString &downloadedFile) : base(baseFile), downloaded(downloadedFile) { }

    UTIL_ResFileReader base;
    UTIL_ResFileReader downloaded;
};

UTIL_Skin *UTIL_Skin::defaultSkin = nullptr;

UTIL_Skin::UTIL_Skin(const QString &baseFile, const QString &downloadedFile)
    : d(std::make_unique<Readers>(baseFile, downloadedFile))
{
}
UTIL_Skin::~UTIL_Skin() = default;

UTIL_Skin *UTIL_Skin::get()
{
    if (!defaultSkin)
        reloadDef();
    return defaultSkin;
}

void UTIL_Skin::reloadDef()
{
    delete defaultSkin;
    defaultSkin = new UTIL_Skin(res::defaultIconFile(), res::downloadedIconFile());
}

bool UTIL_Skin::exists(const QString &id) { return d->downloaded.exists(id) || d->base.exists(id); }
bool UTIL_Skin::pixmapExists(const QString &name)
{
    return d->downloaded.pixmapExists(name) || d->base.pixmapExists(name);
}

QPixmap UTIL_Skin::getPixmap(const QString &name)
{
    QPixmap pixmap = d->downloaded.getPixmap(name);
    return pixmap.isNull() ? d->base.getPixmap(name) : pixmap;
}

bool UTIL_Skin::get(const QString &id, const char *&data, unsigned int &length)
{
    return d->downloaded.get(id, data, length) || d->base.get(id, data, length);
}

bool UTIL_Skin::getByFullFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}

bool UTIL_Skin::getByFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}
