#include "res/format/headertext.h"

#include <algorithm>
#include <array>

namespace res {

namespace {

constexpr char kOffset[] = "XXXXXXXX";
static_assert(sizeof kOffset - 1 == kStartDigits);

constexpr char kResourcesPurpose[] = R"(

This is a resource file: images, sounds and other files, packed into one
and found by name. The text up to "ID table:" is for people. Programs read
the first 24 bytes only: the two lines of the format, and the offset of
the start block as 8 hexadecimal digits.
)";

constexpr char kSkinPurpose[] = R"(

This is a skin file: one image that holds all the pictures of a skin, and
the rectangle of each picture by name. The text up to "ID table:" is for
people. Programs read the first 24 bytes only: the two lines of the
format, and the offset of the start block as 8 hexadecimal digits.
)";

constexpr char kLayout[] = R"(
All numbers are unsigned, 32 bits wide, least significant byte first.
Offsets count from the start of the file unless something else is said.

  header        this text
  ID table      every ID, one to a line, sorted by the codes of its
                characters (Latin-1); each line ends in one byte 0x0A
  padding       0 to 3 bytes 0, so that the start block begins at a
                multiple of 4
  start block   5 numbers:
                  check             0xABCDDCBA
                  IDTableOffset     of the ID table
                  nHashTableEntries slots in the hash table: for n IDs
                                    n + n/3, n/3 rounded down
                  hashTableOffset   of the hash table, which follows here
                  dataOffset        of the data, which follow it
)";

constexpr char kResourcesTables[] = R"(  hash table    for every slot 3 numbers, all bits 1 in an empty slot:
                  hashedID          the hash of the ID
                  IDOffset          of the ID's line, from IDTableOffset
                  dataOffset        of its data block, from dataOffset
  data          for every ID a data block, in the order of the ID table
                and without gaps:
                  check             0xDCBAABCD
                  size              of what follows, in bytes
                  the resource      a file as it was packed
)";

constexpr char kSkinTables[] = R"(  hash table    for every slot 6 numbers, all bits 1 in an empty slot:
                  hashedID          the hash of the ID
                  IDOffset          of the ID's line, from IDTableOffset
                  x, y              of the picture's top left corner in
                                    the image, in pixels
                  width, height     of the picture, in pixels
  data          one data block:
                  check             0xDCBAABCD
                  size              of what follows, in bytes
                  the image         a PNG, JPEG or other image file
)";

constexpr char kHash[] = R"(
The hash of an ID, where >> keeps the sign of a signed number:

  int hv = 0;
  for (const unsigned char *c = id; *c; c++)
      hv = (hv << 1) ^ (hv >> 20) ^ *c;

Its slot is the hash modulo nHashTableEntries, the hash taken as unsigned.
If that one is taken it is the next free slot, where slot 0 follows the
last one. Whoever looks for an ID goes the same way, up to an empty slot.
An ID whose hash is 0x00FFFFFF is never found.
)";

constexpr char kResourcesIds[] = R"(
The ID of a file is its name without folders. .jpg, .gif, .png and .jpeg
become .g; .mp3, .wav, .aac, .mid and .amr become .a.
)";

constexpr char kSkinIds[] = R"(
The ID of a picture is its name and .g behind it.
)";

constexpr char kEnd[] = R"(
ID table:

)";

// One text, NUL-terminated, of several.
template <std::size_t... N> consteval auto joined(const char (&...parts)[N])
{
    std::array<char, (... + (N - 1)) + 1> text{};
    auto end = text.begin();
    ((end = std::copy_n(parts, N - 1, end)), ...);
    return text;
}

constexpr auto kResourcesText =
    joined(kResourcesMagic, kOffset, kResourcesPurpose, kLayout, kResourcesTables, kHash, kResourcesIds, kEnd);
constexpr auto kSkinText = joined(kSkinMagic, kOffset, kSkinPurpose, kLayout, kSkinTables, kHash, kSkinIds, kEnd);

}

QByteArrayView headerText(Version version)
{
    if (version == Version::Skin)
        return {kSkinText.data(), kSkinText.size() - 1};
    return {kResourcesText.data(), kResourcesText.size() - 1};
}

const char *resourcesHeaderText() { return kResourcesText.data(); }
const char *skinHeaderText() { return kSkinText.data(); }

}
