// What is to be packed: the files of a folder, of a manifest, or of a command line.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <tl/expected.hpp>
#include <vector>

namespace tyx {

struct PackItem {
    QString id;
    QString path;
};

// In ascending order of the identifiers, each once. Otherwise what is wrong, a line each: a file that cannot be read, a
// line of the manifest that says nothing, two files of one identifier, an identifier that no reader would find.
using PackItems = tl::expected<std::vector<PackItem>, QStringList>;

// A folder: all files in it and in its folders, without hidden ones. Links count as what they lead to; those to folders
// are not followed. Any other file is a manifest: a path in each line, and behind a tab the identifier if it is not the
// one of the path. Paths are relative to the manifest's folder; empty lines and those that begin with # say nothing.
PackItems itemsOf(const QString &folderOrManifest);

PackItems itemsOf(const QStringList &paths);

// The items in order, or what is wrong with them, told by their paths.
PackItems checkedItems(std::vector<PackItem> items);

// A line of a text that names things.
struct SourceLine {
    QString place; // "file:3"
    QByteArray text; // without its end
};

// All lines but those that say nothing: empty ones, and those that begin with #. Otherwise why the file cannot be read.
tl::expected<std::vector<SourceLine>, QString> linesOf(const QString &path);

// Why an identifier would not be found by readers, or not as it is written; null when it would.
QString whyNoIdentifier(const QString &id);

}
