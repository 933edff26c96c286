#include "textinput/keyboard/keypanel.h"

#include "textinput/plugin/zinputmethodplugin.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <numeric>

namespace {

constexpr int kRows = 4;
constexpr int kRowHeight = 33; // pixels; ten keys are 24 wide on a screen of 240
constexpr int kGap = 2; // between keys
constexpr int kHoldMs = 450; // until a key offers more, or repeats
constexpr int kRepeatMs = 60;
constexpr int kOfferWidth = 28;

bool isCommand(const KeyboardKey &key) { return key.action != KeyboardKey::Type && key.action != KeyboardKey::Space; }

QColor mix(const QColor &a, const QColor &b, double share)
{
    return QColor::fromRgbF(float(a.redF() + (b.redF() - a.redF()) * share),
        float(a.greenF() + (b.greenF() - a.greenF()) * share), float(a.blueF() + (b.blueF() - a.blueF()) * share));
}

// The signs of the keys that say no text, in a square around the middle.
QPainterPath sign(KeyboardKey::Action action, QPointF middle)
{
    QPainterPath path;
    switch (action) {
    case KeyboardKey::Shift:
        path.addPolygon(QPolygonF({{0, -7}, {7, 0}, {3, 0}, {3, 6}, {-3, 6}, {-3, 0}, {-7, 0}, {0, -7}}));
        break;
    case KeyboardKey::Backspace:
        path.addPolygon(QPolygonF({{-9, 0}, {-3, -6}, {8, -6}, {8, 6}, {-3, 6}, {-9, 0}}));
        path.moveTo(-1, -3);
        path.lineTo(5, 3);
        path.moveTo(5, -3);
        path.lineTo(-1, 3);
        break;
    case KeyboardKey::Enter:
        path.moveTo(8, -6);
        path.lineTo(8, 1);
        path.lineTo(-8, 1);
        path.moveTo(-3, -4);
        path.lineTo(-8, 1);
        path.lineTo(-3, 6);
        break;
    case KeyboardKey::Space:
        path.moveTo(-16, 1);
        path.lineTo(-16, 5);
        path.lineTo(16, 5);
        path.lineTo(16, 1);
        break;
    default:
        break;
    }
    return path.translated(middle);
}

}

KeyPanel::KeyPanel(ZInputMethodSink &sink) : m_sink(sink)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
}

QSize KeyPanel::sizeHint() const { return {240, kRows * kRowHeight + kGap}; }

QList<KeyboardKey> KeyPanel::typing(const QString &letters)
{
    QList<KeyboardKey> keys;
    for (const QChar letter : letters)
        keys.append({KeyboardKey::Type, letter, {}});
    return keys;
}

void KeyPanel::arrange()
{
    m_keys.clear();
    closeOffers();
    m_down = -1;
    m_hold.stop();
    addKeys();
    update();
}

// The keys share the width by their weights; a row of fewer than ten letters keeps the size of keys and stands in the
// middle.
void KeyPanel::addRow(const QList<KeyboardKey> &keys, const QList<double> &weights, int row)
{
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    const double unit = width() / std::max(sum, 10.0);
    double left = (width() - unit * sum) / 2;
    const int top = kGap + row * (height() - kGap) / kRows;
    const int bottom = kGap + (row + 1) * (height() - kGap) / kRows;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        KeyboardKey key = keys.at(i);
        const double right = left + unit * weights.at(i);
        key.place = QRect(QPoint(qRound(left), top), QPoint(qRound(right) - 1, bottom - 1));
        m_keys.append(key);
        left = right;
    }
}

// The nearest one: a pen between two keys means one of them.
int KeyPanel::keyAt(QPoint position) const
{
    int best = -1;
    int least = 0;
    for (int i = 0; i < m_keys.size(); ++i) {
        const QRect &place = m_keys.at(i).place;
        const QPoint inside(std::clamp(position.x(), place.left(), place.right()),
            std::clamp(position.y(), place.top(), place.bottom()));
        const int distance = (position - inside).manhattanLength();
        if (best < 0 || distance < least) {
            best = i;
            least = distance;
        }
    }
    return best;
}

void KeyPanel::mousePressEvent(QMouseEvent *event)
{
    closeOffers();
    m_down = keyAt(event->position().toPoint());
    m_repeated = false;
    m_hold.start(kHoldMs, this);
    update();
}

void KeyPanel::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (!m_offers.isEmpty()) {
        const auto over = std::ranges::find_if(m_offers, [&](const KeyboardKey &key) {
            return position.x() >= key.place.left() && position.x() <= key.place.right();
        });
        m_offer = over == m_offers.end() ? -1 : int(over - m_offers.begin());
    } else if (const int key = keyAt(position); m_down >= 0 && key != m_down) {
        m_down = key;
        m_repeated = false;
        m_hold.start(kHoldMs, this);
    }
    update();
}

void KeyPanel::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    const int down = std::exchange(m_down, -1);
    m_hold.stop();
    if (!m_offers.isEmpty()) {
        const QString chosen = m_offer < 0 ? QString() : m_offers.at(m_offer).text;
        closeOffers();
        if (!chosen.isEmpty())
            type(chosen);
    } else if (down >= 0 && down < m_keys.size() && !m_repeated) {
        press(KeyboardKey(m_keys.at(down))); // a copy: the press may change the keys
    }
    update();
}

