// Where the fields of the input method state are in the shared segment.
#pragma once

#include <cstddef>

namespace imsegment {

inline constexpr char kFile[] = "/tmp/imsstate.shm"; // whose key the segment has
inline constexpr char kProject = 'g';

// The table of input methods.
inline constexpr int kItems = 12;
inline constexpr std::size_t kItemSize = 68;
inline constexpr std::size_t kItemName = 16; // behind the identifier; in an item, like the next two
inline constexpr std::size_t kItemNameSize = 50;
inline constexpr std::size_t kItemSystem = 66;
inline constexpr std::size_t kTableSize = kItems * kItemSize;

// Offsets in the segment.
inline constexpr std::size_t kChecked = 816; // 16 bits, -1 for none
inline constexpr std::size_t kCount = 818; // 16 bits
inline constexpr std::size_t kOwner = 820; // 32 bits
inline constexpr std::size_t kOwnerName = 824;
inline constexpr std::size_t kOwnerNameSize = 100;
inline constexpr std::size_t kContext = 924;
inline constexpr std::size_t kContextSize = 1000;
inline constexpr std::size_t kCursorX = 1924; // 16 bits
inline constexpr std::size_t kCursorY = 1926; // 16 bits
inline constexpr std::size_t kKeyboardFilter = 1928; // a byte
inline constexpr std::size_t kSize = 1932;

static_assert(kTableSize == kChecked && kContext + kContextSize == kCursorX);

}
