// tyx skin: makes skin files of images and colours, and looks into them. Shared memory is not touched: that is the
// phone's.
#include "tools/tyx/skin.h"

#include "res/files/filecontent.h"
#include "res/files/imagedecoder.h"
#include "res/files/skinrect.h"
#include "res/files/skinwriterdata.h"
#include "res/format/rescheck.h"
#include "tools/tyx/atlas.h"
#include "tools/tyx/packfile.h"
#include "tools/tyx/skinsource.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonObject>

namespace tyx {

namespace {

struct Options : PackOptions {
    std::string image;
    std::string rects;
    std::string size; // checked: two numbers, "x" between them

    [[nodiscard]] QString imagePath() const { return QString::fromStdString(image); }
    [[nodiscard]] std::optional<QSize> atlasSize() const
    {
        const QStringList numbers = QString::fromStdString(size).split(u'x');
        return size.empty() ? std::nullopt : std::optional(QSize(numbers[0].toInt(), numbers[1].toInt()));
    }
};

CLI::Validator atlasSizes()
{
    const auto check = [](const std::string &word) {
        const QStringList numbers = QString::fromStdString(word).split(u'x');
        const auto side = [&](qsizetype i) { return wholeNumber(numbers.value(i).toStdString()).value_or(0); };
        const auto fits = [](qint64 pixels) { return pixels > 0 && pixels < 32768; };
        const bool right =
            numbers.size() == 2 && fits(side(0)) && fits(side(1)) && side(0) * side(1) <= res::kMaxImageBytes / 4;
        return right ? std::string() : "\"" + word + "\" should be a size in pixels, like 256x512, of 64 MiB at most";
    };
    return {check, "WIDTHxHEIGHT"};
}

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

QString sizeText(QSize size)
{
    return QStringLiteral("%1 x %2").arg(QString::number(size.width()), QString::number(size.height()));
}

// Of the file as it was: identifiers with their rectangles.
SkinRects rectsOf(const res::ResIndex &index)
{
    return contentsOf(index, [&](quint32 slot) { return index.rectAt(slot); });
}

QImage imageOf(const res::ResIndex &index)
{
    const auto block = index.block(0);
    return block ? res::decodeImage(viewOf(*block)) : QImage();
}

struct Skin {
    QImage image; // Format_ARGB32
    SkinRects rects;
};

// With an image; what is wrong is told.
tl::expected<Skin, int> openedSkin(const QString &path)
{
    return opened(path, res::Version::Skin).and_then([&](const res::MappedFile &file) -> tl::expected<Skin, int> {
        const QImage image = imageOf(file.index());
        if (image.isNull())
            return tl::make_unexpected(
                fail(QStringLiteral("%1: its image does not decode; tyx skin verify tells more").arg(shown(path))));
        return Skin{image.convertToFormat(QImage::Format_ARGB32), rectsOf(file.index())};
    });
}

QImage pictureOf(const Skin &skin, const res::ImageRect &rect)
{
    const QRect part = res::insideOf(skin.image.size(), rect);
    return part.isEmpty() ? QImage() : skin.image.copy(part);
}

int save(res::SkinWriterData &writer, QByteArrayView image)
{
    const QString error = writer.save(image, res::Notes::Leave);
    return error.isNull() ? int{Done} : failToSave(writer.fileName, error);
}

int createOfImage(const Options &options)
{
    const auto bytes = res::fileContent(options.imagePath());
    if (!bytes)
        return fail(QStringLiteral("%1: %2; check the name").arg(shown(options.imagePath()), bytes.error().text()));
    const QImage image = res::decodeImage(*bytes);
    if (image.isNull())
        return fail(QStringLiteral("%1: no image, or one of more than 64 MiB; save it anew as PNG")
                        .arg(shown(options.imagePath())));
    const auto rects = tyx::rectsOf(QString::fromStdString(options.rects), image.size());
    if (!rects)
        return failAll(rects.error());
    res::SkinWriterData writer;
    writer.fileName = options.path();
    for (const SkinRect &picture : *rects)
        writer.add(picture.id, picture.rect);
    return save(writer, *bytes);
}

int createOfPictures(const Options &options)
{
    const auto pictures = picturesOf(options.otherPath());
    if (!pictures)
        return failAll(pictures.error());
    std::vector<QImage> images;
    std::vector<QSize> sizes;
    images.reserve(pictures->size());
    sizes.reserve(pictures->size() + 1);
    for (const SkinPicture &picture : *pictures) {
        images.push_back(picture.image);
        sizes.push_back(picture.image.size());
    }
    // One pixel stays transparent: an atlas without one would be shared without a mask, and would leave too little
    // memory for the mask of the next skin of the same size.
    sizes.emplace_back(1, 1);
    const auto given = options.atlasSize();
    const auto plan = planned(sizes, given);
    if (!plan)
        return fail(
            QStringLiteral("%1: the pictures do not fit into %2; make them smaller or fewer%3")
                .arg(shown(options.otherPath()), given ? sizeText(*given) : QStringLiteral("an image of 64 MiB"),
                    given ? QStringLiteral(", or give a larger --size") : QString()));
    res::SkinWriterData writer;
    writer.fileName = options.path();
    for (std::size_t i = 0; i < pictures->size(); ++i)
        writer.add((*pictures)[i].id, QRect(plan->places[i], sizes[i]));
    return save(writer, pngOf(drawn(*plan, images)));
}

int create(const Options &options)
{
    if (options.other.empty() == options.image.empty())
        return refuse(QStringLiteral("skin create: give a folder or manifest, or else --image and --rects"));
    return options.image.empty() ? createOfPictures(options) : createOfImage(options);
}

// Not every format tells its size beforehand.
QString imageText(QSize size, qsizetype bytes, const QString &format)
{
    if (format.isEmpty())
        return QStringLiteral("no image, %1 bytes").arg(bytes);
    const QString text = QStringLiteral("%1 bytes of %2").arg(QString::number(bytes), format);
    return size.isValid() ? QStringLiteral("%1 pixels, %2").arg(sizeText(size), text) : text;
}

int list(const Options &options)
{
    const auto file = opened(options.path(), res::Version::Skin);
    if (!file)
        return file.error();
    const auto block = file->index().block(0);
    QByteArray bytes = block ? QByteArray::fromRawData(viewOf(*block).data(), viewOf(*block).size()) : QByteArray();
    QBuffer buffer(&bytes);
    const QImageReader image(&buffer);
    const QSize size = image.size();
    const QString format = QString::fromLatin1(image.format());
    QJsonArray pictures;
    if (!options.json)
        printLine(QStringLiteral("# ") + imageText(size, bytes.size(), format));
    for (const auto &[id, rect] : rectsOf(file->index())) {
        const QString text = QString::fromLatin1(id);
        if (!options.json) {
            printLine(QStringLiteral("%1  %2 %3 %4 %5")
                          .arg(text, QString::number(rect.x), QString::number(rect.y), QString::number(rect.width),
                              QString::number(rect.height)));
            continue;
        }
        pictures.append(QJsonObject{{QStringLiteral("id"), text}, {QStringLiteral("x"), qint64(rect.x)},
            {QStringLiteral("y"), qint64(rect.y)}, {QStringLiteral("width"), qint64(rect.width)},
            {QStringLiteral("height"), qint64(rect.height)}});
    }
    if (!options.json)
        return Done;
    QJsonObject object{{QStringLiteral("bytes"), bytes.size()}, {QStringLiteral("pictures"), pictures}};
    if (size.isValid()) {
        object.insert(QStringLiteral("width"), size.width());
        object.insert(QStringLiteral("height"), size.height());
    }
    if (!format.isEmpty())
        object.insert(QStringLiteral("format"), format);
    printJson(QJsonDocument(object));
    return Done;
}

int extract(const Options &options)
{
    const auto skin = openedSkin(options.path());
    if (!skin)
        return skin.error();
    const auto rects = chosen(options, skin->rects, QStringLiteral("skin"));
    if (!rects)
        return rects.error();
    return extractAll(options, *rects, [&](const res::ImageRect &rect) -> Extracted {
        const QImage picture = pictureOf(*skin, rect);
        if (picture.isNull())
            return tl::make_unexpected(QStringLiteral("its rectangle has nothing of the image"));
        return pngOf(picture);
    });
}

// What was held against the file, a line each.
class Report {
public:
    void add(bool sound, const QString &text)
    {
        m_sound = m_sound && sound;
        m_checks.append(QJsonObject{{QStringLiteral("sound"), sound}, {QStringLiteral("text"), text}});
        m_lines.append((sound ? QStringLiteral("ok     ") : QStringLiteral("wrong  ")) + text);
    }

