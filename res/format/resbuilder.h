// Makes what stands before the data of a file: header text, ID table, start block, hash table.
#pragma once

#include "platform/tyxexport.h"
#include "res/format/reslayout.h"

#include <QByteArray>
#include <array>
#include <span>
#include <tl/expected.hpp>
#include <vector>

namespace res {

// An identifier (Latin-1) with what its hash table entry holds behind hash and text: in version 1.00 the offset of its
// data block from the first one, in 1.10 x, y, width and height.
struct Entry {
    QByteArray id;
    std::array<quint32, 4> values{};
};

enum class BuildFault {
    TableFull, // no slot is left for an identifier
    TooLarge, // an offset or a size does not fit into 32 bits
};

struct Head {
    QByteArray bytes;
    bool startBlockMoved = false; // up to a multiple of 4
};

// The head of a file whose entries are in ascending order of their identifiers. Equal identifiers are allowed: the
// first is found. `dataSize` is the size of all data blocks.
TYX_EXPORT tl::expected<Head, BuildFault> buildHead(Version version, std::span<const Entry> sorted, quint64 dataSize);

// The two words in front of `size` bytes of data.
TYX_EXPORT std::array<char, datablock::header> blockHeader(quint32 size);

// For each hash, in order, the slot that it gets in a table of `slotCount` slots: its own or the next free one.
tl::expected<std::vector<quint32>, BuildFault> placed(std::span<const quint32> hashes, quint32 slotCount);

}
