// Finds resources in the bytes of a file, and believes none of them.
//
// All sums of offsets are made in 64 bits, where 32-bit words cannot wrap.
#pragma once

#include "platform/tyxexport.h"
#include "res/format/reslayout.h"

#include <memory>
#include <optional>
#include <span>
#include <tl/expected.hpp>

namespace res {

using Bytes = std::span<const std::byte>;

// Why bytes are not a file of the version that was asked for, in the order of the checks.
enum class FormatFault {
    Magic,
    StartBlockOffset, // the start block ends behind the end of the file
    StartBlockCheck,
    Tables, // the ID table, the hash table, its end or the data begin behind the end of the file
};

enum class BlockFault {
    Check, // its first word is wrong, or lies behind the end of the file
    Size, // it ends behind the end of the file
};

// In pixels of the skin's image. Any values: they are not compared with the image.
struct ImageRect {
    quint32 x = 0;
    quint32 y = 0;
    quint32 width = 0;
    quint32 height = 0;

    friend bool operator==(const ImageRect &, const ImageRect &) = default;
};

// Where everything is in a file, in bytes from its start, as the start block has it; looked at, so that it lies inside.
struct FileTables {
    // The offset of the start block; of the header kFixedHeaderSize bytes are looked at.
    TYX_EXPORT static tl::expected<quint32, FormatFault> startBlockOf(Bytes header, Version version);
    // `startBlock` holds what the file has at `start`, as far as it goes.
    static tl::expected<FileTables, FormatFault> parse(
        quint64 fileSize, quint32 start, Bytes startBlock, Version version);

    [[nodiscard]] quint64 slotAt(quint32 slot) const { return hashTable + quint64{slot} * entrySize; }

    quint64 fileSize = 0;
    std::size_t entrySize = entry::resourcesSize;
    quint32 startBlock = 0;
    quint32 idTable = 0;
    quint32 slotCount = 0;
    quint32 hashTable = 0;
    quint32 data = 0;
};

// Whether an identifier begins with a stored text, whose end is a line end or that of the bytes. Of these, one more
// than the identifier has are enough. An empty text begins every identifier.
bool beginsWithStored(QByteArrayView id, Bytes stored);

class NameIndex;

// The tables of one file. The bytes belong to somebody else and outlive this object. To parse looks at the header and
// the start block only; a question touches a slot, its text, and the slots that stand in the way.
class TYX_EXPORT ResIndex {
public:
    ResIndex(); // of no file: without slots
    static tl::expected<ResIndex, FormatFault> parse(Bytes file, Version version);
    // Of a file whose tables were found by other means: to read a few bytes costs a fraction of what it costs to touch
    // a page of a mapping for the first time. `file` has the size that they were held against.
    ResIndex(Bytes file, const FileTables &tables);

    ResIndex(ResIndex &&) noexcept;
    ResIndex &operator=(ResIndex &&) noexcept;
    ~ResIndex();

    [[nodiscard]] quint32 slotCount() const { return m_tables.slotCount; }

    // The slot of an identifier (Latin-1). Promised: a stored identifier of the same hash that `id` begins with is
    // found too; of several it is the first one on the way from the slot that the hash names. An identifier whose hash
    // is kHashOfNothing is not found.
    [[nodiscard]] std::optional<quint32> find(QByteArrayView id) const;

    // The identifier in a slot for who visits them all. Promised: null for a slot that is empty or does not exist, and
    // for a text that is empty or has no line end before the end of the file.
    [[nodiscard]] QByteArrayView idAt(quint32 slot) const;

    // What a slot holds besides; the slot exists and is not empty.
    [[nodiscard]] quint32 hashAt(quint32 slot) const;
    [[nodiscard]] quint32 idOffsetAt(quint32 slot) const; // counts from the ID table; kNoId when it is empty after all
    [[nodiscard]] quint32 dataOffsetAt(quint32 slot) const; // of version 1.00, for block()
    [[nodiscard]] ImageRect rectAt(quint32 slot) const; // of version 1.10

    // The data of the block at an offset from the first one.
    [[nodiscard]] tl::expected<Bytes, BlockFault> block(quint32 offset) const;

    // Offsets in the file, as the start block has them.
    [[nodiscard]] quint32 startBlock() const { return m_tables.startBlock; }
    [[nodiscard]] quint32 idTable() const { return m_tables.idTable; }
    [[nodiscard]] quint32 hashTable() const { return m_tables.hashTable; }
    [[nodiscard]] quint32 data() const { return m_tables.data; }

private:
    friend class NameIndex;
    [[nodiscard]] const std::byte *slotAt(quint32 slot) const;
    [[nodiscard]] Bytes textAt(quint32 idOffset) const; // from there to the end of the file
    [[nodiscard]] bool holdsBeginningOf(QByteArrayView id, quint32 idOffset) const;
    [[nodiscard]] quint32 nextCandidate(quint32 slot, quint32 end, quint32 hash) const;
    void countSteps(quint32 steps) const;

    Bytes m_file;
    FileTables m_tables;
    mutable std::optional<Bytes::size_type> m_lastIdEnd; // in the file, once it was asked for
    mutable quint64 m_steps = 0; // along chains so far
    mutable std::unique_ptr<NameIndex> m_names; // once the steps would have paid for it
};

}
