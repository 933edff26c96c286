#include "res/files/util_resreader.h"

#include "platform/system/fatal.h"
#include "platform/window/pixmapname.h"
#include "res/files/imagedecoder.h"
#include "res/files/resreaderdata.h"
#include "res/format/resid.h"

UTIL_ResReader::~UTIL_ResReader() = default;

UTIL_ResFileReader::UTIL_ResFileReader(const QString &fileName) : d(std::make_unique<res::ResReaderData>())
{
    d->init(fileName);
}
UTIL_ResFileReader::~UTIL_ResFileReader() = default;

bool UTIL_ResFileReader::init(const QString &fileName) { return d->init(fileName); }
void UTIL_ResFileReader::setFileName(const QString &fileName) { d->fileName = fileName; }
QString UTIL_ResFileReader::fileName() const { return d->fileName; }
bool UTIL_ResFileReader::load() { return d->load(); }
void UTIL_ResFileReader::reset() { d->reset(); }

bool UTIL_ResFileReader::exists(const QString &id) { return d->exists(id); }
bool UTIL_ResFileReader::pixmapExists(const QString &name) { return exists(name + QStringLiteral(".g")); }

QPixmap UTIL_ResFileReader::getPixmap(const QString &name)
{
    const char *data = nullptr;
    unsigned int length = 0;
    QPixmap pixmap;
    if (get(name + QStringLiteral(".g"), data, length))
        pixmap = QPixmap::fromImage(res::decodeImage(QByteArrayView(data, qsizetype(length))));
    if (platform::isFlexBitSet())
        platform::setPixmapName(pixmap, name);
    return pixmap;
}

bool UTIL_ResFileReader::get(const QString &id, const char *&data, unsigned int &length)
{
    return d->get(id, data, length);
}

bool UTIL_ResFileReader::getByFullFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}

bool UTIL_ResFileReader::getByFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}

QString UTIL_ResFileReader::getFirstID() { return d->getFirstID(); }
QString UTIL_ResFileReader::getNextID() { return d->getNextID(); }

QString UTIL_ResFileReader::getID(unsigned int slot) const { return d->getID(slot); }
bool UTIL_ResFileReader::getDataAtOffset(unsigned int offset, const char *&data, unsigned int &length) const
{
    return d->getDataAtOffset(offset, data, length);
}
