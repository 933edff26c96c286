#include "tools/tyx/skinsource.h"

#include "res/files/filecontent.h"
#include "res/files/imagedecoder.h"
#include "tools/tyx/packsource.h"
#include "tools/tyx/progress.h"

#include <QColor>
#include <QRegularExpression>
#include <algorithm>
#include <map>

namespace tyx {

namespace {

// Readers take the pixel in the middle; a person sees this one in the image.
constexpr QSize kColorSize(4, 4);

QString idOf(const QString &name) { return name.endsWith(u".g") ? name : name + QStringLiteral(".g"); }

// The numbers at the end of a line, and what stands before them.
struct Fields {
    QString name;
    QStringList values;
};

std::optional<Fields> fieldsOf(const SourceLine &line, const QRegularExpression &values)
{
    const QString text = QString::fromUtf8(line.text).trimmed();
    const auto match = values.match(text);
    if (!match.hasMatch())
        return {};
    return Fields{text.first(match.capturedStart()), match.capturedTexts().mid(1)};
}

class Collector {
public:
    void addImage(const PackItem &item)
    {
        const auto content = res::fileContent(item.path);
        if (!content)
            return blame(item.path, content.error().text());
        if (!item.id.endsWith(u".g"))
            return blame(item.path,
                QStringLiteral("the identifier of a picture ends in .g; convert it to PNG, or name it in a manifest"));
        const QImage image = res::decodeImage(*content);
        if (image.isNull())
            return blame(item.path, QStringLiteral("no image, or one of more than 64 MiB; save it anew as PNG"));
        m_pixels += qint64{image.width()} * image.height();
        if (m_pixels <= res::kMaxImageBytes / 4)
            add(item, image.convertToFormat(QImage::Format_ARGB32));
        else if (m_errors.isEmpty())
            blame(item.path, QStringLiteral("with this one the pictures have more than 64 MiB; a skin cannot"));
    }

    void addColors(const QString &path)
    {
        static const QRegularExpression value(QStringLiteral("[ \\t]+(#[0-9A-Fa-f]{6})$"));
        const auto lines = linesOf(path);
        if (!lines) {
            m_errors.append(lines.error());
            return;
        }
        for (const SourceLine &line : *lines) {
            if (const auto fields = fieldsOf(line, value)) {
                QImage image(kColorSize, QImage::Format_ARGB32);
                image.fill(QColor(fields->values.first()));
                add({idOf(fields->name), line.place}, image);
            } else {
                blame(line.place, QStringLiteral("should be a name and a colour, #rrggbb"));
            }
        }
    }

    SkinPictures result()
    {
        const auto items = checkedItems(m_items);
        if (!items)
            m_errors += items.error();
        if (!m_errors.isEmpty())
            return tl::make_unexpected(m_errors);
        std::vector<SkinPicture> pictures;
        pictures.reserve(m_images.size());
        for (const PackItem &item : *items)
            pictures.push_back({item.id, m_images[item.path]});
        return pictures;
    }

private:
    void blame(const QString &place, const QString &why) { m_errors.append(place + QStringLiteral(": ") + why); }
    void add(const PackItem &item, const QImage &image)
    {
        m_items.push_back(item);
        m_images.insert_or_assign(item.path, image);
    }

    std::vector<PackItem> m_items;
    std::map<QString, QImage> m_images; // by where they come from
    QStringList m_errors;
    qint64 m_pixels = 0;
};

}

SkinPictures picturesOf(const QString &folderOrManifest)
{
    const auto items = itemsOf(folderOrManifest);
    if (!items)
        return tl::make_unexpected(items.error());
    Collector collector;
    Progress progress(QStringLiteral("reading"), qsizetype(items->size()));
    for (const PackItem &item : *items) {
        if (item.path.endsWith(u".colors"))
            collector.addColors(item.path);
        else
            collector.addImage(item);
        progress.step();
    }
    return collector.result();
}

tl::expected<std::vector<SkinRect>, QStringList> rectsOf(const QString &path, QSize image)
{
    static const QRegularExpression values(
        QStringLiteral("[ \\t]+(\\d{1,6})[ \\t]+(\\d{1,6})[ \\t]+(\\d{1,6})[ \\t]+(\\d{1,6})$"));
    const auto lines = linesOf(path);
    if (!lines)
        return tl::make_unexpected(QStringList(lines.error()));
    std::vector<PackItem> items;
    std::map<QString, QRect> rects; // by where they come from
    QStringList errors;
    for (const SourceLine &line : *lines) {
        const auto fields = fieldsOf(line, values);
        if (!fields) {
            errors.append(line.place + QStringLiteral(": should be a name, x, y, width and height"));
            continue;
        }
        const auto number = [&](int i) { return fields->values[i].toUInt(); }; // 0 for one that is too large
        const QRect rect(int(number(0)), int(number(1)), int(number(2)), int(number(3)));
        if (rect.isEmpty())
            errors.append(line.place + QStringLiteral(": nothing is in it; width and height are 1 or more"));
        else if (!QRect(QPoint(), image).contains(rect))
            errors.append(QStringLiteral("%1: it reaches out of the image, which has %2 x %3 pixels")
                              .arg(line.place, QString::number(image.width()), QString::number(image.height())));
        items.push_back({idOf(fields->name), line.place});
        rects.emplace(line.place, rect);
    }
    const auto checked = checkedItems(std::move(items));
    if (!checked)
        errors += checked.error();
    if (!errors.isEmpty())
        return tl::make_unexpected(errors);
    std::vector<SkinRect> result;
    for (const PackItem &item : *checked)
        result.push_back({item.id, rects[item.path]});
    return result;
}

}
