#include "res/format/resbuilder.h"

#include "res/format/headertext.h"
#include "res/format/resid.h"

#include <cstring>
#include <limits>
#include <numeric>

namespace res {

namespace {

constexpr quint64 kMaxWord = std::numeric_limits<quint32>::max();

// Where everything goes, from the start of the file.
struct Places {
    Places(Version version, quint64 idsSize, quint64 resources)
        : idTable(quint64(headerText(version).size()))
        , idsEnd(idTable + idsSize)
        , startBlock((idsEnd + startblock::alignment - 1) / startblock::alignment * startblock::alignment)
        , hashTable(startBlock + startblock::size)
        , slotCount(slotCountFor(resources))
        , data(hashTable + slotCount * entrySize(version))
    {
    }

    quint64 idTable;
    quint64 idsEnd;
    quint64 startBlock;
    quint64 hashTable;
    quint64 slotCount;
    quint64 data;
};

void writeStartBlock(char *at, const Places &places)
{
    storeWord(at + startblock::check, kStartBlockCheck);
    storeWord(at + startblock::idTable, quint32(places.idTable));
    storeWord(at + startblock::slotCount, quint32(places.slotCount));
    storeWord(at + startblock::hashTable, quint32(places.hashTable));
    storeWord(at + startblock::data, quint32(places.data));
}

// The free slots of a hash table. Each taken slot points on to one that is nearer to the next free one, and every
// search shortens the way that it went: long chains, which numbered names give, are walked once and not every time.
class FreeSlots {
public:
    explicit FreeSlots(quint32 count) : m_next(count) { std::iota(m_next.begin(), m_next.end(), 0U); }

    // The first free slot from `slot` on, behind the last one from 0 on; there must be one. It is taken.
    quint32 take(quint32 slot)
    {
        while (m_next[slot] != slot) {
            m_next[slot] = m_next[m_next[slot]];
            slot = m_next[slot];
        }
        m_next[slot] = slot + 1 == m_next.size() ? 0 : slot + 1;
        return slot;
    }

private:
    std::vector<quint32> m_next; // a free slot points to itself
};

QByteArray idTable(std::span<const Entry> sorted)
{
    QByteArray table;
    for (const Entry &entry : sorted)
        table.append(entry.id).append(kIdEnd);
    return table;
}

}

tl::expected<std::vector<quint32>, BuildFault> placed(std::span<const quint32> hashes, quint32 slotCount)
{
    if (hashes.size() > slotCount)
        return tl::make_unexpected(BuildFault::TableFull);
    FreeSlots free(slotCount);
    std::vector<quint32> slots;
    slots.reserve(hashes.size());
    for (const quint32 hash : hashes)
        slots.push_back(free.take(hash % slotCount));
    return slots;
}

tl::expected<Head, BuildFault> buildHead(Version version, std::span<const Entry> sorted, quint64 dataSize)
{
    const QByteArray ids = idTable(sorted);
    const Places places(version, quint64(ids.size()), sorted.size());
    if (places.data + dataSize > kMaxWord)
        return tl::make_unexpected(BuildFault::TooLarge);
    std::vector<quint32> hashes;
    hashes.reserve(sorted.size());
    for (const Entry &entry : sorted)
        hashes.push_back(hashVal(entry.id));
    const auto slots = placed(hashes, quint32(places.slotCount));
    if (!slots)
        return tl::make_unexpected(slots.error());

    Head head{QByteArray(qsizetype(places.data), '\0'), places.startBlock != places.idsEnd};
    char *bytes = head.bytes.data();
    const QByteArrayView text = headerText(version);
    std::memcpy(bytes, text.data(), size_t(text.size()));
    const QByteArray digits = QByteArray::number(places.startBlock, 16).rightJustified(kStartDigits, '0');
    std::memcpy(bytes + kMagicSize, digits.constData(), size_t(kStartDigits));
    std::memcpy(bytes + places.idTable, ids.constData(), size_t(ids.size()));
    writeStartBlock(bytes + places.startBlock, places);
    std::memset(bytes + places.hashTable, 0xFF, size_t(places.data - places.hashTable)); // all slots are empty
    quint32 idOffset = 0;
    for (size_t i = 0; i < sorted.size(); ++i) {
        char *at = bytes + places.hashTable + (*slots)[i] * entrySize(version);
        storeWord(at + entry::hash, hashes[i]);
        storeWord(at + entry::id, idOffset);
        for (size_t value = 0; entry::value + value * kWord < entrySize(version); ++value)
            storeWord(at + entry::value + value * kWord, sorted[i].values[value]);
        idOffset += quint32(sorted[i].id.size()) + 1;
    }
    return head;
}

std::array<char, datablock::header> blockHeader(quint32 size)
{
    std::array<char, datablock::header> words{};
    storeWord(words.data() + datablock::check, kDataBlockCheck);
    storeWord(words.data() + datablock::dataSize, size);
    return words;
}

}