    [[nodiscard]] int print(bool json) const
    {
        if (json)
            printJson(
                QJsonDocument(QJsonObject{{QStringLiteral("sound"), m_sound}, {QStringLiteral("checks"), m_checks}}));
        for (const QString &line : json ? QStringList() : m_lines)
            printLine(line);
        return m_sound ? Done : AnsweredNo;
    }

private:
    bool m_sound = true;
    QJsonArray m_checks;
    QStringList m_lines;
};

void checkRects(Report &report, const SkinRects &rects, QSize image)
{
    qsizetype wrong = 0;
    for (const auto &[id, rect] : rects) {
        if (res::isInside(image, rect))
            continue;
        ++wrong;
        report.add(false,
            QStringLiteral("the rectangle of '%1' %2: %3 %4 %5 %6")
                .arg(QString::fromLatin1(id),
                    rect.width == 0 || rect.height == 0 ? QStringLiteral("is empty")
                                                        : QStringLiteral("reaches out of the image"),
                    QString::number(rect.x), QString::number(rect.y), QString::number(rect.width),
                    QString::number(rect.height)));
    }
    if (wrong == 0)
        report.add(true, QStringLiteral("%1 rectangles lie in the image").arg(rects.size()));
}

int verify(const Options &options)
{
    const auto mapping = res::mapFile(options.path());
    if (!mapping)
        return fail(QStringLiteral("%1: %2").arg(shown(options.path()), reasonOf(mapping.error(), res::Version::Skin)));
    Report report;
    if (const auto flaw = res::check(mapping->bytes(), res::Version::Skin))
        report.add(false, QStringLiteral("byte %1: %2").arg(QString::number(flaw->offset), flaw->text));
    else
        report.add(true, QStringLiteral("header, identifiers, hash table and data are as writers make them"));
    const auto index = res::ResIndex::parse(mapping->bytes(), res::Version::Skin);
    if (!index)
        return report.print(options.json);
    const QImage image = imageOf(*index);
    report.add(!image.isNull(),
        image.isNull() ? QStringLiteral("the image does not decode, or has more than 64 MiB")
                       : QStringLiteral("the image has %1 pixels").arg(sizeText(image.size())));
    if (!image.isNull())
        checkRects(report, rectsOf(*index), image.size());
    return report.print(options.json);
}

int diff(const Options &options)
{
    const auto before = openedSkin(options.path());
    if (!before)
        return before.error();
    auto after = openedSkin(options.otherPath());
    if (!after)
        return after.error();
    const QString added = QStringLiteral("added");
    const QString changed = QStringLiteral("changed");
    const QString moved = QStringLiteral("moved");
    const QString removed = QStringLiteral("removed");
    Differences differences{{added, {}}, {changed, {}}, {moved, {}}, {removed, {}}, {QStringLiteral("size"), {}}};
    if (before->image.size() != after->image.size())
        differences[QStringLiteral("size")].append(
            QStringLiteral("%1, was %2").arg(sizeText(after->image.size()), sizeText(before->image.size())));
    for (const auto &[id, rect] : before->rects) {
        const auto found = after->rects.find(id);
        if (found == after->rects.end())
            differences[removed].append(QString::fromLatin1(id));
        else if (pictureOf(*before, rect) != pictureOf(*after, found->second))
            differences[changed].append(QString::fromLatin1(id));
        else if (rect != found->second)
            differences[moved].append(QString::fromLatin1(id));
        after->rects.erase(id);
    }
    for (const auto &[id, rect] : after->rects)
        differences[added].append(QString::fromLatin1(id));
    return printDifferences(differences, options.json);
}

int sheet(const Options &options)
{
    const auto skin = openedSkin(options.path());
    if (!skin)
        return skin.error();
    const auto rects = chosen(options, skin->rects, QStringLiteral("skin"));
    if (!rects)
        return rects.error();
    const auto image = contactSheet(QFileInfo(options.path()).fileName(), skin->image, *rects);
    if (!image)
        return fail(QStringLiteral("%1: %2").arg(shown(options.path()), image.error()));
    return saveTo(options.other, pngOf(*image));
}

template <CommandGroup<Options>::Action action> int onText(const Options &options)
{
    int refused = refuseOtherThanText(options);
    if (refused == Done)
        refused = refuseOtherThanText(std::vector<std::string>{options.image, options.rects});
    return refused == Done ? action(options) : refused;
}

constexpr char kSourceHelp[] =
    R"(A folder of images, or a manifest: a path in each line, and behind a tab the identifier if it is not the path's. A file whose name ends in .colors has colours instead, in each line NAME #rrggbb)";

}

void addSkin(CLI::App &app, int &exit)
{
    const CommandGroup<Options> group(app, "skin", "Packs images and colours into skin files.", exit);
    Options &options = group.options();
    const auto onFile = [&](const char *name, const char *help, CommandGroup<Options>::Action action) {
        CLI::App *command = group.add(name, help, action);
        command->add_option("FILE", options.file, "The skin file")->required();
        return command;
    };
    const auto someIds = [&](CLI::App *command) {
        command->add_option("ID", options.names, "Only these; 1 when one is not there");
    };

    CLI::App *command =
        onFile("create", "Makes a skin file, of single images or of one that holds them all.", onText<create>);
    CLI::Option *source = command->add_option("SOURCE", options.other, kSourceHelp);
    command->add_option("--size", options.size, "Of the image that is made; skins that are switched have one size")
        ->check(atlasSizes())
        ->needs(source);
    CLI::Option *image = command->add_option("--image", options.image, "An image that holds all pictures");
    CLI::Option *rects = command->add_option(
        "--rects", options.rects, "Where they are: in each line NAME X Y WIDTH HEIGHT; what list prints");
    image->needs(rects);
    rects->needs(image);

    group.addJson(onFile("list", "Prints identifiers and rectangles.", onText<list>));

    command = onFile("extract", "Writes pictures into a folder, as PNG.", onText<extract>);
    command->add_option("FOLDER", options.other, "Is made when it is missing")->required();
    someIds(command);
    command->add_flag("--replace", options.replace, "Files that are there already, too");

    group.addJson(
        onFile("verify", "Tells what is right and what is wrong in a skin file; 1 when something is.", onText<verify>));

    command = onFile(
        "diff", "Tells which pictures one file has and the other has not, or otherwise; 1 when any.", onText<diff>);
    command->add_option("OTHER", options.other, "The other skin file")->required();
    group.addJson(command);

    command = onFile("sheet", "Draws all pictures with their names on one image.", onText<sheet>);
    command->add_option("PNG", options.other, "Where to; - is standard output")->required();
    someIds(command);
}

}
