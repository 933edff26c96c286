// tyx pack: makes resource files of folders, and looks into them.
#include "res/files/filecontent.h"
#include "res/files/util_resfilewriter.h"
#include "res/format/rescheck.h"
#include "tools/tyx/packfile.h"
#include "tools/tyx/packsource.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tyx {

namespace {

using Options = PackOptions;
using res::MappedFile;

tl::expected<MappedFile, int> opened(const QString &path) { return tyx::opened(path, res::Version::Resources); }

// In ascending order of the identifiers.
using Contents = std::map<QByteArray, tl::expected<res::Bytes, res::BlockFault>>;

Contents contentsOf(const MappedFile &file)
{
    return tyx::contentsOf(
        file.index(), [&](quint32 slot) { return file.index().block(file.index().dataOffsetAt(slot)); });
}

// Reads the files for the writer, which they outlive; the first that cannot be read is told.
int addFiles(UTIL_ResFileWriter &writer, platform::FileContents &files, const std::vector<PackItem> &items)
{
    Progress progress(QStringLiteral("reading"), qsizetype(items.size()));
    for (const PackItem &item : items) {
        const auto content = files.read(item.path, res::kMaxResourceBytes);
        if (!content)
            return fail(QStringLiteral("%1: %2; nothing was written").arg(shown(item.path), content.error().text()));
        writer.add(item.id, *content);
        progress.step();
    }
    return Done;
}

int save(UTIL_ResFileWriter &writer)
{
    QString error;
    return writer.save(&error) ? int{Done} : failToSave(writer.fileName(), error);
}

int create(const Options &options)
{
    const auto items = itemsOf(options.otherPath());
    if (!items)
        return failAll(items.error());
    platform::FileContents files;
    UTIL_ResFileWriter writer(options.path());
    const int read = addFiles(writer, files, *items);
    return read == Done ? save(writer) : read;
}

int add(const Options &options)
{
    const auto old = opened(options.path());
    if (!old)
        return old.error();
    if (const auto flaw = res::check(old->bytes(), res::Version::Resources))
        return fail(QStringLiteral("%1: byte %2: %3; make it again with tyx pack create")
                        .arg(shown(options.path()), QString::number(flaw->offset), shown(flaw->text)));
    const auto items = itemsOf(options.nameList());
    if (!items)
        return failAll(items.error());
    Contents contents = contentsOf(*old);
    QStringList conflicts;
    for (const PackItem &item : *items) {
        if (contents.erase(item.id.toLatin1()) > 0 && !options.replace)
            conflicts.append(QStringLiteral("%1: %2 holds '%3' already; replace it with --replace")
                                 .arg(item.path, options.path(), item.id));
    }
    if (!conflicts.isEmpty())
        return failAll(conflicts);
    platform::FileContents files;
    UTIL_ResFileWriter writer(options.path());
    for (const auto &[id, data] : contents) // which stay mapped
        writer.add(QString::fromLatin1(id), QByteArray::fromRawData(viewOf(*data).data(), viewOf(*data).size()));
    const int read = addFiles(writer, files, *items);
    return read == Done ? save(writer) : read;
}

int list(const Options &options)
{
    const auto file = opened(options.path());
    if (!file)
        return file.error();
    QJsonArray array;
    for (const auto &[id, data] : contentsOf(*file)) {
        const QString text = QString::fromLatin1(id);
        if (!options.json) {
            printLine(
                QStringLiteral("%1  %2").arg(text, data ? QString::number(data->size()) : res::describe(data.error())));
            continue;
        }
        QJsonObject object{{QStringLiteral("id"), text}};
        if (data) {
            object.insert(QStringLiteral("size"), qint64(data->size()));
            object.insert(QStringLiteral("offset"), qint64(data->data() - file->bytes().data()));
        } else {
            object.insert(QStringLiteral("error"), res::describe(data.error()));
        }
        array.append(object);
    }
    if (options.json)
        printJson(QJsonDocument(array));
    return Done;
}

int extract(const Options &options)
{
    const auto file = opened(options.path());
    if (!file)
        return file.error();
    const auto contents = chosen(options, contentsOf(*file), QStringLiteral("pack"));
    if (!contents)
        return contents.error();
    return extractAll(options, *contents, [](const Contents::mapped_type &data) {
        return data
            .map([](res::Bytes bytes) { return QByteArray::fromRawData(viewOf(bytes).data(), viewOf(bytes).size()); })
            .map_error([](res::BlockFault fault) { return res::describe(fault); });
    });
}

int verify(const Options &options)
{
    const auto mapping = res::mapFile(options.path());
    if (!mapping)
        return fail(
            QStringLiteral("%1: %2").arg(shown(options.path()), reasonOf(mapping.error(), res::Version::Resources)));
    const bool skin = viewOf(mapping->bytes()).startsWith(res::magic(res::Version::Skin));
    const auto flaw = res::check(mapping->bytes(), skin ? res::Version::Skin : res::Version::Resources);
    if (options.json) {
        QJsonObject object{{QStringLiteral("sound"), !flaw}};
        if (flaw) {
            object.insert(QStringLiteral("offset"), qint64(flaw->offset));
            object.insert(QStringLiteral("text"), flaw->text);
        }
        printJson(QJsonDocument(object));
    } else if (flaw) {
        printLine(QStringLiteral("%1: byte %2: %3").arg(options.path(), QString::number(flaw->offset), flaw->text));
    }
    return flaw ? AnsweredNo : Done;
}

int diff(const Options &options)
{
    const auto one = opened(options.path());
    if (!one)
        return one.error();
    const auto other = opened(options.otherPath());
    if (!other)
        return other.error();
    const Contents before = contentsOf(*one);
    Contents after = contentsOf(*other);
    Differences kinds{{QStringLiteral("added"), {}}, {QStringLiteral("changed"), {}}, {QStringLiteral("removed"), {}}};
    for (const auto &[id, data] : before) {
        const auto found = after.find(id);
        if (found == after.end())
            kinds[QStringLiteral("removed")].append(QString::fromLatin1(id));
        else if (data.has_value() != found->second.has_value() || (data && viewOf(*data) != viewOf(*found->second)))
            kinds[QStringLiteral("changed")].append(QString::fromLatin1(id));
        after.erase(id);
    }
    for (const auto &[id, data] : after)
        kinds[QStringLiteral("added")].append(QString::fromLatin1(id));
    return printDifferences(kinds, options.json);
}

template <CommandGroup<Options>::Action action> int onText(const Options &options)
{
    const int refused = refuseOtherThanText(options);
    return refused == Done ? action(options) : refused;
}

}

