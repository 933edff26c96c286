#include "tools/tyx/command.h"

#include "tools/tyx/savefile.h"

#include <QByteArray>
#include <QFile>
#include <QStringList>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <unistd.h>

namespace tyx {

int fail(const QString &message)
{
    std::fprintf(stderr, "tyx: %s\n", message.toUtf8().constData());
    return Failed;
}

int refuse(const QString &message)
{
    std::ignore = fail(message);
    return Usage;
}

QString printable(QByteArrayView bytes)
{
    QString text = QString::fromUtf8(bytes);
    // The halves of a pair are no characters by themselves.
    const auto harmful = [](QChar c) { return !c.isPrint() && !c.isSurrogate(); };
    std::replace_if(text.begin(), text.end(), harmful, u'?');
    return text;
}

void printLine(const QString &line)
{
    static const bool terminal = ::isatty(STDOUT_FILENO) != 0;
    const QByteArray bytes = line.toUtf8();
    const QByteArray text = (terminal ? printable(bytes).toUtf8() : bytes) + '\n';
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
}

void printJson(const QJsonDocument &document)
{
    const QString text = QString::fromUtf8(document.toJson(QJsonDocument::Indented).trimmed());
    for (const QString &line : text.split(u'\n'))
        printLine(line);
}

std::optional<qint64> wholeNumber(const std::string &text)
{
    const bool isHexadecimal = text.starts_with("0x");
    const char *const end = text.data() + text.size();
    const char *const digits = text.data() + (isHexadecimal ? 2 : 0);
    qint64 number = 0;
    const auto [stop, error] = std::from_chars(digits, end, number, isHexadecimal ? 16 : 10);
    const bool isNumber = error == std::errc() && stop == end && !(isHexadecimal && *digits == '-');
    return isNumber ? std::optional(number) : std::nullopt;
}

int saveTo(const std::string &file, const QByteArray &bytes)
{
    if (file == "-") {
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        return Done;
    }
    const QString name = QFile::decodeName(file.c_str());
    const auto saved = saveFile(name, bytes);
    return saved ? int(Done) : failToSave(name, saved.error());
}

int failToSave(const QString &file, const QString &why, int number)
{
    return fail(printable(notSaved(file, why, number).toUtf8()));
}

bool flushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

CLI::Validator numberFrom(double least, double most, const std::string &text)
{
    const auto check = [=](const std::string &word) {
        double number = 0;
        const bool fits = CLI::detail::lexical_cast(word, number) && number >= least && number <= most;
        return fits ? std::string() : "\"" + word + "\" should be " + text;
    };
    return {check, text};
}

CLI::Validator countRange() { return numberFrom(1, 1e9, "a number from 1 to 1000000000"); }

}
