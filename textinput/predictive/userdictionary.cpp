#include "textinput/predictive/userdictionary.h"

#include <QStringList>
#include <algorithm>

namespace {

constexpr int kMostUses = 1'000'000;
constexpr QChar kTab = u'\t';

// The word before may have the capital of its sentence: it is the same word.
QString pairOf(const QString &before, const QString &word) { return before.toLower() + kTab + word; }

}

void UserDictionary::read(const QByteArray &text)
{
    m_words.clear();
    m_pairs.clear();
    for (const QByteArray &line : text.first(std::min(text.size(), kLargestFile)).split('\n'))
        readLine(QString::fromUtf8(line));
}

void UserDictionary::readLine(const QString &line)
{
    const QStringList fields = line.split(kTab);
    const int uses = std::min(fields.last().toInt(), kMostUses);
    if (uses < 1 || fields.size() < 2 || fields.size() > 3)
        return;
    for (const QString &word : fields.first(fields.size() - 1)) {
        if (word.size() > kLongestWord || keyletters::digitsOf(*m_letters, word).isEmpty())
            return;
    }
    if (fields.size() == 2)
        use(m_words, fields.first(), keyletters::digitsOf(*m_letters, fields.first()), uses, kMostWords);
    else
        use(m_pairs, pairOf(fields.at(0), fields.at(1)), {}, uses, kMostPairs);
}

void UserDictionary::learn(const QString &before, const QString &word)
{
    const QByteArray keys = keyletters::digitsOf(*m_letters, word);
    if (keys.isEmpty() || word.size() > kLongestWord)
        return;
    use(m_words, word, keys, 1, kMostWords);
    if (before.size() <= kLongestWord && !keyletters::digitsOf(*m_letters, before).isEmpty())
        use(m_pairs, pairOf(before, word), {}, 1, kMostPairs);
}

void UserDictionary::use(Uses &uses, const QString &entry, const QByteArray &keys, int times, qsizetype most)
{
    if (uses.size() >= most && !uses.contains(entry))
        makeRoom(uses);
    Use &known = uses[entry];
    known.keys = keys;
    known.uses = std::min(known.uses + times, kMostUses);
    known.last = ++m_count;
}

// Of a tenth at once: it is not done for each word then.
void UserDictionary::makeRoom(Uses &uses)
{
    QStringList entries = uses.keys();
    std::ranges::sort(entries, {}, [&uses](const QString &entry) {
        const Use &use = uses[entry];
        return std::pair(use.uses, use.last);
    });
    for (const QString &entry : entries.first(entries.size() / 10))
        uses.remove(entry);
}

QByteArray UserDictionary::lines(const Uses &uses)
{
    QStringList entries = uses.keys();
    std::ranges::sort(entries, {}, [&uses](const QString &entry) { return uses.value(entry).last; });
    QByteArray lines;
    for (const QString &entry : entries)
        lines += entry.toUtf8() + '\t' + QByteArray::number(uses.value(entry).uses) + '\n';
    return lines;
}

QByteArray UserDictionary::write() const { return lines(m_words) + lines(m_pairs); }

QList<UserDictionary::UsedWord> UserDictionary::beginning(const QByteArray &keys) const
{
    QList<UsedWord> found;
    for (auto word = m_words.cbegin(); word != m_words.cend(); ++word) {
        if (word->keys.startsWith(keys))
            found.append({word.key(), word->keys, word->uses});
    }
    return found;
}

QStringList UserDictionary::following(const QString &word) const
{
    QList<std::pair<Use, QString>> found;
    for (auto pair = m_pairs.cbegin(); pair != m_pairs.cend(); ++pair) {
        if (pair.key().startsWith(pairOf(word, {})))
            found.append({*pair, pair.key().sliced(word.size() + 1)});
    }
    std::ranges::sort(
        found, std::greater(), [](const auto &each) { return std::pair(each.first.uses, each.first.last); });
    QStringList words;
    for (const auto &[use, next] : found)
        words.append(next);
    return words;
}

int UserDictionary::usesAfter(const QString &before, const QString &word) const
{
    return m_pairs.value(pairOf(before, word)).uses;
}
