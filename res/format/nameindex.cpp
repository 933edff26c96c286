#include "res/format/nameindex.h"

#include <algorithm>

namespace res {

namespace {

// FNV-1a, seeded with the hash of the whole text, which is already at hand. Keys only narrow the search: the texts are
// compared.
class Key {
public:
    explicit Key(quint32 hash) : m_value(0xCBF29CE484222325U ^ hash) { }
    void add(uchar byte) { m_value = (m_value ^ byte) * 0x100000001B3U; }
    [[nodiscard]] quint64 ofSize(std::size_t size) const { return m_value ^ quint64(size) << 48; }

private:
    quint64 m_value;
};

}

NameIndex::NameIndex(const ResIndex &index)
{
    const quint32 count = index.slotCount();
    quint32 empty = 0;
    while (empty < count && index.idOffsetAt(empty) != kNoId)
        ++empty;
    // A walk reaches a slot when no empty one is on the way. One round, begun behind an empty slot, sees for each slot
    // how long it has been since the last one; without any, everything is reached.
    const quint32 first = empty == count ? 0 : empty + 1;
    quint32 sinceEmpty = empty == count ? count : 0;
    for (quint32 step = 0; step < count; ++step) {
        const auto slot = static_cast<quint32>((quint64{first} + step) % count);
        const quint32 home = index.hashAt(slot) % count;
        const quint32 distance = slot >= home ? slot - home : count - home + slot;
        if (index.idOffsetAt(slot) == kNoId)
            sinceEmpty = 0;
        else if (distance <= sinceEmpty)
            add(index, slot, distance);
        if (empty != count && index.idOffsetAt(slot) != kNoId)
            ++sinceEmpty;
    }
    std::sort(m_names.begin(), m_names.end());
}

void NameIndex::add(const ResIndex &index, quint32 slot, quint32 distance)
{
    if (quint64{index.idTable()} + index.idOffsetAt(slot) > index.m_file.size())
        return;
    const Bytes rest = index.textAt(index.idOffsetAt(slot));
    const Bytes text = rest.first(std::min(rest.size(), kKeyedSize + 1));
    Key key(index.hashAt(slot));
    std::size_t size = 0;
    for (; size < text.size() && text[size] != std::byte{kIdEnd}; ++size) {
        if (size < kKeyedSize)
            key.add(static_cast<uchar>(text[size]));
    }
    m_sizes.set(size);
    m_names.push_back({key.ofSize(size), distance, slot});
}

std::optional<quint32> NameIndex::find(const ResIndex &index, quint32 hash, QByteArrayView id) const
{
    const Name *nearest = nullptr;
    Key key(hash);
    const auto idSize = static_cast<std::size_t>(id.size());
    // Every beginning of the identifier may be the stored text.
    for (std::size_t size = 0; size <= std::min(idSize, kKeyedSize + 1); ++size) {
        if (m_sizes.test(size)) {
            const Name *found = firstOf(index, key.ofSize(size), hash, id);
            if (found && (!nearest || found->distance < nearest->distance))
                nearest = found;
        }
        if (size < std::min(idSize, kKeyedSize))
            key.add(static_cast<uchar>(id[qsizetype(size)]));
    }
    return nearest ? std::optional(nearest->slot) : std::nullopt;
}

const NameIndex::Name *NameIndex::firstOf(const ResIndex &index, quint64 key, quint32 hash, QByteArrayView id) const
{
    auto name = std::lower_bound(
        m_names.begin(), m_names.end(), key, [](const Name &one, quint64 other) { return one.key < other; });
    for (; name != m_names.end() && name->key == key; ++name) {
        if (index.hashAt(name->slot) == hash && index.holdsBeginningOf(id, index.idOffsetAt(name->slot)))
            return &*name;
    }
    return nullptr;
}

}
