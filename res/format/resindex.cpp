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

ResIndex::ResIndex(Bytes file, const FileTables &tables) : m_file(file), m_tables(tables) { }

tl::expected<quint32, FormatFault> FileTables::startBlockOf(Bytes header, Version version)
{
    if (header.size() < size_t(kMagicSize)
        || std::memcmp(header.data(), magic(version).data(), size_t(kMagicSize)) != 0)
        return tl::make_unexpected(FormatFault::Magic);
    const Bytes digits = header.subspan(size_t(kMagicSize));
    return parseDigits(digits.first(std::min(digits.size(), size_t(kStartDigits))));
}

tl::expected<FileTables, FormatFault> FileTables::parse(
    quint64 fileSize, quint32 start, Bytes startBlock, Version version)
{
    if (startBlock.size() < startblock::size || quint64{start} + startblock::size > fileSize)
        return tl::make_unexpected(FormatFault::StartBlockOffset);
    const std::byte *block = startBlock.data();
    if (loadWord(block + startblock::check) != kStartBlockCheck)
        return tl::make_unexpected(FormatFault::StartBlockCheck);
    FileTables tables;
    tables.fileSize = fileSize;
    tables.entrySize = res::entrySize(version);
    tables.startBlock = start;
    tables.idTable = loadWord(block + startblock::idTable);
    tables.slotCount = loadWord(block + startblock::slotCount);
    tables.hashTable = loadWord(block + startblock::hashTable);
    tables.data = loadWord(block + startblock::data);
    // A position at the end of the file is inside: without resources there is nothing behind it.
    if (tables.idTable > fileSize || tables.slotAt(tables.slotCount) > fileSize || tables.data > fileSize)
        return tl::make_unexpected(FormatFault::Tables);
    return tables;
}

// A stored text that is longer than the identifier does not begin it.
bool beginsWithStored(QByteArrayView id, Bytes stored)
{
    std::size_t size = std::min(stored.size(), size_t(id.size()));
    const void *end = size == 0 ? nullptr : std::memchr(stored.data(), kIdEnd, size);
    if (end)
        size = size_t(static_cast<const std::byte *>(end) - stored.data());
    else if (size < stored.size() && stored[size] != std::byte{kIdEnd})
        return false;
    return size == 0 || std::memcmp(stored.data(), id.data(), size) == 0;
}

tl::expected<ResIndex, FormatFault> ResIndex::parse(Bytes file, Version version)
{
    return FileTables::startBlockOf(file, version)
        .and_then([&](quint32 start) {
            const Bytes block = start < file.size() ? file.subspan(start) : Bytes();
            return FileTables::parse(file.size(), start, block, version);
        })
        .map([&](const FileTables &tables) { return ResIndex(file, tables); });
}

const std::byte *ResIndex::slotAt(quint32 slot) const { return m_file.data() + m_tables.slotAt(slot); }

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
    if (hash == kHashOfNothing || m_tables.slotCount == 0)
        return {};
    if (m_names)
        return m_names->find(*this, hash, id);
    std::optional<quint32> found;
    quint32 slot = hash % m_tables.slotCount;
    quint32 left = m_tables.slotCount;
    while (left > 0 && !found) {
        const auto end = static_cast<quint32>(std::min(quint64{slot} + left, quint64{m_tables.slotCount}));
        const quint32 candidate = nextCandidate(slot, end, hash);
        left -= candidate - slot;
        slot = candidate == m_tables.slotCount ? 0 : candidate;
        if (candidate == end)
            continue; // around the end of the table, or all of it was seen
        if (idOffsetAt(slot) == kNoId)
            break;
        if (holdsBeginningOf(id, idOffsetAt(slot)))
            found = slot;
        --left;
        slot = slot + 1 == m_tables.slotCount ? 0 : slot + 1;
    }
    countSteps(m_tables.slotCount - left);
    return found;
}

// The first slot from `slot` on that is empty or has the hash; `end` if there is none before it. With nothing else in
// the loop a chain is walked at the speed of memory.
quint32 ResIndex::nextCandidate(quint32 slot, quint32 end, quint32 hash) const
{
    const std::byte *at = slotAt(slot);
    const std::size_t step = m_tables.entrySize;
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
    if (m_steps > m_tables.slotCount * kStepsPerSlot)
        m_names = std::make_unique<NameIndex>(*this);
}

Bytes ResIndex::textAt(quint32 idOffset) const
{
    const quint64 position = quint64{m_tables.idTable} + idOffset;
    return position < m_file.size() ? m_file.subspan(size_t(position)) : Bytes();
}

bool ResIndex::holdsBeginningOf(QByteArrayView id, quint32 idOffset) const
{
    return quint64{m_tables.idTable} + idOffset <= m_file.size() && beginsWithStored(id, textAt(idOffset));
}

QByteArrayView ResIndex::idAt(quint32 slot) const
{
    if (slot >= m_tables.slotCount)
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
    const quint64 start = quint64{m_tables.data} + offset;
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
