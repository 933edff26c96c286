// The text form of a configuration: one tokenizer, and the sorted store that the whole of a text becomes.
// Not installed; what is exported is for the tools.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <vector>

namespace config {

// QString::trimmed(), at hand for lines that need none: most of them.
inline QStringView stripped(QStringView text)
{
    const QChar *begin = text.begin();
    const QChar *end = text.end();
    while (begin != end && begin->isSpace())
        ++begin;
    while (begin != end && end[-1].isSpace())
        --end;
    return {begin, end};
}

// One line of a configuration file, taken apart. All views point into the text it was read from.
struct Line {
    enum class Kind { Blank, Header, Entry, Stray };

    [[nodiscard]] QStringView key() const { return stripped(left); }
    [[nodiscard]] QStringView value() const { return stripped(right); } // never null

    Kind kind = Kind::Blank;
    QStringView left; // the group's name, or what stands before the sign
    QStringView right; // what stands behind it
};
Line parseLine(QStringView line);

// Walks the headers and entries of a text, up to its end or to the first line that is neither.
class LineReader {
public:
    enum class Stop { End, EntryBeforeHeader, NoEqualsSign };

    explicit LineReader(QStringView text) : m_rest(text) { }

    bool next(); // moves to the next header or entry; false: reading stops here
    [[nodiscard]] const Line &line() const { return m_line; }
    [[nodiscard]] int number() const { return m_number; } // of the current line, from 1
    [[nodiscard]] Stop stop() const { return m_stop; } // why next() was false

private:
    QStringView takeLine();

    QStringView m_rest;
    Line m_line;
    Stop m_stop = Stop::End;
    int m_number = 0;
    bool m_anyHeader = false;
};

// What a text answers to one question, found by reading the whole of it once and keeping nothing.
struct Answer {
    bool groupExists = false;
    QStringView value; // null when the key is absent; else a view of the text
};
TYX_EXPORT Answer lookUp(QStringView text, QStringView group, QStringView key);

struct Entry {
    QString key;
    QString value; // null only when a null value was stored
};

// Ordered by key, each key once; all orders are by UTF-16 code units.
struct TYX_EXPORT Group {
    QString name;
    std::vector<Entry> entries;

    [[nodiscard]] const Entry *find(QStringView key) const;
    void set(const QString &key, const QString &value);
    void remove(QStringView key);
};

// All of a configuration. Strings that came from the text are views of it in QString's clothes: a copy that is handed
// out has to be a deep one (see copied()).
class TYX_EXPORT ConfigText {
public:
    ConfigText() = default;
    explicit ConfigText(const QString &text); // the part of it before reading stops

    [[nodiscard]] QByteArray format() const;

    [[nodiscard]] const std::vector<Group> &groups() const { return m_groups; } // ordered by name, each name once
    [[nodiscard]] Group *find(QStringView name); // until the next ensure() or remove()
    Group &ensure(const QString &name); // the group of that name, made empty when it is missing
    void remove(QStringView name);

private:
    QString m_text; // what the strings of m_groups point into
    std::vector<Group> m_groups;
};

// A string of its own, null staying null, of one that may be a view.
inline QString copied(QStringView text) { return QString(text.data(), text.size()); }

// The characters of a file: what is not UTF-8 becomes U+FFFD, a byte order mark at the start is dropped.
inline QString decoded(const QByteArray &bytes) { return QString::fromUtf8(bytes); }

}
