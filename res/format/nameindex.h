// A sorted index over all names of a file, for tables whose chains are long.
#pragma once

#include "res/format/resindex.h"

#include <array>
#include <bitset>
#include <vector>

namespace res {

// Consecutive numbers in names make the hash of the format cluster: 10 000 names of the form icon_%06d.g have 128
// different hashes and stand in one chain, where a walk takes 4 700 steps. This index answers as the walk does, with
// 16 bytes for every resource.
class NameIndex {
public:
    explicit NameIndex(const ResIndex &index);

    // What the walk from the slot that the hash names meets first. `index` is the one this was made of.
    [[nodiscard]] std::optional<quint32> find(const ResIndex &index, quint32 hash, QByteArrayView id) const;

private:
    struct Name {
        quint64 key; // of the hash and the text
        quint32 distance; // of the walk that leads here
        quint32 slot;

        friend auto operator<=>(const Name &, const Name &) = default;
    };
    // Of longer texts that many bytes are part of the key: texts that overlap cannot make the index take long.
    static constexpr std::size_t kKeyedSize = 255;

    void add(const ResIndex &index, quint32 slot, quint32 distance);
    [[nodiscard]] const Name *firstOf(const ResIndex &index, quint64 key, quint32 hash, QByteArrayView id) const;

    std::vector<Name> m_names; // sorted
    std::bitset<kKeyedSize + 2> m_sizes; // that occur; kKeyedSize + 1 stands for all that are longer
};

}
