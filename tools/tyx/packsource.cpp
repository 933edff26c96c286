#include "tools/tyx/packsource.h"

#include "res/files/filecontent.h"
#include "res/format/resid.h"
#include "res/format/reslayout.h"
#include "tools/tyx/command.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>

namespace tyx {

namespace {

// Not by the toolkit's iterator: it asks the disk about every file once more.
PackItems itemsOfFolder(const QString &folder)
{
    std::vector<PackItem> items;
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
    for (; !error && entry != std::filesystem::end(entry); entry.increment(error)) {
        std::error_code gone; // a link to nothing, or removed meanwhile
        if (entry->path().filename().native().starts_with('.')) {
            entry.disable_recursion_pending();
        } else if (entry->is_regular_file(gone)) {
            const QString path = QFile::decodeName(entry->path().c_str());
            items.push_back({res::createID(path), path});
        }
    }
    if (error)
        return tl::make_unexpected(
            QStringList(QStringLiteral("%1: %2").arg(folder, QString::fromLocal8Bit(error.message().c_str()))));
    return checkedItems(std::move(items));
}

PackItems itemsOfManifest(const QString &path)
{
    const auto lines = linesOf(path);
    if (!lines)
        return tl::make_unexpected(QStringList(lines.error()));
    const QString folder = QFileInfo(path).path() + u'/';
    std::vector<PackItem> items;
    QStringList errors;
    for (const SourceLine &line : *lines) {
        const qsizetype tab = line.text.indexOf('\t');
        const QString name = QString::fromUtf8(line.text.first(tab < 0 ? line.text.size() : tab));
        const QString id = tab < 0 ? res::createID(name) : QString::fromUtf8(line.text.mid(tab + 1));
        if (name.isEmpty())
            errors.append(QStringLiteral("%1: no path before the tab").arg(line.place));
        else
            items.push_back({id, name.startsWith(u'/') ? name : folder + name});
    }
    if (!errors.isEmpty())
        return tl::make_unexpected(errors);
    return checkedItems(std::move(items));
}

}

PackItems checkedItems(std::vector<PackItem> items)
{
    QStringList errors;
    // By the path too: whose errors come first does not depend on the order in which the disk lists them.
    std::sort(items.begin(), items.end(),
        [](const PackItem &a, const PackItem &b) { return std::tie(a.id, a.path) < std::tie(b.id, b.path); });
    const PackItem *before = nullptr;
    for (const PackItem &item : items) {
        if (const QString why = whyNoIdentifier(item.id); !why.isNull())
            errors.append(QStringLiteral("%1: %2; rename it").arg(item.path, why));
        if (before && before->id == item.id)
            errors.append(QStringLiteral("%1: has the same identifier '%2' as %3; rename one of them")
                              .arg(item.path, item.id, before->path));
        before = &item;
    }
    if (!errors.isEmpty())
        return tl::make_unexpected(errors);
    return items;
}

tl::expected<std::vector<SourceLine>, QString> linesOf(const QString &path)
{
    const auto content = res::fileContent(path);
    if (!content)
        return tl::make_unexpected(QStringLiteral("%1: %2").arg(path, content.error().text()));
    std::vector<SourceLine> lines;
    qsizetype start = 0;
    for (int number = 1; start < content->size(); ++number) {
        const qsizetype found = content->indexOf('\n', start);
        const qsizetype end = found < 0 ? content->size() : found;
        const QByteArray line = content->mid(start, end - start);
        start = end + 1;
        if (!line.isEmpty() && !line.startsWith('#'))
            lines.push_back({QStringLiteral("%1:%2").arg(path, QString::number(number)), line});
    }
    return lines;
}

QString whyNoIdentifier(const QString &id)
{
    if (id.isEmpty())
        return QStringLiteral("the identifier is empty");
    if (id.contains(QChar::fromLatin1(res::kIdEnd)))
        return QStringLiteral("a line feed would end the identifier");
    if (id.contains(QChar::Null))
        return QStringLiteral("a NUL would end the identifier");
    if (std::any_of(id.begin(), id.end(), [](QChar c) { return c.unicode() > 0xFF; }))
        return QStringLiteral("the identifier '%1' is not Latin-1").arg(id);
    if (res::hashVal(id.toLatin1()) == res::kHashOfNothing)
        return QStringLiteral("readers never find the identifier '%1'").arg(id);
    return {};
}

PackItems itemsOf(const QString &folderOrManifest)
{
    return QFileInfo(folderOrManifest).isDir() ? itemsOfFolder(folderOrManifest) : itemsOfManifest(folderOrManifest);
}

PackItems itemsOf(const QStringList &paths)
{
    std::vector<PackItem> items;
    for (const QString &path : paths)
        items.push_back({res::createID(path), path});
    return checkedItems(std::move(items));
}

}
