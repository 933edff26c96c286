// tyx pack: makes resource files of folders, and looks into them.
#include "res/files/mappedfile.h"
#include "res/files/util_resfilewriter.h"
#include "res/format/rescheck.h"
#include "tools/tyx/command.h"
#include "tools/tyx/packfolder.h"
#include "tools/tyx/packsource.h"
#include "tools/tyx/progress.h"

#include <QJsonArray>
#include <QJsonObject>
#include <cerrno>
#include <map>
#include <memory>

namespace tyx {

namespace {

using res::MappedFile;

struct Options {
    std::string file;
    std::string other; // folder, manifest or second file
    std::vector<std::string> names;
    bool json = false;
    bool replace = false;

    [[nodiscard]] QString path() const { return QString::fromStdString(file); }
    [[nodiscard]] QString otherPath() const { return QString::fromStdString(other); }
    [[nodiscard]] QStringList nameList() const
    {
        QStringList list;
        for (const std::string &name : names)
            list.append(QString::fromStdString(name));
        return list;
    }
};

// What a file or its name holds may be anything.
QString shown(const QString &text) { return printable(text.toUtf8()); }

int failAll(const QStringList &lines)
{
    for (const QString &line : lines)
        std::ignore = fail(shown(line));
    return Failed;
}

QString reasonOf(const res::LoadError &error)
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
    return res::describe(error.format) + QStringLiteral("; it is no resource file, or damaged: make it again");
}

tl::expected<MappedFile, int> opened(const QString &path)
{
    return MappedFile::open(path, res::Version::Resources).map_error([&](const res::LoadError &error) {
        return fail(QStringLiteral("%1: %2").arg(shown(path), reasonOf(error)));
    });
}

// What readers find, in ascending order of the identifiers.
using Contents = std::map<QByteArray, tl::expected<res::Bytes, res::BlockFault>>;

Contents contentsOf(const MappedFile &file)
{
    const res::ResIndex &index = file.index();
    Contents contents;
    for (quint32 slot = 0; slot < index.slotCount(); ++slot) {
        const QByteArrayView id = index.idAt(slot);
        if (!id.isNull() && index.find(id) == slot)
            contents.emplace(id.toByteArray(), index.block(index.dataOffsetAt(slot)));
    }
    return contents;
}

QByteArrayView viewOf(res::Bytes bytes) { return {bytes.data(), qsizetype(bytes.size())}; }

// Reads the files into the writer; the first that cannot be read is told.
int addFiles(UTIL_ResFileWriter &writer, const std::vector<PackItem> &items)
{
    Progress progress(QStringLiteral("reading"), qsizetype(items.size()));
    for (const PackItem &item : items) {
        const auto content = contentOf(item.path);
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
    if (writer.save(&error))
        return Done;
    return fail(
        QStringLiteral("%1: %2; check its folder, and that the disk is not full").arg(shown(writer.fileName()), error));
}

int create(const Options &options)
{
    const auto items = itemsOf(options.otherPath());
    if (!items)
        return failAll(items.error());
    UTIL_ResFileWriter writer(options.path());
    const int read = addFiles(writer, *items);
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
    UTIL_ResFileWriter writer(options.path());
    for (const auto &[id, data] : contents) // which stay mapped
        writer.add(QString::fromLatin1(id), QByteArray::fromRawData(viewOf(*data).data(), viewOf(*data).size()));
    const int read = addFiles(writer, *items);
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

// Those that were asked for; the names that are not there are told.
tl::expected<Contents, int> chosen(const Options &options, const MappedFile &file)
{
    Contents all = contentsOf(file);
    if (options.names.empty())
        return all;
    Contents some;
    for (const QString &name : options.nameList()) {
        const auto found = all.find(name.toLatin1());
        if (found == all.end()) {
            std::ignore = fail(QStringLiteral("%1: there is no '%2'; tyx pack list shows what is")
                                   .arg(shown(options.path()), shown(name)));
            return tl::make_unexpected(int{AnsweredNo});
        }
        some.insert(*found);
    }
    return some;
}

// Why not, or null.
QString extractOne(const TargetFolder &folder, const QString &id, const Contents::mapped_type &data, bool replace)
{
    if (!data)
        return res::describe(data.error());
    const QString name = fileNameOf(id, viewOf(*data));
    if (name.isNull())
        return QStringLiteral("no file can have this name");
    const auto written = folder.write(name, viewOf(*data), replace);
    if (written)
        return {};
    return written.error().text() + (written.error().number == EEXIST ? QStringLiteral("; see --replace") : QString());
}

int extract(const Options &options)
{
    const auto file = opened(options.path());
    if (!file)
        return file.error();
    const auto contents = chosen(options, *file);
    if (!contents)
        return contents.error();
    const auto folder = TargetFolder::open(options.otherPath());
    if (!folder)
        return fail(
            QStringLiteral("%1: %2; name a folder to write to").arg(shown(options.otherPath()), folder.error().text()));
    int exit = Done;
    Progress progress(QStringLiteral("writing"), qsizetype(contents->size()));
    for (const auto &[bytes, data] : *contents) {
        const QString id = QString::fromLatin1(bytes);
        if (const QString why = extractOne(*folder, id, data, options.replace); !why.isNull())
            exit = fail(QStringLiteral("%1: '%2' was not extracted: %3").arg(shown(options.path()), shown(id), why));
        progress.step();
    }
    return exit;
}

int verify(const Options &options)
{
    const auto mapping = res::mapFile(options.path());
    if (!mapping)
        return fail(QStringLiteral("%1: %2").arg(shown(options.path()), reasonOf(mapping.error())));
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
    std::map<QString, QStringList> kinds{
        {QStringLiteral("added"), {}}, {QStringLiteral("changed"), {}}, {QStringLiteral("removed"), {}}};
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
    QJsonObject object;
    bool differ = false;
    for (const auto &[kind, ids] : kinds) {
        differ |= !ids.isEmpty();
        object.insert(kind, QJsonArray::fromStringList(ids));
        for (const QString &id : options.json ? QStringList() : ids)
            printLine(kind.leftJustified(9) + id);
    }
    if (options.json)
        printJson(QJsonDocument(object));
    return differ ? AnsweredNo : Done;
}

// Names of files are text here; of other bytes, other files would be read and written.
int runOnText(int (*action)(const Options &), const Options &options)
{
    std::vector<std::string> given = options.names;
    given.insert(given.end(), {options.file, options.other});
    for (const std::string &text : given) {
        if (QUtf8StringView(text.data(), qsizetype(text.size())).isValidUtf8())
            continue;
        std::ignore = fail(QStringLiteral("\"%1\" is not UTF-8").arg(printable(text)));
        return Usage;
    }
    return action(options);
}

}

void addPack(CLI::App &app, int &exit)
{
    CLI::App *parent = app.add_subcommand("pack", "Packs images, sounds and other files into resource files.");
    parent->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto command = [&](const char *name, const char *help, int (*action)(const Options &)) {
        CLI::App *made = parent->add_subcommand(name, help);
        made->add_option("FILE", options->file, "The resource file")->required();
        made->callback([action, options, &exit] { exit = runOnText(action, *options); });
        return made;
    };
    const auto json = [&](CLI::App *made) { made->add_flag("--json", options->json, "As JSON"); };

    command("create", "Makes a resource file of all files in a folder.", create)
        ->add_option("SOURCE", options->other,
            "A folder, or a manifest: a path in each line, and behind a tab the identifier if it is not the path's")
        ->required();
    json(command("list", "Prints identifiers and sizes.", list));
    CLI::App *made = command("extract", "Writes resources into a folder, as files.", extract);
    made->add_option("FOLDER", options->other, "Is made when it is missing")->required();
    made->add_option("ID", options->names, "Only these; 1 when one is not there");
    made->add_flag("--replace", options->replace, "Files that are there already, too");
    json(command("verify", "Names the first thing that is wrong in a resource or skin file; 1 when there is.", verify));
    made = command("diff", "Tells what one file has and the other has not, or otherwise; 1 when they differ.", diff);
    made->add_option("OTHER", options->other, "The other resource file")->required();
    json(made);
    made = command("add", "Adds files to a resource file.", add);
    made->add_option("PATH", options->names, "The files")->required();
    made->add_flag("--replace", options->replace, "Resources that are there already, too");
}

}