void addPack(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(app, "pack", "Packs images, sounds and other files into resource files.", exit);
    Options &options = group.options();
    const auto onFile = [&](const char *name, const char *help, CommandGroup<Options>::Action action) {
        CLI::App *command = group.add(name, help, action);
        command->add_option("FILE", options.file, "The resource file")->required();
        return command;
    };

    onFile("create", "Makes a resource file of all files in a folder.", onText<create>)
        ->add_option("SOURCE", options.other,
            "A folder, or a manifest: a path in each line, and behind a tab the identifier if it is not the path's")
        ->required();
    group.addJson(onFile("list", "Prints identifiers and sizes.", onText<list>));

    CLI::App *command = onFile("extract", "Writes resources into a folder, as files.", onText<extract>);
    command->add_option("FOLDER", options.other, "Is made when it is missing")->required();
    command->add_option("ID", options.names, "Only these; 1 when one is not there");
    command->add_flag("--replace", options.replace, "Files that are there already, too");

    group.addJson(onFile(
        "verify", "Names the first thing that is wrong in a resource or skin file; 1 when there is.", onText<verify>));

    command = onFile(
        "diff", "Tells what one file has and the other has not, or otherwise; 1 when they differ.", onText<diff>);
    command->add_option("OTHER", options.other, "The other resource file")->required();
    group.addJson(command);

    command = onFile("add", "Adds files to a resource file.", onText<add>);
    command->add_option("PATH", options.names, "The files")->required();
    command->add_flag("--replace", options.replace, "Resources that are there already, too");
}

}
