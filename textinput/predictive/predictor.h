// Which words the user may mean: those of the dictionary, and those that the user typed before.
#pragma once

#include "textinput/predictive/userdictionary.h"

#include <QStringList>
#include <memory>

class Predictor {
public:
    static constexpr qsizetype kMostOffered = 24;

    // `dictionary` may be null.
    Predictor(const KeyLetters &letters, std::unique_ptr<Dictionary> dictionary);

    struct Candidates {
        QStringList exact; // that the keys type; the likeliest first
        QStringList longer; // that begin so
    };
    // `before` is the word before; empty: none.
    [[nodiscard]] Candidates candidates(const QByteArray &keys, const QString &before) const;
    [[nodiscard]] bool begins(const QByteArray &keys) const; // any word
    [[nodiscard]] QStringList following(const QString &word) const;
    [[nodiscard]] bool knowsWords() const { return m_dictionary || !m_user.isEmpty(); }

    [[nodiscard]] const KeyLetters &letters() const { return m_letters; }
    UserDictionary &user() { return m_user; }

private:
    const KeyLetters &m_letters; // one of the table
    std::unique_ptr<Dictionary> m_dictionary;
    UserDictionary m_user;
};
