#include "res/files/skinrect.h"
#include "tools/tyx/skin.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <array>
#include <vector>

namespace tyx {

namespace {

constexpr int kWidth = 960; // of the sheet, in pixels
constexpr int kMaxHeight = 32767; // coordinates of the painter have 16 bits
constexpr int kMargin = 24;
constexpr int kGap = 16; // between cells
constexpr int kPadding = 8; // inside of them
constexpr int kSmall = 64; // what is larger stands by itself
constexpr int kLargest = 400; // what is larger is drawn smaller
constexpr int kSwatch = 40;
constexpr int kNameSize = 11;
constexpr int kDetailSize = 10;
constexpr int kLine = 15;
constexpr int kHeadingHeight = 40;
constexpr int kTitleHeight = 56;
constexpr int kChecks = 8; // of the pattern behind transparent pixels

const QColor kPaper(0xf4, 0xf5, 0xf7);
const QColor kCard(Qt::white);
const QColor kEdge(0xd5, 0xd9, 0xe0);
const QColor kCheck(0xe4, 0xe7, 0xec);
const QColor kInk(0x1f, 0x24, 0x2e);
const QColor kFaint(0x6b, 0x72, 0x80);

struct Item {
    QString name;
    QString detail;
    QRect part; // of the atlas: copies of rectangles that overlap could be larger than any memory
    QColor color; // invalid when it is a picture

    [[nodiscard]] bool isColor() const { return color.isValid(); }
    [[nodiscard]] QSize shown() const
    {
        if (isColor())
            return {kSwatch, kSwatch};
        const QSize size = part.size();
        return size.width() > kLargest || size.height() > kLargest
            ? size.scaled(kLargest, kLargest, Qt::KeepAspectRatio)
            : size;
    }
};

struct Section {
    QString title;
    std::vector<Item> items;
};

QFont font(int pixels, bool bold = false)
{
    QFont made(QStringLiteral("sans-serif"));
    made.setPixelSize(pixels);
    made.setBold(bold);
    return made;
}

// Of a small picture all of whose pixels are one colour, and opaque; invalid for any other.
QColor colorOf(const QImage &atlas, const QRect &part)
{
    constexpr int kLargestColor = 16;
    const QColor first = atlas.pixelColor(part.topLeft());
    if (part.width() > kLargestColor || part.height() > kLargestColor || first.alpha() != 255)
        return {};
    const QImage picture = atlas.copy(part);
    QImage plain(picture.size(), picture.format());
    plain.fill(first);
    return plain == picture ? first : QColor();
}

std::array<Section, 3> sectionsOf(const QImage &atlas, const SkinRects &rects)
{
    std::array<Section, 3> sections{Section{QStringLiteral("Pictures"), {}}, Section{QStringLiteral("Icons"), {}},
        Section{QStringLiteral("Colours"), {}}};
    for (const auto &[id, rect] : rects) {
        const QRect part = res::insideOf(atlas.size(), rect);
        if (part.isEmpty())
            continue;
        Item item{QString::fromLatin1(id), {}, part, colorOf(atlas, part)};
        item.detail = item.isColor()
            ? item.color.name()
            : QStringLiteral("%1 x %2").arg(QString::number(part.width()), QString::number(part.height()));
        const bool small = part.width() <= kSmall && part.height() <= kSmall;
        sections[item.isColor() ? 2 : small ? 1 : 0].items.push_back(std::move(item));
    }
    // Rows of pictures that are about as high leave less of the sheet empty.
    std::stable_sort(sections[0].items.begin(), sections[0].items.end(),
        [](const Item &a, const Item &b) { return a.shown().height() < b.shown().height(); });
    return sections;
}

// Draws from top to bottom; without a painter it only measures.
class Sheet {
public:
    Sheet(const QImage &atlas, QPainter *painter) : m_atlas(atlas), m_painter(painter) { }

    [[nodiscard]] int height() const { return m_y + kMargin; }

    void title(const QString &text, const QString &detail)
    {
        if (m_painter) {
            write({kMargin, m_y, kWidth, kTitleHeight / 2}, text, font(20, true), kInk, Qt::AlignLeft);
            write({kMargin, m_y + kTitleHeight / 2, kWidth, kTitleHeight / 2}, detail, font(12), kFaint, Qt::AlignLeft);
        }
        m_y += kTitleHeight;
    }

