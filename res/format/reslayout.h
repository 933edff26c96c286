// The bytes of a resource file and of a skin file. docs/formats/resource.md shows the same tables.
#pragma once

#include <QByteArrayView>
#include <QtEndian>
#include <cstddef>

namespace res {

// Which of the two formats: they differ in the magic line and in the entries of the hash table only.
enum class Version {
    Resources, // 1.00: every identifier has a data block of its own
    Skin, // 1.10: every identifier is a rectangle of the image in the only data block
};

// The start of the file: magic line, then the offset of the start block as hexadecimal digits. Readers look at nothing
// else of the header text.
inline constexpr qsizetype kMagicSize = 16;
inline constexpr qsizetype kStartDigits = 8;
inline constexpr qsizetype kFixedHeaderSize = kMagicSize + kStartDigits;
inline constexpr char kResourcesMagic[] = "kovaskin\n\nv1.00\n";
inline constexpr char kSkinMagic[] = "kovaskin\n\nv1.10\n";
static_assert(sizeof kResourcesMagic - 1 == kMagicSize && sizeof kSkinMagic - 1 == kMagicSize);

inline constexpr quint32 kStartBlockCheck = 0xABCDDCBA;
inline constexpr quint32 kDataBlockCheck = 0xDCBAABCD;

inline constexpr std::size_t kWord = 4; // all of them unsigned, least significant byte first

// Offsets in the start block. Offsets that it holds count from the start of the file.
namespace startblock {
inline constexpr std::size_t check = 0;
inline constexpr std::size_t idTable = check + kWord;
inline constexpr std::size_t slotCount = idTable + kWord; // of the hash table, the empty ones too
inline constexpr std::size_t hashTable = slotCount + kWord;
inline constexpr std::size_t data = hashTable + kWord;
inline constexpr std::size_t size = data + kWord;
inline constexpr std::size_t alignment = 4;
static_assert(size == 20);
static_assert(size % alignment == 0); // so the hash table, which follows it, is aligned as well
}

// Offsets in an entry of the hash table.
namespace entry {
inline constexpr std::size_t hash = 0;
inline constexpr std::size_t id = hash + kWord; // counts from the ID table; kNoId in an empty slot
inline constexpr std::size_t value = id + kWord;
inline constexpr std::size_t dataBlock = value; // 1.00: counts from the first data block
inline constexpr std::size_t x = value; // 1.10, in pixels
inline constexpr std::size_t y = x + kWord;
inline constexpr std::size_t width = y + kWord;
inline constexpr std::size_t height = width + kWord;
inline constexpr std::size_t resourcesSize = dataBlock + kWord;
inline constexpr std::size_t skinSize = height + kWord;
static_assert(resourcesSize == 12 && skinSize == 24);
}

// Offsets in a data block; the data follow.
namespace datablock {
inline constexpr std::size_t check = 0;
inline constexpr std::size_t dataSize = check + kWord; // without these two words
inline constexpr std::size_t header = dataSize + kWord;
static_assert(header == 8);
}

inline constexpr char kIdEnd = '\n';
inline constexpr quint32 kNoId = 0xFFFFFFFF;

// Promised: readers have always taken this hash for "no identifier"; one that has it is in the file but not found.
inline constexpr quint32 kHashOfNothing = 0x00FFFFFF;

constexpr QByteArrayView magic(Version version)
{
    return {version == Version::Skin ? kSkinMagic : kResourcesMagic, kMagicSize};
}

constexpr std::size_t entrySize(Version version)
{
    return version == Version::Skin ? entry::skinSize : entry::resourcesSize;
}

// A third of the resources in empty slots keeps the chains of a good hash short.
constexpr quint64 slotCountFor(quint64 resources) { return resources + resources / 3; }

// Words stand at any offset, also at those that the processor cannot load from: they are copied.
inline quint32 loadWord(const std::byte *at) { return qFromLittleEndian<quint32>(at); }
inline void storeWord(char *at, quint32 word) { qToLittleEndian(word, at); }

}
