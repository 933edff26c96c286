#include "res/files/resreaderdata.h"

#include "res/format/resid.h"

namespace res {

QString defaultIconFile() { return qEnvironmentVariable("TYX_RES_ICON_PATH") + QStringLiteral("/iconres.tyx"); }

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

QString ResReaderData::getID(quint32 slot) const
{
    const QByteArrayView id = m_file ? m_file->index().idAt(slot) : QByteArrayView();
    return id.isEmpty() ? QString() : QString::fromLatin1(id);
}

QString ResReaderData::getFirstID()
{
    m_next = 0;
    return getNextID();
}

QString ResReaderData::getNextID()
{
    while (m_file && m_next < m_file->index().slotCount()) {
        if (QString id = getID(m_next++); !id.isNull())
            return id;
    }
    return {};
}

}
