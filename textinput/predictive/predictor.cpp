#include "textinput/predictive/predictor.h"

#include <QHash>
#include <algorithm>
#include <bit>

namespace {

constexpr int kOwnWord = 60; // of the user alone: behind all that the dictionary ranks, before use lifts it
constexpr int kUsed = 12; // classes that a word gains by being used once
constexpr int kDoubled = 4; // and each time its uses double
constexpr int kUsedAfter = 16; // and by having followed the word before

int gain(int uses) { return uses > 0 ? kUsed + kDoubled * (std::bit_width(unsigned(uses)) - 1) : 0; }

using Ranks = QHash<QString, int>;

void add(Ranks &ranks, const QList<RankedWord> &words)
{
    for (const RankedWord &word : words)
        ranks.insert(word.text, word.rank);
}

QStringList inOrder(const Ranks &ranks)
{
    QStringList words = ranks.keys();
    std::ranges::sort(
        words, {}, [&ranks](const QString &word) { return std::tuple(ranks.value(word), word.size(), word); });
    return words.first(std::min(words.size(), Predictor::kMostOffered));
}

}

Predictor::Predictor(const KeyLetters &letters, std::unique_ptr<Dictionary> dictionary)
    : m_letters(letters), m_dictionary(std::move(dictionary)), m_user(letters)
{
}

Predictor::Candidates Predictor::candidates(const QByteArray &keys, const QString &before) const
{
    if (keys.isEmpty())
        return {};
    Ranks exact;
    Ranks longer;
    if (m_dictionary) {
        add(exact, m_dictionary->exact(keys));
        add(longer, m_dictionary->longer(keys));
    }
    for (const UserDictionary::UsedWord &used : m_user.beginning(keys)) {
        Ranks &ranks = used.keys.size() == keys.size() ? exact : longer;
        const int after = m_user.usesAfter(before, used.text) > 0 ? kUsedAfter : 0;
        ranks[used.text] = ranks.value(used.text, kOwnWord) - gain(used.uses) - after;
    }
    return {inOrder(exact), inOrder(longer)};
}

bool Predictor::begins(const QByteArray &keys) const
{
    return (m_dictionary && m_dictionary->begins(keys)) || !m_user.beginning(keys).isEmpty();
}

QStringList Predictor::following(const QString &word) const
{
    const QStringList words = word.isEmpty() ? QStringList() : m_user.following(word);
    return words.first(std::min(words.size(), kMostOffered));
}
