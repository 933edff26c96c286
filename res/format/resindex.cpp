#include "res/format/resindex.h"

#include "res/format/nameindex.h"
#include "res/format/resid.h"

#include <algorithm>
#include <cstring>

namespace res {

namespace {

// Short chains are no reason for an index.
constexpr quint32 kShortChain = 64;

// Making the index is taken to cost as much as this many steps for every slot of the table: an estimate.
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

tl::expected<quint32, FormatFault> ResIndex::startBlockOf(Bytes header, Version version)
{
    if (header.size() < size_t(kMagicSize)
        || std::memcmp(header.data(), magic(version).data(), size_t(kMagicSize)) != 0)
        return tl::make_unexpected(FormatFault::Magic);
    const Bytes digits = header.subspan(size_t(kMagicSize));
    return parseDigits(digits.first(std::min(digits.size(), size_t(kStartDigits))));
}

tl::expected<ResIndex, FormatFault> ResIndex::parse(Bytes file, Version version)
{
    const auto start = startBlockOf(file, version);
    if (!start)
        return tl::make_unexpected(start.error());
    if (quint64{*start} + startblock::size > file.size())
        return tl::make_unexpected(FormatFault::StartBlockOffset);
    return parse(file, *start, file.subspan(*start, startblock::size), version);
}

tl::expected<ResIndex, FormatFault> ResIndex::parse(Bytes file, quint32 start, Bytes startBlock, Version version)
{
    if (startBlock.size() < startblock::size || quint64{start} + startblock::size > file.size())
        return tl::make_unexpected(FormatFault::StartBlockOffset);
    const std::byte *block = startBlock.data();
    if (loadWord(block + startblock::check) != kStartBlockCheck)
        return tl::make_unexpected(FormatFault::StartBlockCheck);
    ResIndex index;
    index.m_file = file;
    index.m_entrySize = entrySize(version);
    index.m_startBlock = start;
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
    quint32 slot = hash % m_slotCount;
    quint32 left = m_slotCount;
    while (left > 0 && !found) {
        const auto end = static_cast<quint32>(std::min(quint64{slot} + left, quint64{m_slotCount}));
        const quint32 candidate = nextCandidate(slot, end, hash);
        left -= candidate - slot;
        slot = candidate == m_slotCount ? 0 : candidate;
        if (candidate == end)
            continue; // around the end of the table, or all of it was seen
        if (idOffsetAt(slot) == kNoId)
            break;
        if (holdsBeginningOf(id, idOffsetAt(slot)))
            found = slot;
        --left;
        slot = slot + 1 == m_slotCount ? 0 : slot + 1;
    }
    countSteps(m_slotCount - left);
    return found;
}

// The first slot from `slot` on that is empty or has the hash; `end` if there is none before it. With nothing else in
// the loop a chain is walked at the speed of memory.
quint32 ResIndex::nextCandidate(quint32 slot, quint32 end, quint32 hash) const
{
    const std::byte *at = slotAt(slot);
    const std::size_t step = m_entrySize;
    while (slot < end && loadWord(at + entry::hash) != hash && loadWord(at + entry::id) != kNoId) {
        ++slot;
        at += step;
    }
    return slot;
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
    std::size_t size = std::min(rest.size(), size_t(id.size()));
    const void *end = size == 0 ? nullptr : std::memchr(rest.data(), kIdEnd, size);
    if (end)
        size = size_t(static_cast<const std::byte *>(end) - rest.data());
    else if (size < rest.size() && rest[size] != std::byte{kIdEnd})
        return false; // it is longer than the identifier
    return size == 0 || std::memcmp(rest.data(), id.data(), size) == 0;
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
