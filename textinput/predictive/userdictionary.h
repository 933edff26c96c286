// The words that the user typed, and which followed which.
#pragma once

#include "textinput/predictive/dictionary.h"
#include "textinput/twelvekeys/keyletters.h"

#include <QHash>

// Kept small: when it is full, the words that were used least go, of those the ones that were not used for longest.
class UserDictionary {
public:
    static constexpr qsizetype kMostWords = 2000;
    static constexpr qsizetype kMostPairs = 3000;
    static constexpr qsizetype kLongestWord = 32; // UTF-16 units
    static constexpr qsizetype kLargestFile = 1LL << 20; // more than it can hold

    explicit UserDictionary(const KeyLetters &letters) : m_letters(&letters) { }

    // Lines "word TAB uses" and "word TAB next word TAB uses", what was not used for longest first. What is no such
    // line, and what is beyond the limits, is left out.
    void read(const QByteArray &text);
    [[nodiscard]] QByteArray write() const;

    // `before`, in any case, is empty when the word begins a sentence. What the keys cannot type is not learnt.
    void learn(const QString &before, const QString &word);

    struct UsedWord {
        QString text;
        QByteArray keys;
        int uses = 0;
    };
    [[nodiscard]] QList<UsedWord> beginning(const QByteArray &keys) const; // in no order
    [[nodiscard]] QStringList following(const QString &word) const; // the most used first
    [[nodiscard]] int usesAfter(const QString &before, const QString &word) const;
    [[nodiscard]] bool isEmpty() const { return m_words.isEmpty(); }
    [[nodiscard]] quint64 changes() const { return m_count; } // grows with each word that is learnt

private:
    struct Use {
        QByteArray keys; // of a word; empty for a pair
        int uses = 0;
        quint64 last = 0; // the higher, the later
    };
    using Uses = QHash<QString, Use>;
    void use(Uses &uses, const QString &entry, const QByteArray &keys, int times, qsizetype most);
    static void makeRoom(Uses &uses);
    static QByteArray lines(const Uses &uses);
    void readLine(const QString &line);

    const KeyLetters *m_letters;
    Uses m_words;
    Uses m_pairs; // "word TAB next word"
    quint64 m_count = 0;
};
