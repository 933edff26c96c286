#include "res/format/rescheck.h"

#include "res/format/resid.h"

#include <algorithm>
#include <vector>

namespace res {

namespace {

using Found = std::optional<Flaw>; // empty: nothing is wrong

quint64 placeOf(FormatFault fault, Bytes file)
{
    switch (fault) {
    case FormatFault::Magic:
        return 0;
    case FormatFault::StartBlockOffset:
    case FormatFault::StartBlockCheck:
        return quint64(kMagicSize);
    case FormatFault::Tables:
        break;
    }
    return file.size();
}

class Check {
public:
    Check(Bytes file, Version version, ResIndex index) : m_file(file), m_version(version), m_index(std::move(index))
    {
        for (quint32 slot = 0; slot < m_index.slotCount(); ++slot) {
            if (m_index.idOffsetAt(slot) != kNoId)
                m_used.push_back(slot);
        }
        std::sort(m_used.begin(), m_used.end(),
            [&](quint32 a, quint32 b) { return m_index.idOffsetAt(a) < m_index.idOffsetAt(b); });
    }

    Found run() const
    {
        for (const auto step : {&Check::tables, &Check::identifiers, &Check::data}) {
            if (Found flaw = (this->*step)())
                return flaw;
        }
        return {};
    }

private:
    [[nodiscard]] quint64 slotPlace(quint32 slot) const { return m_index.hashTable() + slot * entrySize(m_version); }
    [[nodiscard]] QString quoted(quint32 slot) const { return u'\'' + QString::fromLatin1(m_index.idAt(slot)) + u'\''; }

    // Tables and data follow one another, and nothing stands between them.
    Found tables() const
    {
        const quint64 start = m_index.startBlock();
        if (start % startblock::alignment != 0)
            return Flaw{quint64(kMagicSize), QStringLiteral("the start block is not at a multiple of 4")};
        if (m_index.idTable() > start)
            return Flaw{start + startblock::idTable, QStringLiteral("the ID table is not before the start block")};
        if (m_index.hashTable() != start + startblock::size)
            return Flaw{
                start + startblock::hashTable, QStringLiteral("the hash table does not follow the start block")};
        if (m_index.data() != m_index.hashTable() + quint64{m_index.slotCount()} * entrySize(m_version))
            return Flaw{start + startblock::data, QStringLiteral("the data do not follow the hash table")};
        return {};
    }

    // The used slots, in the order of their texts, take up the ID table line by line.
    Found identifiers() const
    {
        quint64 expected = m_index.idTable();
        QByteArrayView before;
        for (const quint32 slot : m_used) {
            if (quint64{m_index.idTable()} + m_index.idOffsetAt(slot) != expected)
                return Flaw{slotPlace(slot) + entry::id, QStringLiteral("this entry does not name the next ID")};
            const QByteArrayView id = m_index.idAt(slot);
            if (id.isEmpty())
                return Flaw{expected, QStringLiteral("this ID is empty or has no line end")};
            if (Found flaw = identifier(slot, expected, before))
                return flaw;
            before = id;
            expected += quint64(id.size()) + 1;
        }
        const quint64 start = m_index.startBlock();
        if (expected > start || start - expected >= startblock::alignment)
            return Flaw{expected, QStringLiteral("the ID table does not end at the start block")};
        for (quint64 place = expected; place < start; ++place) {
            if (m_file[size_t(place)] != std::byte{0})
                return Flaw{place, QStringLiteral("the bytes before the start block are not 0")};
        }
        return {};
    }

    Found identifier(quint32 slot, quint64 place, QByteArrayView before) const
    {
        const QByteArrayView id = m_index.idAt(slot);
        if (!before.isNull() && id == before)
            return Flaw{place, QStringLiteral("the ID %1 stands there twice").arg(quoted(slot))};
        if (!before.isNull() && id.compare(before) < 0)
            return Flaw{place, QStringLiteral("the ID %1 is out of order").arg(quoted(slot))};
        if (m_index.hashAt(slot) != hashVal(id))
            return Flaw{slotPlace(slot), QStringLiteral("the hash is not that of the ID %1").arg(quoted(slot))};
        if (m_index.find(id) != slot)
            return Flaw{slotPlace(slot), QStringLiteral("the ID %1 is not found").arg(quoted(slot))};
        return {};
    }

    // Blocks in the order of the identifiers up to the end of the file; of a skin a single one.
    Found data() const
    {
        quint64 expected = m_index.data();
        const std::size_t blocks = m_version == Version::Skin ? 1 : m_used.size();
        for (std::size_t i = 0; i < blocks; ++i) {
            const quint32 offset = m_version == Version::Skin ? 0 : m_index.dataOffsetAt(m_used[i]);
            if (m_index.data() + quint64{offset} != expected)
                return Flaw{slotPlace(m_used[i]) + entry::dataBlock,
                    QStringLiteral("the data of %1 do not follow those before").arg(quoted(m_used[i]))};
            const auto block = m_index.block(offset);
            if (!block)
                return Flaw{expected, describe(block.error())};
            expected += datablock::header + block->size();
        }
        if (expected != m_file.size())
            return Flaw{expected, QStringLiteral("bytes behind the last data block")};
        return {};
    }

    Bytes m_file;
    Version m_version;
    ResIndex m_index;
    std::vector<quint32> m_used; // slots, in the order of their texts
};

}

QString describe(FormatFault fault)
{
    switch (fault) {
    case FormatFault::Magic:
        return QStringLiteral("the first line is not that of the format");
    case FormatFault::StartBlockOffset:
        return QStringLiteral("the start block is behind the end of the file");
    case FormatFault::StartBlockCheck:
        return QStringLiteral("what should be the start block is something else");
    case FormatFault::Tables:
        break;
    }
    return QStringLiteral("the tables reach behind the end of the file");
}

QString describe(BlockFault fault)
{
    return fault == BlockFault::Check ? QStringLiteral("what should be a data block is something else")
                                      : QStringLiteral("the data block reaches behind the end of the file");
}

std::optional<Flaw> check(Bytes file, Version version)
{
    auto index = ResIndex::parse(file, version);
    if (!index)
        return Flaw{placeOf(index.error(), file), describe(index.error())};
    return Check(file, version, std::move(*index)).run();
}

}
