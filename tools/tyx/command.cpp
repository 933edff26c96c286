#include "tools/tyx/command.h"

#include <QByteArray>
#include <cstdio>

namespace tyx {

int fail(const QString &message)
{
    std::fprintf(stderr, "tyx: %s\n", message.toUtf8().constData());
    return Failed;
}

void printLine(const QString &line)
{
    const QByteArray text = line.toUtf8() + '\n';
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
}

void printJson(const QJsonDocument &document)
{
    const QByteArray text = document.toJson(QJsonDocument::Indented);
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
}

}
