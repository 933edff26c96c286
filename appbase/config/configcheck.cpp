#include "appbase/config/configcheck.h"

#include "appbase/config/configtext.h"

#include <QHash>
#include <algorithm>

namespace config {

namespace {

// Of a reader that has come to its end.
std::optional<Remark> stopOf(const LineReader &reader)
{
    switch (reader.stop()) {
    case LineReader::Stop::End:
        break;
    case LineReader::Stop::EntryBeforeHeader:
        return Remark{reader.number(),
            QStringLiteral("no [group] before this line; reading stops here and the rest is lost at the next save"),
            true};
    case LineReader::Stop::NoEqualsSign:
        return Remark{reader.number(),
            QStringLiteral("no '=' in this line; reading stops here and the rest is lost at the next save"), true};
    }
    return std::nullopt;
}

// Remarks on headers and entries; yields the number of the last line that is read.
int checkLines(QStringView text, std::vector<Remark> &remarks)
{
    QHash<QStringView, int> headers;
    QHash<QStringView, int> keys;
    const auto again = [&remarks](QHash<QStringView, int> &seen, QStringView name, int number, const QString &form) {
        const auto first = seen.constFind(name);
        if (first != seen.cend())
            remarks.push_back({number, form.arg(name).arg(*first), true});
        seen.insert(name, number);
    };
    LineReader reader(text);
    while (reader.next()) {
        const Line &line = reader.line();
        if (line.kind == Line::Kind::Header) {
            keys.clear();
            again(headers, line.left, reader.number(),
                QStringLiteral("group [%1] was in line %2 already; what was read there is dropped"));
        } else {
            again(keys, line.key(), reader.number(),
                QStringLiteral("key '%1' was in line %2 already; that value is dropped"));
        }
    }
    if (const auto stop = stopOf(reader))
        remarks.push_back(*stop);
    return reader.number();
}

void checkBytes(QByteArrayView line, int number, std::vector<Remark> &remarks)
{
    const auto remark = [&](const char *text, bool serious) {
        remarks.push_back({number, QString::fromLatin1(text), serious});
    };
    if (number == 1 && line.startsWith("\xEF\xBB\xBF"))
        remark("a byte order mark; it is dropped at the next save", false);
    if (line.endsWith('\r')) {
        remark("a carriage return ends this line; it is dropped at the next save", false);
        line.chop(1);
    }
    if (line.contains('\r'))
        remark("a carriage return inside this line; only a line feed ends one", true);
    if (line.contains('\0'))
        remark("a NUL character in this line; the file may be damaged", true);
    if (!line.isValidUtf8())
        remark("this line is not UTF-8; each wrong byte reads as U+FFFD and is lost at the next save", true);
}

}

std::vector<Remark> check(const QByteArray &bytes)
{
    std::vector<Remark> remarks;
    const QString text = decoded(bytes);
    const int lastLine = checkLines(text, remarks);
    QByteArrayView rest = bytes;
    for (int number = 1; number <= lastLine; ++number) {
        const qsizetype end = rest.indexOf('\n');
        checkBytes(end < 0 ? rest : rest.first(end), number, remarks);
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
    }
    std::ranges::stable_sort(remarks, {}, &Remark::line);
    return remarks;
}

std::optional<Remark> whereReadingStops(const QByteArray &bytes)
{
    const QString text = decoded(bytes);
    LineReader reader(text);
    while (reader.next()) { }
    return stopOf(reader);
}

}
