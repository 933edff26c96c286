#include "res/format/resindex.h"

#include "res/format/nameindex.h"
#include "res/format/resid.h"

#include <algorithm>
#include <cstring>

namespace res {

namespace {

// Short chains are no reason for an index.
constexpr quint32 kShortChain = 64;

// Making the index costs as much as this many steps for every slot of the table (measured: 40 to 100).
constexpr quint64 kStepsPerSlot = 64;

// At most eight hexadecimal digits of either case, up to the first character that is none.
quint32 parseDigits(Bytes bytes)
{
    quint32 value = 0;
    for (const std::byte byte : bytes) {
        const char c = static_cast<char>(byte);
        const int digit = c >= '0' && c <= '9' ? c - '0'
            : c >= 'a' && c <= 'f'             ? c - 'a' + 10
            : c >= 'A' && c <= 'F'             ? c - 'A' + 10
                                               : -1;
        if (digit < 0)
            break;
        value = value << 4 | static_cast<quint32>(digit);
    }
    return value;
}

}

ResIndex::ResIndex() = default;
ResIndex::ResIndex(ResIndex &&) noexcept = default;
ResIndex &ResIndex::operator=(ResIndex &&) noexcept = default;
ResIndex::~ResIndex() = default;

tl::expected<ResIndex, FormatFault> ResIndex::parse(Bytes file, Version version)
{
    if (file.size() < size_t(kMagicSize) || std::memcmp(file.data(), magic(version).data(), size_t(kMagicSize)) != 0)
        return tl::make_unexpected(FormatFault::Magic);
    ResIndex index;
    index.m_file = file;
    index.m_entrySize = entrySize(version);
    const Bytes digits = file.subspan(size_t(kMagicSize));
    index.m_startBlock = parseDigits(digits.first(std::min(digits.size(), size_t(kStartDigits))));
    if (quint64{index.m_startBlock} + startblock::size > file.size())
        return tl::make_unexpected(FormatFault::StartBlockOffset);
    const std::byte *block = file.data() + index.m_startBlock;
    if (loadWord(block + startblock::check) != kStartBlockCheck)
        return tl::make_unexpected(FormatFault::StartBlockCheck);
    index.m_idTable = loadWord(block + startblock::idTable);
    index.m_slotCount = loadWord(block + startblock::slotCount);
    index.m_hashTable = loadWord(block + startblock::hashTable);
    index.m_data = loadWord(block + startblock::data);
    const quint64 hashTableEnd = index.m_hashTable + quint64{index.m_slotCount} * index.m_entrySize;
    // A position at the end of the file is inside: without resources there is nothing behind it.
    if (index.m_idTable > file.size() || hashTableEnd > file.size() || index.m_data > file.size())
        return tl::make_unexpected(FormatFault::Tables);
    return index;
}

const std::byte *ResIndex::slotAt(quint32 slot) const { return m_file.data() + m_hashTable + slot * m_entrySize; }

quint32 ResIndex::hashAt(quint32 slot) const { return loadWord(slotAt(slot) + entry::hash); }
quint32 ResIndex::idOffsetAt(quint32 slot) const { return loadWord(slotAt(slot) + entry::id); }
quint32 ResIndex::dataOffsetAt(quint32 slot) const { return loadWord(slotAt(slot) + entry::dataBlock); }

ImageRect ResIndex::rectAt(quint32 slot) const
{
    const std::byte *at = slotAt(slot);
    return {
        loadWord(at + entry::x), loadWord(at + entry::y), loadWord(at + entry::width), loadWord(at + entry::height)};
}

std::optional<quint32> ResIndex::find(QByteArrayView id) const
{
    const quint32 hash = hashVal(id);
    if (hash == kHashOfNothing || m_slotCount == 0)
        return {};
    if (m_names)
        return m_names->find(*this, hash, id);
    std::optional<quint32> found;
    quint32 steps = 0;
    for (quint32 slot = hash % m_slotCount; steps < m_slotCount && !found; ++steps) {
        const quint32 idOffset = idOffsetAt(slot);
        if (idOffset == kNoId)
            break;
        if (hashAt(slot) == hash && holdsBeginningOf(id, idOffset))
            found = slot;
        slot = slot + 1 == m_slotCount ? 0 : slot + 1;
    }
    countSteps(steps);
    return found;
}

// The index is made once walking has cost as much: no sequence of questions then costs more than twice the better way.
void ResIndex::countSteps(quint32 steps) const
{
    if (steps <= kShortChain)
        return;
    m_steps += steps;
    if (m_steps > m_slotCount * kStepsPerSlot)
        m_names = std::make_unique<NameIndex>(*this);
}

Bytes ResIndex::textAt(quint32 idOffset) const
{
    const quint64 position = quint64{m_idTable} + idOffset;
    return position < m_file.size() ? m_file.subspan(size_t(position)) : Bytes();
}

// The text ends at a line end or with the file. One that lies outside the file is no match; an empty one begins every
// identifier.
bool ResIndex::holdsBeginningOf(QByteArrayView id, quint32 idOffset) const
{
    if (quint64{m_idTable} + idOffset > m_file.size())
        return false;
    const Bytes rest = textAt(idOffset);
    const Bytes text = rest.first(std::min(rest.size(), size_t(id.size())));
    const auto end = std::find(text.begin(), text.end(), std::byte{kIdEnd});
    const auto size = size_t(end - text.begin());
    const bool endsHere = end != text.end() || size == rest.size() || rest[size] == std::byte{kIdEnd};
    return endsHere && (size == 0 || std::memcmp(text.data(), id.data(), size) == 0);
}

QByteArrayView ResIndex::idAt(quint32 slot) const
{
    if (slot >= m_slotCount)
        return {};
    const quint32 idOffset = idOffsetAt(slot);
    const Bytes text = idOffset == kNoId ? Bytes() : textAt(idOffset);
    // Behind the last line end nothing has an end: a great many such slots would each search the rest of the file.
    if (text.empty() || (m_lastIdEnd && text.data() > m_file.data() + *m_lastIdEnd))
        return {};
    const void *end = std::memchr(text.data(), kIdEnd, text.size());
    if (!end) {
        const void *last = ::memrchr(m_file.data(), kIdEnd, m_file.size());
        m_lastIdEnd = size_t(static_cast<const std::byte *>(last) - m_file.data()); // the magic line has one
        return {};
    }
    const auto size = static_cast<const std::byte *>(end) - text.data();
    return size == 0 ? QByteArrayView() : QByteArrayView(reinterpret_cast<const char *>(text.data()), size);
}

tl::expected<Bytes, BlockFault> ResIndex::block(quint32 offset) const
{
    const quint64 start = quint64{m_data} + offset;
    if (start + kWord > m_file.size() || loadWord(m_file.data() + size_t(start) + datablock::check) != kDataBlockCheck)
        return tl::make_unexpected(BlockFault::Check);
    if (start + datablock::header > m_file.size())
        return tl::make_unexpected(BlockFault::Size);
    const quint32 size = loadWord(m_file.data() + size_t(start) + datablock::dataSize);
    if (start + datablock::header + size > m_file.size())
        return tl::make_unexpected(BlockFault::Size);
    return m_file.subspan(size_t(start) + datablock::header, size);
}

}