void KeyPanel::timerEvent(QTimerEvent * /*event*/)
{
    if (m_down < 0 || m_down >= m_keys.size()) {
        m_hold.stop();
        return;
    }
    const KeyboardKey key = m_keys.at(m_down);
    if (key.action == KeyboardKey::Backspace) {
        m_repeated = true;
        m_hold.start(kRepeatMs, this);
        press(key);
    } else if (key.action == KeyboardKey::Type && !offeredBy(key).isEmpty()) {
        openOffers();
    }
}

// One row over the key, kept inside; the first is the key's own.
void KeyPanel::openOffers()
{
    const KeyboardKey key = m_keys.at(m_down);
    const QString offered = key.text + offeredBy(key);
    const int room = std::min(kOfferWidth, width() / int(offered.size()));
    const int all = room * int(offered.size());
    const int left = std::clamp(key.place.center().x() - room / 2, 0, width() - all);
    const int top = std::max(0, key.place.top() - key.place.height());
    for (int i = 0; i < offered.size(); ++i)
        m_offers.append(
            {KeyboardKey::Type, shifted(offered.mid(i, 1)), QRect(left + i * room, top, room, key.place.height())});
    const auto under = std::ranges::find_if(m_offers, [&](const KeyboardKey &offer) {
        return offer.place.left() <= key.place.center().x() && key.place.center().x() <= offer.place.right();
    });
    m_offer = under == m_offers.end() ? 0 : int(under - m_offers.begin());
    m_hold.stop();
    update();
}

void KeyPanel::closeOffers()
{
    m_offers.clear();
    m_offer = -1;
}

void KeyPanel::type(const QString &text) { m_sink.sendText(text); }

void KeyPanel::press(const KeyboardKey &key)
{
    switch (key.action) {
    case KeyboardKey::Type:
        type(shifted(key.text));
        break;
    case KeyboardKey::Space:
        m_sink.sendText(QStringLiteral(" "));
        break;
    case KeyboardKey::Backspace:
        m_sink.sendKey(Qt::Key_Backspace);
        break;
    case KeyboardKey::Enter:
        m_sink.sendKey(Qt::Key_Return);
        break;
    default:
        break;
    }
}

void KeyPanel::resizeEvent(QResizeEvent * /*event*/) { arrange(); }

void KeyPanel::hideEvent(QHideEvent * /*event*/)
{
    m_hold.stop();
    m_down = -1;
    closeOffers();
}

void KeyPanel::drawFace(QPainter &painter, const KeyboardKey &key) const
{
    const QPainterPath drawn = sign(key.action, QRectF(key.place).center());
    if (drawn.isEmpty()) {
        QFont face = font();
        face.setPixelSize(isCommand(key) ? 12 : 17);
        painter.setFont(face);
        const bool letter = key.action == KeyboardKey::Type;
        painter.drawText(key.place, Qt::AlignCenter, letter ? shifted(key.text) : key.text);
        return;
    }
    painter.setBrush(
        key.action == KeyboardKey::Shift && shift() != Shift::Off ? QBrush(painter.pen().color()) : Qt::NoBrush);
    painter.setPen(QPen(painter.pen().color(), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(drawn);
    if (key.action == KeyboardKey::Shift && shift() == Shift::Locked) {
        const QPointF middle = QRectF(key.place).center();
        painter.drawLine(middle + QPointF(-5, 9), middle + QPointF(5, 9));
    }
}

void KeyPanel::drawKey(QPainter &painter, const KeyboardKey &key, bool down) const
{
    const QPalette &colours = palette();
    const QColor face = down ? colours.color(QPalette::Highlight)
        : isCommand(key)     ? mix(colours.color(QPalette::Button), colours.color(QPalette::WindowText), 0.18)
                             : colours.color(QPalette::Base);
    const QRectF cap = QRectF(key.place).adjusted(kGap / 2.0, kGap / 2.0, -kGap / 2.0, -kGap / 2.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mix(colours.color(QPalette::Window), colours.color(QPalette::WindowText), 0.45));
    painter.drawRoundedRect(cap, 4, 4); // its lower edge shows as a shadow
    painter.setBrush(face);
    painter.drawRoundedRect(cap.adjusted(0, 0, 0, -1), 4, 4);
    painter.setPen(colours.color(down ? QPalette::HighlightedText
            : isCommand(key)          ? QPalette::ButtonText
                                      : QPalette::Text));
    drawFace(painter, key);
}

void KeyPanel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.12));
    for (int i = 0; i < m_keys.size(); ++i)
        drawKey(painter, m_keys.at(i), i == m_down && m_offers.isEmpty());
    if (m_offers.isEmpty())
        return;
    const QRect around = m_offers.first().place | m_offers.last().place;
    painter.setPen(palette().color(QPalette::WindowText));
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawRoundedRect(
        QRectF(around).adjusted(-1.5, -1.5, 1.5, 1.5) & QRectF(rect()).adjusted(.5, .5, -.5, -.5), 5, 5);
    for (int i = 0; i < m_offers.size(); ++i) {
        painter.setPen(palette().color(QPalette::Text));
        const KeyboardKey &offer = m_offers.at(i);
        const bool chosen = i == m_offer;
        painter.setPen(Qt::NoPen);
        painter.setBrush(chosen ? palette().color(QPalette::Highlight) : QColor(Qt::transparent));
        painter.drawRoundedRect(QRectF(offer.place).adjusted(1, 1, -1, -1), 4, 4);
        painter.setPen(palette().color(chosen ? QPalette::HighlightedText : QPalette::WindowText));
        QFont face = font();
        face.setPixelSize(17);
        painter.setFont(face);
        painter.drawText(offer.place, Qt::AlignCenter, offer.text);
    }
}
