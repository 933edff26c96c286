#include "res/skin/util_skinfilereader.h"

#include "res/files/resreaderdata.h"
#include "res/format/resid.h"
#include "res/share/util_shareimage.h"
#include "res/skin/skincut.h"
#include "res/skin/skinfile.h"
#include "res/skin/skinshare.h"

#include <QBitmap>
#include <QFile>
#include <cstdio>

QString UTIL_SkinFileReader::curFileName;
UTIL_ShareImage *UTIL_SkinFileReader::pSkinImage = nullptr;
int UTIL_SkinFileReader::instanceCount = 0;

struct UTIL_SkinFileReader::Data {
    [[nodiscard]] std::optional<res::ImageRect> rectOf(const QString &id) const;

    bool error = false;
    std::optional<res::SkinFile> file; // empty: not loaded
    quint32 next = 0; // the slot that getNextID() looks at first
};

namespace {

void say(const char *line) { std::fprintf(stderr, "%s\n", line); }

QString idOf(const QString &name) { return name + QStringLiteral(".g"); }

// The image of all processes, which may store another one in its place at any time: locked as long as this lives.
class SharedAtlas {
public:
    SharedAtlas() : m_shared(UTIL_SkinFileReader::pSkinImage)
    {
        m_locked = m_shared && m_shared->lock();
        if (m_locked && m_shared->getImage(m_image))
            m_shared->getMask(m_mask);
    }
    ~SharedAtlas()
    {
        if (m_locked)
            m_shared->unlock();
    }
    SharedAtlas(const SharedAtlas &) = delete;
    SharedAtlas &operator=(const SharedAtlas &) = delete;

    [[nodiscard]] QPixmap whole() const { return m_image; }
    [[nodiscard]] QImage image() const { return m_image.toImage(); }
    [[nodiscard]] QImage mask() const { return m_mask.toImage(); }

private:
    UTIL_ShareImage *m_shared;
    bool m_locked;
    QPixmap m_image;
    QBitmap m_mask;
};

}

std::optional<res::ImageRect> UTIL_SkinFileReader::Data::rectOf(const QString &id) const
{
    if (error || !file)
        return {};
    const auto slot = file->index().find(res::Latin1Id(id).view());
    return slot ? std::optional(file->index().rectAt(*slot)) : std::nullopt;
}

UTIL_SkinFileReader::UTIL_SkinFileReader() : d(std::make_unique<Data>())
{
    ++instanceCount;
    init(qEnvironmentVariable("TYX_RES_SKIN_FILE"));
}
UTIL_SkinFileReader::~UTIL_SkinFileReader() = default;

bool UTIL_SkinFileReader::init(const QString &fileName)
{
    reset();
    curFileName = fileName;
    return load(false);
}

bool UTIL_SkinFileReader::setFileName(const QString &fileName)
{
    curFileName = fileName;
    reset();
    return load(true);
}

void UTIL_SkinFileReader::reset() { *d = Data(); }

bool UTIL_SkinFileReader::load(bool reload)
{
    reset();
    auto file = res::SkinFile::load(curFileName);
    d->error = !file;
    if (!file)
        return false;
    res::shareImageOf(*file, reload);
    d->file = std::move(file);
    return true;
}

bool UTIL_SkinFileReader::exists(const QString &id) { return d->rectOf(id).has_value(); }
bool UTIL_SkinFileReader::pixmapExists(const QString &name) { return exists(idOf(name)); }
bool UTIL_SkinFileReader::colorExists(const QString &name) { return exists(idOf(name)); }

QPixmap UTIL_SkinFileReader::getPixmap(const QString &name)
{
    if (d->error) {
        say("load failed");
        QPixmap pixmap(20, 20);
        pixmap.fill();
        return pixmap;
    }
    const auto rect = d->rectOf(idOf(name));
    const SharedAtlas atlas;
    if (rect)
        return QPixmap::fromImage(res::cut(atlas.image(), atlas.mask(), *rect), Qt::NoFormatConversion);
    std::fprintf(stderr, "Icon %s lost\n", QFile::encodeName(name).constData());
    return atlas.whole();
}

QColor UTIL_SkinFileReader::getColor(const QString &name)
{
    const auto rect = d->rectOf(idOf(name));
    return rect ? res::colorIn(SharedAtlas().image(), *rect) : QColor();
}

bool UTIL_SkinFileReader::get(const QString &id, const char *&data, unsigned int &length)
{
    const auto &file = d->file;
    const QByteArrayView image = file && exists(id) ? file->image() : QByteArrayView();
    data = image.data();
    length = static_cast<unsigned int>(image.size());
    return !image.isNull();
}

bool UTIL_SkinFileReader::getByFullFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}

bool UTIL_SkinFileReader::getByFileName(const QString &fileName, const char *&data, unsigned int &length)
{
    return get(res::createID(fileName), data, length);
}

QString UTIL_SkinFileReader::getFirstID()
{
    d->next = 0;
    return getNextID();
}

QString UTIL_SkinFileReader::getNextID()
{
    const auto &file = d->file;
    return file ? res::nextId(file->index(), d->next) : QString();
}
