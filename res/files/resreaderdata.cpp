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
    fileName = name;
    return load();
}

bool ResReaderData::load()
{
    m_file.reset();
    m_next = 0;
    auto file = ResourceFile::open(fileName);
    if (file)
        m_file.emplace(std::move(*file));
    return m_file.has_value();
}

void ResReaderData::reset() { *this = ResReaderData(); }

const ResIndex *ResReaderData::index() { return m_file ? m_file->index() : nullptr; }

bool ResReaderData::exists(const QString &id) { return m_file && m_file->dataOffsetOf(Latin1Id(id).view()); }

bool ResReaderData::get(const QString &id, const char *&data, unsigned int &length)
{
    data = nullptr;
    length = 0;
    const auto offset = m_file ? m_file->dataOffsetOf(Latin1Id(id).view()) : std::nullopt;
    return offset && getDataAtOffset(*offset, data, length);
}

bool ResReaderData::getDataAtOffset(quint32 offset, const char *&data, unsigned int &length)
{
    data = nullptr;
    length = 0;
    const auto block = m_file ? m_file->block(offset) : std::nullopt;
    if (!block)
        return false;
    data = reinterpret_cast<const char *>(block->data());
    length = static_cast<unsigned int>(block->size());
    return true;
}

QString ResReaderData::getID(quint32 slot)
{
    const ResIndex *tables = index();
    return tables ? idAt(*tables, slot) : QString();
}

QString ResReaderData::getFirstID()
{
    m_next = 0;
    return getNextID();
}

QString ResReaderData::getNextID()
{
    const ResIndex *tables = index();
    return tables ? nextId(*tables, m_next) : QString();
}

}
