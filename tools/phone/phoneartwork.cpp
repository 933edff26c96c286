#include "tools/phone/phoneartwork.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>

namespace phone {

namespace {

// Light falls from the upper left; metal is silver, plastic is graphite, what is lit is a cold white.
constexpr QRgb kInk = 0xffe9f1fa;
constexpr QRgb kSmallInk = 0xff9fb4c8;
constexpr QRgb kUnlitInk = 0xff77818c;
constexpr QRgb kGreen = 0xff4fcf7a;
constexpr QRgb kRed = 0xfff2605c;
constexpr QRgb kGlow = 0xff7fc4ff;

QColor color(QRgb rgb, qreal alpha = 1)
{
    QColor result(rgb);
    result.setAlphaF(float(alpha));
    return result;
}

struct Stop {
    qreal at;
    QRgb rgb;
};

QLinearGradient gradient(QPointF from, QPointF to, std::initializer_list<Stop> stops)
{
    QLinearGradient result(from, to);
    for (const auto &[at, rgb] : stops)
        result.setColorAt(at, QColor::fromRgba(rgb));
    return result;
}

QLinearGradient downwards(const QRectF &rect, std::initializer_list<Stop> stops)
{
    return gradient(rect.topLeft(), rect.bottomLeft(), stops);
}

void fill(QPainter &painter, const QRectF &rect, qreal radius, const QBrush &brush, const QPen &pen = Qt::NoPen)
{
    painter.setBrush(brush);
    painter.setPen(pen);
    painter.drawRoundedRect(rect, radius, radius);
}

// Blurred by many thin layers.
void paintShadow(QPainter &painter, const QRectF &rect, qreal radius, qreal depth)
{
    constexpr int kLayers = 12;
    for (int i = kLayers; i > 0; --i) {
        const qreal wide = depth * i / kLayers;
        fill(painter, rect.adjusted(-wide, -wide * 0.4, wide, wide * 1.2), radius + wide, color(0xff10161e, 0.022));
    }
}

QFont fontOf(qreal size, int weight = QFont::Medium)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(int(std::lround(size)));
    font.setWeight(QFont::Weight(weight));
    return font;
}

struct Print {
    std::string_view text;
    qreal size;
    QColor ink;
    int flags = Qt::AlignCenter;
};

void print(QPainter &painter, const QRectF &rect, const Print &what)
{
    painter.setFont(fontOf(what.size));
    painter.setPen(what.ink);
    painter.drawText(
        rect, what.flags | Qt::TextDontClip, QString::fromUtf8(what.text.data(), qsizetype(what.text.size())));
}

QPainterPath armPath(Side side)
{
    constexpr int kQuarter = 90;
    const int start = side == Side::Right ? -45 : side == Side::Up ? 45 : side == Side::Left ? 135 : 225;
    QPainterPath path;
    path.arcMoveTo(kRing, start);
    path.arcTo(kRing, start, kQuarter);
    path.arcTo(kRingHole, start + kQuarter, -kQuarter);
    path.closeSubpath();
    return path;
}

void paintArrow(QPainter &painter, Side side, const QColor &ink)
{
    painter.save();
    painter.translate(kRing.center());
    painter.rotate(side == Side::Right ? 0 : side == Side::Down ? 90 : side == Side::Left ? 180 : 270);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    constexpr qreal kAt = 34;
    painter.drawPolygon(QPolygonF({{kAt + 4.5, 0}, {kAt - 2.5, -5}, {kAt - 2.5, 5}}));
    painter.restore();
}

// A receiver: lifted for Send, laid down for End.
void paintReceiver(QPainter &painter, const QRectF &rect, bool lifted, const QColor &ink)
{
    painter.save();
    painter.translate(rect.center() + QPointF(0, lifted ? 0 : 1));
    painter.rotate(lifted ? -45 : 0);
    QPainterPath path;
    path.moveTo(-12, 3.5);
    path.cubicTo(-12, -7, 12, -7, 12, 3.5);
    path.lineTo(6, 3.5);
    path.cubicTo(6, 0, 5, -1, 0, -1);
    path.cubicTo(-5, -1, -6, 0, -6, 3.5);
    path.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPath(lifted ? QTransform::fromScale(-1, -1).map(path) : path);
    painter.restore();
}

void paintLabel(QPainter &painter, const Key &key, bool isLit)
{
    const QColor ink = color(isLit ? kInk : kUnlitInk);
    if (key.ink != Key::Plain) {
        const bool lifted = key.ink == Key::Green;
        paintReceiver(painter, key.place, lifted, isLit ? color(lifted ? kGreen : kRed) : ink);
        return;
    }
    if (key.letters.empty()) {
        print(painter, key.place, {key.label, key.shape == Key::Disc ? 12.0 : 15.0, ink});
        return;
    }
    const QRectF half(key.place.x(), key.place.y(), key.place.width() * 0.42, key.place.height());
    print(painter, half.adjusted(12, 0, 0, 0), {key.label, 17, ink});
    const QRectF rest(half.right(), half.y(), key.place.width() - half.width(), half.height());
    print(painter, rest.adjusted(4, 1, 0, 1),
        {key.letters, key.letters.size() > 3 ? 9.0 : 10.0, color(isLit ? kSmallInk : kUnlitInk),
            Qt::AlignLeft | Qt::AlignVCenter});
}

qreal radiusOf(const Key &key) { return std::min(key.place.height() / 2, 11.0); }

void paintKey(QPainter &painter, const Key &key, bool isLit)
{
    const QRectF &rect = key.place;
    if (key.shape == Key::Pill) {
        fill(painter, rect.adjusted(-1.2, -1, 1.2, 1.6), radiusOf(key) + 1, color(0xff000000, 0.55));
        fill(painter, rect, radiusOf(key), downwards(rect, {{0, 0xff4d565f}, {0.5, 0xff363d45}, {1, 0xff262b31}}),
            QPen(color(0xff11151a), 0.6));
        fill(painter, rect.adjusted(1.2, 0.9, -1.2, -rect.height() * 0.55), radiusOf(key) - 1,
            downwards(rect, {{0, 0x38ffffff}, {0.5, 0x05ffffff}}));
    }
    paintLabel(painter, key, isLit);
}

void paintRing(QPainter &painter, bool isLit)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(0xff000000, 0.6));
    painter.drawEllipse(kRing.adjusted(-2, -1.5, 2, 2.5));
    painter.setBrush(downwards(kRing, {{0, 0xfff2f4f6}, {0.45, 0xffb9c0c7}, {1, 0xff7f868e}}));
    painter.drawEllipse(kRing);
    painter.setBrush(downwards(kRing, {{0, 0xff565f69}, {0.5, 0xff3a4149}, {1, 0xff2a2f36}}));
    painter.drawEllipse(kRing.adjusted(2, 2, -2, -2));
    painter.setBrush(color(0xff0c0f13));
    painter.drawEllipse(kRingHole.adjusted(-2.5, -2.5, 2.5, 2.5));
    painter.setBrush(downwards(kRingHole, {{0, 0xffc9ced4}, {0.5, 0xff8d949c}, {1, 0xff6b727a}}));
    painter.drawEllipse(kRingHole);
    painter.setBrush(downwards(kRingHole, {{0, 0xff59626c}, {1, 0xff343b43}}));
    painter.drawEllipse(kRingHole.adjusted(1.6, 1.6, -1.6, -1.6));
    for (const Side side : {Side::Left, Side::Up, Side::Right, Side::Down})
        paintArrow(painter, side, color(isLit ? kInk : kUnlitInk, 0.9));
}

