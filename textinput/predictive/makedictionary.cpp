// Makes a dictionary of a list of words, while the phone is built: tyx-make-dictionary LANGUAGE LIST OUT
// Each line of the list is a word, a tab, and its class (see dictionaryformat.h). A list without words makes an empty
// file, which the phone does without.
#include "platform/system/filereplace.h"
#include "textinput/predictive/dictionaryformat.h"
#include "textinput/twelvekeys/keyletters.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHash>
#include <algorithm>
#include <cstdio>
#include <marisa.h>
#include <marisa/iostream.h>
#include <span>
#include <sstream>

using namespace dictionaryformat;

namespace {

using Entries = QHash<QByteArray, QList<QByteArray>>; // by the beginning of their keys: class and word

int fail(const QString &text)
{
    std::fprintf(stderr, "tyx-make-dictionary: %s\n", qUtf8Printable(text));
    return 3;
}

void add(Entries &beginnings, marisa::Keyset &set, const QByteArray &keys, const QByteArray &entry)
{
    const QByteArray whole = keys + kWord + entry;
    set.push_back(whole.constData(), std::size_t(whole.size()));
    for (qsizetype length = 1; length < keys.size(); ++length)
        beginnings[keys.first(length)].append(entry);
}

void addBest(Entries &beginnings, marisa::Keyset &set)
{
    for (auto entry = beginnings.begin(); entry != beginnings.end(); ++entry) {
        if (entry->size() <= kFewWords)
            continue;
        std::ranges::sort(*entry);
        for (const QByteArray &best : entry->first(kBestWords)) {
            const QByteArray whole = entry.key() + kBest + best;
            set.push_back(whole.constData(), std::size_t(whole.size()));
        }
    }
}

QByteArray fileOf(const marisa::Trie &trie)
{
    std::ostringstream stream;
    stream << trie;
    const QByteArray body = QByteArray::fromStdString(stream.str());
    return QByteArray(kMagic, kMagicSize) + QByteArray(kHashAt - kMagicSize, '\0')
        + QCryptographicHash::hash(body, QCryptographicHash::Sha1) + body;
}

QByteArray dictionary(const KeyLetters &letters, QFile &list)
{
    marisa::Keyset set;
    Entries beginnings;
    while (!list.atEnd()) {
        const QList<QByteArray> fields = list.readLine().trimmed().split('\t');
        const QByteArray keys = keyletters::digitsOf(letters, QString::fromUtf8(fields.first()));
        if (fields.size() != 2 || keys.isEmpty())
            continue;
        const int rank = std::clamp(fields.at(1).toInt(), 0, kClasses - 1);
        add(beginnings, set, keys, QByteArray(1, char(kFirstClass + rank)) + fields.first());
    }
    if (set.empty())
        return {};
    addBest(beginnings, set);
    marisa::Trie trie;
    trie.build(set);
    return fileOf(trie);
}

}

int main(int argc, char **argv)
{
    if (argc != 4)
        return fail(QStringLiteral("usage: tyx-make-dictionary LANGUAGE LIST OUT"));
    QFile list(QFile::decodeName(argv[2]));
    if (!list.open(QIODevice::ReadOnly))
        return fail(list.fileName() + QStringLiteral(": ") + list.errorString());
    constexpr mode_t kReadable = 0644;
    const QString name = QFile::decodeName(argv[3]);
    const QByteArray bytes = dictionary(keyletters::of(QString::fromLatin1(argv[1])), list);
    if (const auto saved = platform::replaceFile(name, std::as_bytes(std::span(bytes)), kReadable); !saved)
        return fail(name + QStringLiteral(": ") + saved.error().text());
    return 0;
}