    void section(const Section &section)
    {
        if (section.items.empty())
            return;
        if (m_painter)
            write({kMargin, m_y, kWidth, kHeadingHeight}, section.title, font(14, true), kInk,
                Qt::AlignLeft | Qt::AlignVCenter);
        m_y += kHeadingHeight;
        const int width = cellWidth(section);
        const auto columns = std::size_t(std::max(1, (kWidth - 2 * kMargin + kGap) / (width + kGap)));
        for (std::span<const Item> rest(section.items); !rest.empty();) {
            const std::size_t count = rowLength(rest.first(std::min(columns, rest.size())));
            row(rest.first(count), width);
            rest = rest.subspan(count);
        }
    }

private:
    // As wide as the widest picture or name, but names give way.
    static int cellWidth(const Section &section)
    {
        constexpr int kMaxNameWidth = 150;
        const QFontMetrics metrics(font(kNameSize));
        int width = 0;
        for (const Item &item : section.items)
            width =
                std::max({width, item.shown().width(), std::min(metrics.horizontalAdvance(item.name), kMaxNameWidth)});
        return width + 2 * kPadding;
    }

    // A picture that is much higher than the first begins a row of its own.
    static std::size_t rowLength(std::span<const Item> items)
    {
        const int limit = std::max(kSmall, 2 * items.front().shown().height());
        const auto end =
            std::find_if(items.begin(), items.end(), [&](const Item &item) { return item.shown().height() > limit; });
        return std::max<std::size_t>(1, std::size_t(end - items.begin()));
    }

    void row(std::span<const Item> items, int width)
    {
        int tallest = 0;
        for (const Item &item : items)
            tallest = std::max(tallest, item.shown().height());
        const int height = tallest + 3 * kPadding + 2 * kLine;
        for (int x = kMargin; const Item &item : items) {
            if (m_painter)
                cell(item, {x, m_y, width, height});
            x += width + kGap;
        }
        m_y += height + kGap;
    }

    void cell(const Item &item, const QRect &bounds)
    {
        m_painter->setPen(kEdge);
        m_painter->setBrush(kCard);
        m_painter->drawRoundedRect(bounds, 4, 4);
        const int textTop = bounds.bottom() - kPadding - 2 * kLine;
        QRect place(QPoint(), item.shown());
        place.moveCenter({bounds.center().x(), (bounds.top() + kPadding + textTop) / 2});
        if (item.isColor()) {
            m_painter->setBrush(item.color);
            m_painter->drawRect(place);
        } else {
            checks(place);
            m_painter->setRenderHint(QPainter::SmoothPixmapTransform);
            m_painter->drawImage(place, m_atlas, item.part);
        }
        const QRect line(bounds.left() + kPadding / 2, textTop, bounds.width() - kPadding, kLine);
        const QString name = QFontMetrics(font(kNameSize)).elidedText(item.name, Qt::ElideMiddle, line.width());
        write(line, name, font(kNameSize), kInk, Qt::AlignHCenter | Qt::AlignVCenter);
        write(line.translated(0, kLine), item.detail, font(kDetailSize), kFaint, Qt::AlignHCenter | Qt::AlignVCenter);
    }

    void checks(const QRect &place)
    {
        m_painter->fillRect(place, Qt::white);
        for (int y = 0; y < place.height(); y += kChecks) {
            for (int x = y / kChecks % 2 * kChecks; x < place.width(); x += 2 * kChecks)
                m_painter->fillRect(QRect(place.left() + x, place.top() + y, kChecks, kChecks) & place, kCheck);
        }
    }

    void write(const QRect &place, const QString &text, const QFont &font, const QColor &color, Qt::Alignment alignment)
    {
        m_painter->setFont(font);
        m_painter->setPen(color);
        m_painter->drawText(place, int(alignment), text);
    }

    const QImage &m_atlas;
    QPainter *m_painter;
    int m_y = kMargin;
};

void draw(Sheet &sheet, const QString &title, const QString &detail, const std::array<Section, 3> &sections)
{
    sheet.title(title, detail);
    for (const Section &section : sections)
        sheet.section(section);
}

}

tl::expected<QImage, QString> contactSheet(const QString &title, const QImage &atlas, const SkinRects &rects)
{
    const auto sections = sectionsOf(atlas, rects);
    const QString detail =
        QStringLiteral("%1 pictures in an image of %2 x %3 pixels")
            .arg(QString::number(rects.size()), QString::number(atlas.width()), QString::number(atlas.height()));
    Sheet measured(atlas, nullptr);
    draw(measured, title, detail, sections);
    if (measured.height() > kMaxHeight)
        return tl::make_unexpected(QStringLiteral("too many pictures for one sheet; name some"));
    QImage image(kWidth, measured.height(), QImage::Format_RGB32);
    if (image.isNull())
        return tl::make_unexpected(QStringLiteral("there is no memory for the sheet; name fewer pictures"));
    image.fill(kPaper);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    Sheet sheet(atlas, &painter);
    draw(sheet, title, detail, sections);
    return image;
}

}
