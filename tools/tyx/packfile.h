// What `tyx pack` and `tyx skin` do alike with the files that they make and look into.
#pragma once

#include "res/files/mappedfile.h"
#include "tools/tyx/command.h"
#include "tools/tyx/packfolder.h"
#include "tools/tyx/progress.h"

#include <QStringList>
#include <map>
#include <string>
#include <vector>

namespace tyx {

struct PackOptions {
    std::string file;
    std::string other; // folder, manifest or second file
    std::vector<std::string> names;
    bool json = false;
    bool replace = false;

    [[nodiscard]] QString path() const { return QString::fromStdString(file); }
    [[nodiscard]] QString otherPath() const { return QString::fromStdString(other); }
    [[nodiscard]] QStringList nameList() const;
};

// Names of files are text here; of other bytes, other files would be read and written. Done, or what was told.
int refuseOtherThanText(const std::vector<std::string> &given);
inline int refuseOtherThanText(const PackOptions &options)
{
    std::vector<std::string> given = options.names;
    given.insert(given.end(), {options.file, options.other});
    return refuseOtherThanText(given);
}

// What a file or its name holds may be anything.
QString shown(const QString &text);
int failAll(const QStringList &lines);

QString reasonOf(const res::LoadError &error, res::Version version);
tl::expected<res::MappedFile, int> opened(const QString &path, res::Version version); // the error is told

inline QByteArrayView viewOf(res::Bytes bytes) { return {bytes.data(), qsizetype(bytes.size())}; }

// What readers find, in ascending order of the identifiers; `valueAt` makes of a slot what is wanted of it.
template <typename ValueAt> auto contentsOf(const res::ResIndex &index, const ValueAt &valueAt)
{
    std::map<QByteArray, decltype(valueAt(0U))> contents;
    for (quint32 slot = 0; slot < index.slotCount(); ++slot) {
        const QByteArrayView id = index.idAt(slot);
        if (!id.isNull() && index.find(id) == slot)
            contents.emplace(id.toByteArray(), valueAt(slot));
    }
    return contents;
}

// Those that were asked for, or all of them; a name that is not there is told.
template <typename Contents>
tl::expected<Contents, int> chosen(const PackOptions &options, Contents all, const QString &command)
{
    if (options.names.empty())
        return all;
    Contents some;
    for (const QString &name : options.nameList()) {
        const auto found = all.find(name.toLatin1());
        if (found == all.end()) {
            std::ignore = fail(QStringLiteral("%1: there is no '%2'; tyx %3 list shows what is")
                                   .arg(shown(options.path()), shown(name), command));
            return tl::make_unexpected(int{AnsweredNo});
        }
        some.insert(*found);
    }
    return some;
}

// A resource as bytes, or why there are none.
using Extracted = tl::expected<QByteArray, QString>;

// Writes each of `contents` into the folder of the options; `bytesOf` makes an Extracted of a value.
template <typename Contents, typename BytesOf>
int extractAll(const PackOptions &options, const Contents &contents, const BytesOf &bytesOf)
{
    const auto folder = TargetFolder::open(options.otherPath());
    if (!folder)
        return fail(
            QStringLiteral("%1: %2; name a folder to write to").arg(shown(options.otherPath()), folder.error().text()));
    int exit = Done;
    Progress progress(QStringLiteral("writing"), qsizetype(contents.size()));
    for (const auto &[latin1, value] : contents) {
        const QString id = QString::fromLatin1(latin1);
        const Extracted data = bytesOf(value);
        const QString why = data ? folder->extract(id, *data, options.replace) : data.error();
        if (!why.isNull())
            exit = fail(QStringLiteral("%1: '%2' was not extracted: %3").arg(shown(options.path()), shown(id), why));
        progress.step();
    }
    return exit;
}

// By what has happened to them.
using Differences = std::map<QString, QStringList>;
int printDifferences(const Differences &differences, bool json);

}
