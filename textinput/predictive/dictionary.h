// The words of a language by the keys that type them, from a file that was made with the phone.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <marisa.h>
#include <memory>
#include <optional>

struct RankedWord {
    QString text;
    int rank = 0; // the lower, the more frequent
    bool operator==(const RankedWord &) const = default;
};

// The file is mapped and stays so: all processes share its memory, and what is not looked at is not read. It is checked
// as a whole when it is opened, which finds damage; it is not made for files whose maker means harm.
class Dictionary {
public:
    // Null when there is none, or it is damaged.
    static std::unique_ptr<Dictionary> open(const QString &path);

    [[nodiscard]] QList<RankedWord> exact(const QByteArray &keys) const; // that these keys type, no more and no less
    // Of those that begin so and go on: some of the best.
    [[nodiscard]] QList<RankedWord> longer(const QByteArray &keys) const;
    [[nodiscard]] bool begins(const QByteArray &keys) const; // any word

private:
    Dictionary() = default;
    struct Entry {
        QByteArray keys;
        char kind;
        RankedWord word;
    };
    static std::optional<Entry> parse(const QByteArray &key);
    [[nodiscard]] QList<Entry> search(const QByteArray &beginning, int most) const;
    [[nodiscard]] QList<RankedWord> words(const QByteArray &beginning, char kind) const;

    QFile m_file; // holds the mapping; before the trie, which reads it
    marisa::Trie m_trie;
};
