#include "res/skin/zskin.h"

#include "res/files/imagedecoder.h"
#include "res/files/resreaderdata.h"
#include "res/files/zresreader.h"

#include <QBuffer>
#include <QMovie>
#include <algorithm>

ZSkin *ZSkin::defaultSkin = nullptr;

ZSkin::ZSkin(const QString &first, const QString &second, const QString &third, const QString &fourth)
    : m_readers{std::make_unique<ZResFileReader>(first), std::make_unique<ZResFileReader>(second),
        std::make_unique<ZResFileReader>(third), std::make_unique<ZResFileReader>(fourth)}
{
}
ZSkin::~ZSkin() = default;

ZSkin *ZSkin::skin()
{
    if (!defaultSkin)
        reloadSkin();
    return defaultSkin;
}

void ZSkin::reloadSkin()
{
    delete defaultSkin;
    defaultSkin = new ZSkin(res::defaultIconFile(), res::downloadedIconFile(), QString(), QString());
}

bool ZSkin::exists(const QString &id)
{
    return std::any_of(m_readers.begin(), m_readers.end(), [&](const auto &reader) { return reader->exists(id); });
}

bool ZSkin::get(const QString &id, const char *&data, unsigned int &length)
{
    return std::any_of(
        m_readers.rbegin(), m_readers.rend(), [&](const auto &reader) { return reader->get(id, data, length); });
}

QByteArrayView ZSkin::bytesOf(const QString &id)
{
    const char *data = nullptr;
    unsigned int length = 0;
    return get(id, data, length) ? QByteArrayView(data, qsizetype(length)) : QByteArrayView();
}

QPixmap ZSkin::getQPixmap(const QString &id) { return QPixmap::fromImage(getQImage(id)); }
QImage ZSkin::getQImage(const QString &id) { return res::decodeImage(bytesOf(id)); }
QBitmap ZSkin::getQBitmap(const QString &id) { return QBitmap::fromImage(getQImage(id)); }

std::unique_ptr<QMovie> ZSkin::getQMovie(const QString &id)
{
    auto movie = std::make_unique<QMovie>();
    const QByteArrayView bytes = bytesOf(id);
    if (!res::isImage(bytes))
        return movie;
    auto *buffer = new QBuffer(movie.get());
    buffer->setData(bytes.data(), int(bytes.size()));
    buffer->open(QIODevice::ReadOnly);
    movie->setDevice(buffer);
    return movie;
}
