#include "tools/tyx/command.h"

#include <QByteArray>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace tyx {

int fail(const QString &message)
{
    std::fprintf(stderr, "tyx: %s\n", message.toUtf8().constData());
    return Failed;
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

}
