// The bytes of a dictionary file, for its writer and its reader.
#pragma once

#include <QByteArray>

// 32 bytes of header, then a trie of marisa's in the machine's own byte order, made of keys like
//   "4663 " class word     for each word
//   "46+" class word       for the best words that begin so, where too many do to look at all
// The class is one byte, the lower the more frequent; the word is UTF-8.
namespace dictionaryformat {

inline constexpr char kMagic[] = "TYXDICT1"; // without its NUL
inline constexpr qsizetype kMagicSize = 8;
inline constexpr qsizetype kHashAt = 12; // SHA-1 of all that follows the header; before it four unused bytes
inline constexpr qsizetype kHashSize = 20;
inline constexpr qsizetype kHeaderSize = 32;
static_assert(kHashAt + kHashSize == kHeaderSize);

inline constexpr char kWord = ' ';
inline constexpr char kBest = '+';
inline constexpr char kFirstClass = '@';
inline constexpr int kClasses = 51; // up to 'r'

inline constexpr int kFewWords = 300; // so many are looked at one by one
inline constexpr int kBestWords = 8; // so many stand in for more

}
