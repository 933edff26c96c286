#include "res/files/resreaderdata.h"

#include "res/format/resid.h"

namespace res {

QString defaultIconFile() { return qEnvironmentVariable("TYX_RES_ICON_PATH") + QStringLiteral("/iconres.tyx"); }
QString downloadedIconFile()
{
    return qEnvironmentVariable("TYX_DOWNLOAD_RES_ICON_PATH") + QStringLiteral("/iconres.tyx");
}

QString idAt(const ResIndex &index, quint32 slot)
{
    const QByteArrayView id = index.idAt(slot);
    return id.isEmpty() ? QString() : QString::fromLatin1(id);
}

QString nextId(const ResIndex &index, quint32 &slot)
{
    while (slot < index.slotCount()) {
        if (QString id = idAt(index, slot++); !id.isNull())
            return id;
    }
    return {};
}

bool ResReaderData::init(const QString &name)
{
    reset();
    fileName = name;
    return load();
}

bool ResReaderData::load()
{
    m_file.reset();
    m_next = 0;
    auto file = MappedFile::open(fileName, Version::Resources);
    if (file)
        m_file.emplace(std::move(*file));
    return m_file.has_value();
}

void ResReaderData::reset() { *this = ResReaderData(); }

bool ResReaderData::exists(const QString &id) const { return m_file && m_file->index().find(Latin1Id(id).view()); }

bool ResReaderData::get(const QString &id, const char *&data, unsigned int &length) const
{
    data = nullptr;
    length = 0;
    if (!m_file)
        return false;
    const auto slot = m_file->index().find(Latin1Id(id).view());
    return slot && getDataAtOffset(m_file->index().dataOffsetAt(*slot), data, length);
}

bool ResReaderData::getDataAtOffset(quint32 offset, const char *&data, unsigned int &length) const
{
    data = nullptr;
    length = 0;
    if (!m_file)
        return false;
    const auto block = m_file->index().block(offset);
    if (!block)
        return false;
    data = reinterpret_cast<const char *>(block->data());
    length = static_cast<unsigned int>(block->size());
    return true;
}

QString ResReaderData::getID(quint32 slot) const { return m_file ? idAt(m_file->index(), slot) : QString(); }

QString ResReaderData::getFirstID()
{
    m_next = 0;
    return getNextID();
}

QString ResReaderData::getNextID() { return m_file ? nextId(m_file->index(), m_next) : QString(); }

}
