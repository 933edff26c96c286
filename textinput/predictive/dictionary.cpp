#include "textinput/predictive/dictionary.h"

#include "textinput/predictive/dictionaryformat.h"

#include <QCryptographicHash>
#include <algorithm>

using namespace dictionaryformat;

namespace {

constexpr int kMostOfOneKind = 500; // words that the same keys type are some dozens
constexpr qint64 kLargestFile = 32LL << 20;

}

// The library reports what is wrong with a file by throwing.
std::unique_ptr<Dictionary> Dictionary::open(const QString &path)
{
    std::unique_ptr<Dictionary> dictionary(new Dictionary);
    QFile &file = dictionary->m_file;
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() <= kHeaderSize || file.size() > kLargestFile)
        return nullptr;
    const uchar *bytes = file.map(0, file.size());
    if (!bytes)
        return nullptr;
    const auto all = QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), qsizetype(file.size()));
    const QByteArray body = QByteArray::fromRawData(all.constData() + kHeaderSize, all.size() - kHeaderSize);
    if (!all.startsWith(QByteArrayView(kMagic, kMagicSize))
        || QCryptographicHash::hash(body, QCryptographicHash::Sha1) != all.sliced(kHashAt, kHashSize))
        return nullptr;
    try {
        dictionary->m_trie.map(body.constData(), std::size_t(body.size()));
    } catch (...) {
        return nullptr;
    }
    return dictionary;
}

std::optional<Dictionary::Entry> Dictionary::parse(const QByteArray &key)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto end = std::find_if_not(key.begin(), key.end(), isDigit);
    const qsizetype length = end - key.begin();
    if (key.size() < length + 3)
        return std::nullopt;
    Entry entry{key.first(length), key.at(length),
        {QString::fromUtf8(key.sliced(length + 2)), key.at(length + 1) - kFirstClass}};
    // Its users cut words by their keys.
    const bool fits = entry.kind == kBest ? entry.word.text.size() > length : entry.word.text.size() == length;
    return fits ? std::optional(std::move(entry)) : std::nullopt;
}

QList<Dictionary::Entry> Dictionary::search(const QByteArray &beginning, int most) const
{
    QList<Entry> found;
    try {
        marisa::Agent agent;
        agent.set_query(beginning.constData(), std::size_t(beginning.size()));
        while (found.size() < most && m_trie.predictive_search(agent)) {
            if (const auto entry = parse(QByteArray(agent.key().ptr(), qsizetype(agent.key().length()))))
                found.append(*entry);
        }
    } catch (...) {
        return {};
    }
    return found;
}

QList<RankedWord> Dictionary::words(const QByteArray &beginning, char kind) const
{
    QList<RankedWord> words;
    for (const Entry &entry : search(beginning + kind, kMostOfOneKind))
        words.append(entry.word);
    return words;
}

QList<RankedWord> Dictionary::exact(const QByteArray &keys) const { return words(keys, kWord); }

QList<RankedWord> Dictionary::longer(const QByteArray &keys) const
{
    constexpr int kMostLookedAt = 2000; // the few words, and what stands in for more
    QList<RankedWord> longer = words(keys, kBest);
    if (!longer.isEmpty())
        return longer;
    for (const Entry &entry : search(keys, kMostLookedAt)) {
        if (entry.kind == kWord && entry.keys.size() > keys.size())
            longer.append(entry.word);
    }
    return longer;
}

bool Dictionary::begins(const QByteArray &keys) const { return !search(keys, 1).isEmpty(); }