void paintEdgeKeys(QPainter &painter)
{
    for (const Key &key : keys()) {
        if (key.shape != Key::Edge)
            continue;
        const bool isLeft = key.place.x() < kBody.center().x();
        fill(painter, key.place, 4,
            gradient(key.place.topLeft(), key.place.topRight(),
                {{isLeft ? 0.0 : 1.0, 0xff5d656d}, {0.5, 0xffc3c9cf}, {isLeft ? 1.0 : 0.0, 0xff8a9199}}),
            QPen(color(0xff4a5159), 0.7));
    }
}

void paintHoles(QPainter &painter, QPointF centre, int columns, int rows, qreal pitch)
{
    painter.setPen(Qt::NoPen);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const QPointF at =
                centre + QPointF((column - (columns - 1) / 2.0) * pitch, (row - (rows - 1) / 2.0) * pitch);
            painter.setBrush(color(0xff000000, 0.75));
            painter.drawEllipse(at, 1.3, 1.3);
            painter.setBrush(color(0xffffffff, 0.12));
            painter.drawEllipse(at + QPointF(0.3, 0.9), 0.9, 0.5);
        }
    }
}

}

void Artwork::paintHeadset(QPainter &painter, bool plugged)
{
    const QRectF collar(kJack.center().x() - 9, kBody.top() - 4, 18, 8);
    fill(painter, collar, 2, downwards(collar, {{0, 0xffaab1b8}, {1, 0xff6d747b}}), QPen(color(0xff4a5159), 0.7));
    if (!plugged)
        return;
    const QPointF top(kJack.center().x(), 28);
    QPainterPath cable(top);
    cable.cubicTo(top.x(), 8, 58, 15, 36, 15);
    cable.lineTo(-6, 15);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color(0xff1d2329), 4.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(cable);
    painter.setPen(QPen(color(0xff5a636d), 1.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(cable.translated(0, -0.8));
    const QRectF plug(top.x() - 6.5, 24, 13, 20);
    fill(painter, plug, 3.5,
        gradient(plug.topLeft(), plug.topRight(), {{0, 0xff20262c}, {0.4, 0xff5b646d}, {1, 0xff171b20}}));
    fill(painter, kAnswerButton, 7, downwards(kAnswerButton, {{0, 0xff5a636d}, {1, 0xff252b31}}),
        QPen(color(0xff0d1013), 0.8));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(0xffaebbc8));
    painter.drawEllipse(kAnswerButton.center(), 2.6, 2.6);
}

void Artwork::paintBody(QPainter &painter)
{
    const QRectF antenna(262, 8, 24, 56);
    paintShadow(painter, kBody, 40, 14);
    fill(painter, antenna, 10,
        gradient(antenna.topLeft(), antenna.topRight(), {{0, 0xff2a3037}, {0.35, 0xff77808a}, {1, 0xff1d2227}}),
        QPen(color(0xff12161a), 0.8));
    for (const qreal y : {22.0, 27.0, 32.0})
        fill(painter, {antenna.x() + 1, y, antenna.width() - 2, 1.4}, 0.7, color(0xff000000, 0.35));
    paintEdgeKeys(painter);
    // Round shoulders: dark at both sides, with a streak of light on the left.
    fill(painter, kBody, 40,
        gradient(kBody.topLeft(), kBody.topRight(),
            {{0, 0xff737a82}, {0.025, 0xffc9ced3}, {0.06, 0xfffdfdfe}, {0.14, 0xffdde1e5}, {0.5, 0xffc9ced4},
                {0.88, 0xffd5dadf}, {0.95, 0xfff0f2f4}, {0.98, 0xffaab0b7}, {1, 0xff6b727a}}),
        QPen(color(0xff50575f), 1));
    fill(painter, kBody.adjusted(1, 1, -1, -1), 39,
        downwards(kBody, {{0, 0x90ffffff}, {0.05, 0x00ffffff}, {0.94, 0x00000000}, {1, 0x50202830}}));
}

void Artwork::paintGlass(QPainter &painter)
{
    fill(painter, kGlass.adjusted(-1.5, -1.5, 1.5, 1.5), 29, downwards(kGlass, {{0, 0xff6c737b}, {1, 0xfff7f8f9}}));
    fill(painter, kGlass, 28, downwards(kGlass, {{0, 0xff2b3138}, {0.08, 0xff14181c}, {1, 0xff0b0d10}}));
    const QRectF ear(kGlass.center().x() - 24, kGlass.y() + 10, 48, 6);
    fill(painter, ear, 3, color(0xff000000), QPen(color(0xff454d55), 0.8));
    painter.setPen(QPen(color(0xff3a4149), 0.9));
    for (int i = 0; i < 15; ++i)
        painter.drawLine(QPointF(ear.x() + 3 + 3 * i, ear.y() + 1.6), QPointF(ear.x() + 3 + 3 * i, ear.bottom() - 1.6));
    painter.setFont(fontOf(9, QFont::DemiBold));
    QFont brand = painter.font();
    brand.setLetterSpacing(QFont::AbsoluteSpacing, 4);
    painter.setFont(brand);
    painter.setPen(color(0xff8f99a3));
    painter.drawText(QRectF(kGlass.x() + 2, kScreen.bottom(), kGlass.width(), kGlass.bottom() - kScreen.bottom()),
        Qt::AlignCenter, QStringLiteral("TYX"));
    fill(painter, kScreen.adjusted(-2.5, -2.5, 2.5, 2.5), 2, color(0xff000000), QPen(color(0xff3b4249), 0.8));
}

// What the flip covers while it is closed: the face that is held to the ear.
void Artwork::paintInside(QPainter &painter)
{
    fill(painter, kFlip, 24, downwards(kFlip, {{0, 0xffa6adb5}, {0.06, 0xffc6ccd2}, {1, 0xffb2b8bf}}),
        QPen(color(0xff747b83), 1));
    const QRectF inset = kFlip.adjusted(16, 16, -16, -22);
    fill(painter, inset, 16, downwards(inset, {{0, 0xff3a4149}, {0.1, 0xff2a2f36}, {1, 0xff22272d}}),
        QPen(color(0xff868d95), 1));
    paintHoles(painter, inset.center() + QPointF(0, -62), 9, 5, 8);
    print(painter, QRectF(inset.x(), inset.center().y() - 8, inset.width(), 20), {"flip open", 13, color(kSmallInk)});
    print(painter, QRectF(inset.x(), inset.center().y() + 14, inset.width(), 20),
        {"the keys rest", 10, color(kUnlitInk)});
}

void Artwork::paintFlip(QPainter &painter, bool isLit)
{
    fill(painter, kFlip.adjusted(-1.5, -1.5, 1.5, 1.5), 25, downwards(kFlip, {{0, 0xff565d65}, {1, 0xff8d949b}}));
    fill(painter, kFlip, 24,
        gradient(kFlip.topLeft(), kFlip.topRight(),
            {{0, 0xff171b1f}, {0.04, 0xff333a41}, {0.1, 0xff282d33}, {0.9, 0xff23282d}, {0.96, 0xff2f353b},
                {1, 0xff14171a}}));
    fill(painter, kFlip.adjusted(1, 1, -1, -1), 23,
        downwards(kFlip, {{0, 0x66ffffff}, {0.03, 0x0cffffff}, {0.5, 0x00ffffff}, {1, 0x40000000}}));
    if (isLit) { // light leaks out from under the keys
        QRadialGradient glow(kRing.center(), 150);
        glow.setColorAt(0, color(kGlow, 0.16));
        glow.setColorAt(1, color(kGlow, 0));
        fill(painter, kFlip, 24, glow);
    }
    paintRing(painter, isLit);
    for (const Key &key : keys()) {
        if (isOnFlip(key))
            paintKey(painter, key, isLit);
    }
}

void Artwork::paintFlipBack(QPainter &painter)
{
    fill(painter, kFlip, 24, downwards(kFlip, {{0, 0xffe9ecef}, {0.5, 0xffc9ced4}, {1, 0xff9fa6ad}}),
        QPen(color(0xff5f666e), 1.5));
    const QRectF inset = kFlip.adjusted(24, 40, -24, -60);
    fill(painter, inset, 18, downwards(inset, {{0, 0xff2c3238}, {1, 0xff454d55}}), QPen(color(0xff868d95), 2));
}

// A flip that turns is seen shorter, and from behind when it is past the edge of the phone.
void Artwork::paintTurned(QPainter &painter, const State &state, qreal scale)
{
    const qreal height = 1 - state.flip * (1 + kFlipHanging);
    if (std::abs(height) * kFlip.height() * scale < 1)
        return;
    painter.save();
    painter.translate(0, kHinge);
    painter.scale(1, height);
    painter.translate(0, -kHinge);
    if (height > 0)
        paintFlip(painter, !state.isDead);
    else
        paintFlipBack(painter);
    painter.restore();
}

void Artwork::paint(QPainter &painter, const State &state, qreal scale)
{
    const QByteArray wanted = QByteArray::number(scale) + (state.posture.headset ? "h" : "-")
        + (state.isDead ? "d" : "-") + QByteArray::number(state.flip);
    if (wanted != m_keptAs) {
        m_kept = QPixmap((kSize * scale).toSize());
        m_kept.fill(Qt::transparent);
        QPainter p(&m_kept);
        p.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
        p.scale(scale, scale);
        paintHeadset(p, state.posture.headset);
        paintBody(p);
        paintGlass(p);
        if (state.flip > 0)
            paintInside(p);
        else
            fill(p, kFlip.adjusted(-3, -3, 3, 3), 27, downwards(kFlip, {{0, 0x90394049}, {0.1, 0x40394049}}));
        const QRectF hinge(kHinges);
        paintTurned(p, state, scale);
        for (const QRectF &part :
            {hinge.adjusted(0, 0, -176, 0), hinge.adjusted(84, 0, -84, 0), hinge.adjusted(176, 0, 0, 0)})
            fill(p, part, 6, downwards(part, {{0, 0xff8e959c}, {0.3, 0xfff6f7f8}, {0.6, 0xffb4bbc2}, {1, 0xff6d747c}}),
                QPen(color(0xff50575f), 0.8));
        m_keptAs = wanted;
    }
    painter.drawPixmap(QRectF(QPointF(), kSize), m_kept, QRectF(m_kept.rect()));
}

void Artwork::paintPressed(QPainter &painter, const Key &key)
{
    QPainterPath path;
    switch (key.shape) {
    case Key::Arm:
        path = armPath(key.side);
        break;
    case Key::Disc:
        path.addEllipse(key.place);
        break;
    case Key::Edge:
    case Key::Pill:
        path.addRoundedRect(key.place, radiusOf(key), radiusOf(key));
        break;
    }
    painter.setPen(QPen(color(kGlow, 0.9), 1.2));
    painter.setBrush(color(kGlow, 0.38));
    painter.drawPath(path);
}

}
