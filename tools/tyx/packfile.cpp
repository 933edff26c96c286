#include "tools/tyx/packfile.h"

#include "res/format/rescheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tyx {

QStringList PackOptions::nameList() const
{
    QStringList list;
    for (const std::string &name : names)
        list.append(QString::fromStdString(name));
    return list;
}

int refuseOtherThanText(const std::vector<std::string> &given)
{
    for (const std::string &text : given) {
        if (!QUtf8StringView(text.data(), qsizetype(text.size())).isValidUtf8())
            return refuse(QStringLiteral("\"%1\" is not UTF-8").arg(printable(text)));
    }
    return Done;
}

QString shown(const QString &text) { return printable(text.toUtf8()); }

int failAll(const QStringList &lines)
{
    for (const QString &line : lines)
        std::ignore = fail(shown(line));
    return Failed;
}

QString reasonOf(const res::LoadError &error, res::Version version)
{
    switch (error.step) {
    case res::LoadError::Name:
        return QStringLiteral("no name of a file; check it");
    case res::LoadError::Open:
        return error.system.text() + QStringLiteral("; check the name");
    case res::LoadError::Map:
        return error.system.text() + QStringLiteral("; name a regular file");
    case res::LoadError::Format:
        break;
    }
    const QString kind = version == res::Version::Skin ? QStringLiteral("skin") : QStringLiteral("resource");
    return res::describe(error.format) + QStringLiteral("; it is no %1 file, or damaged: make it again").arg(kind);
}

tl::expected<res::MappedFile, int> opened(const QString &path, res::Version version)
{
    return res::MappedFile::open(path, version).map_error([&](const res::LoadError &error) {
        return fail(QStringLiteral("%1: %2").arg(shown(path), reasonOf(error, version)));
    });
}

int printDifferences(const Differences &differences, bool json)
{
    QJsonObject object;
    bool differ = false;
    for (const auto &[kind, ids] : differences) {
        differ |= !ids.isEmpty();
        object.insert(kind, QJsonArray::fromStringList(ids));
        for (const QString &id : json ? QStringList() : ids)
            printLine(kind.leftJustified(9) + id);
    }
    if (json)
        printJson(QJsonDocument(object));
    return differ ? AnsweredNo : Done;
}

}
