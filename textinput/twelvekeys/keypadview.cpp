#include "textinput/twelvekeys/keypadview.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int kHeight = 72; // pixels
constexpr int kOfferHeight = 26;
constexpr int kModeWidth = 42;
constexpr int kGap = 2;
constexpr int kColumns = 6;
constexpr int kOfferPadding = 6; // beside its text
constexpr std::array kKeys{Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5, Qt::Key_6, Qt::Key_7, Qt::Key_8,
    Qt::Key_9, Qt::Key_Asterisk, Qt::Key_0, Qt::Key_NumberSign};

QColor mix(const QColor &a, const QColor &b, double share)
{
    return QColor::fromRgbF(float(a.redF() + (b.redF() - a.redF()) * share),
        float(a.greenF() + (b.greenF() - a.greenF()) * share), float(a.blueF() + (b.blueF() - a.blueF()) * share));
}

QFont sized(QFont font, int pixels, bool bold = false)
{
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

QString visible(const QString &offer) { return offer == u" " ? u"␣"_s : offer; }

// Four letters at most: a key is 33 pixels wide, and the accents show when it is pressed.
QString faceOf(int key, const KeyLetters &keys)
{
    constexpr qsizetype kMost = 4;
    switch (key) {
    case Qt::Key_0:
        return u"␣"_s;
    case Qt::Key_1:
        return u".,?"_s;
    case Qt::Key_Asterisk:
        return u"⇧"_s;
    case Qt::Key_NumberSign:
        return {};
    default:
        return keys.letters.at(std::size_t(key - Qt::Key_0))
            .first(std::min(kMost, keys.letters.at(std::size_t(key - Qt::Key_0)).size()));
    }
}

}

KeypadView::KeypadView()
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
}

QSize KeypadView::sizeHint() const { return {240, kHeight}; }

void KeypadView::setContent(const Content &content)
{
    m_content = content;
    update();
}

void KeypadView::setDown(int key)
{
    if (std::exchange(m_down, key) != key)
        update();
}

QRect KeypadView::modePlace() const { return {0, kOfferHeight, kModeWidth, height() - kOfferHeight}; }

QRect KeypadView::keyPlace(int index) const
{
    const int column = index % kColumns;
    const int row = index / kColumns;
    const int left = kModeWidth + (width() - kModeWidth) * column / kColumns;
    const int right = kModeWidth + (width() - kModeWidth) * (column + 1) / kColumns;
    const int keyHeight = (height() - kOfferHeight) / 2;
    return {left, kOfferHeight + row * keyHeight, right - left, keyHeight};
}

// As many as fit, with the chosen one among them.
QList<QRect> KeypadView::offerPlaces(int &first) const
{
    const QFontMetrics metrics(sized(font(), 15));
    const auto widthOf = [&](int offer) {
        return std::min(metrics.horizontalAdvance(visible(m_content.offers.at(offer))) + 2 * kOfferPadding, width());
    };
    first = 0;
    int used = 0;
    for (int i = 0; i <= m_content.chosen && i < m_content.offers.size(); ++i) {
        used += widthOf(i);
        while (used > width() && first < i)
            used -= widthOf(first++);
    }
    QList<QRect> places;
    int left = 0;
    for (int i = first; i < m_content.offers.size() && left + widthOf(i) <= width(); ++i) {
        places.append(QRect(left, 0, widthOf(i), kOfferHeight));
        left += widthOf(i);
    }
    return places;
}

void KeypadView::mousePressEvent(QMouseEvent *event)
{
    const QPoint at = event->position().toPoint();
    releaseKey();
    int first = 0;
    const QList<QRect> places = offerPlaces(first);
    const auto offer = std::ranges::find_if(places, [at](const QRect &place) { return place.contains(at); });
    if (offer != places.end())
        return Q_EMIT offerTapped(first + int(offer - places.begin()));
    if (modePlace().contains(at))
        return Q_EMIT modeTapped();
    for (int i = 0; i < int(kKeys.size()); ++i) {
        if (keyPlace(i).contains(at)) {
            m_pen = kKeys.at(std::size_t(i));
            setDown(m_pen);
            Q_EMIT keyPressed(m_pen);
        }
    }
}

void KeypadView::mouseReleaseEvent(QMouseEvent * /*event*/) { releaseKey(); }

void KeypadView::releaseKey()
{
    if (m_pen == 0)
        return;
    setDown(0);
    Q_EMIT keyReleased(std::exchange(m_pen, 0));
}

void KeypadView::hideEvent(QHideEvent * /*event*/)
{
    m_pen = 0; // the pen may lift where nobody tells
    m_down = 0;
    Q_EMIT left();
}

void KeypadView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.12));
    painter.fillRect(QRect(0, 0, width(), kOfferHeight), palette().color(QPalette::Base));
    drawMode(painter);
    drawOffers(painter);
    drawKeys(painter);
}

void KeypadView::drawMode(QPainter &painter) const
{
    painter.setPen(palette().color(QPalette::WindowText));
    const QRect place = modePlace();
    painter.setFont(sized(font(), 13, true)); // "ABC+" fits
    painter.drawText(place.adjusted(0, 2, 0, -place.height() / 2), Qt::AlignCenter, m_content.mode);
    painter.setFont(sized(font(), 11));
    if (m_content.keys)
        painter.drawText(place.adjusted(0, place.height() / 2, 0, -2), Qt::AlignCenter, m_content.keys->label);
}

void KeypadView::drawOffers(QPainter &painter) const
{
    int first = 0;
    const QList<QRect> places = offerPlaces(first);
    painter.setFont(sized(font(), 15));
    for (int i = 0; i < places.size(); ++i) {
        const bool isChosen = first + i == m_content.chosen;
        if (isChosen) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(palette().color(QPalette::Highlight));
            painter.drawRoundedRect(QRectF(places.at(i)).adjusted(1, 2, -1, -2), 4, 4);
        }
        painter.setPen(palette().color(isChosen ? QPalette::HighlightedText : QPalette::Text));
        painter.drawText(places.at(i), Qt::AlignCenter, visible(m_content.offers.at(first + i)));
    }
}

void KeypadView::drawKeys(QPainter &painter) const
{
    if (!m_content.keys)
        return;
    const QPalette &colours = palette();
    for (int i = 0; i < int(kKeys.size()); ++i) {
        const int key = kKeys.at(std::size_t(i));
        const bool isDown = key == m_down;
        const QRectF cap = QRectF(keyPlace(i)).adjusted(kGap / 2.0, kGap / 2.0, -kGap / 2.0, -kGap / 2.0);
        painter.setPen(Qt::NoPen);
        painter.setBrush(mix(colours.color(QPalette::Window), colours.color(QPalette::WindowText), 0.45));
        painter.drawRoundedRect(cap, 3, 3); // its lower edge shows as a shadow
        painter.setBrush(colours.color(isDown ? QPalette::Highlight : QPalette::Base));
        painter.drawRoundedRect(cap.adjusted(0, 0, 0, -1), 3, 3);
        painter.setPen(colours.color(isDown ? QPalette::HighlightedText : QPalette::Text));
        painter.setFont(sized(font(), 9, true));
        painter.drawText(cap.adjusted(3, 1, 0, 0), Qt::AlignLeft | Qt::AlignTop, QChar(key));
        painter.setFont(sized(font(), 10));
        painter.drawText(cap.adjusted(0, 0, -2, -1), Qt::AlignRight | Qt::AlignBottom, faceOf(key, *m_content.keys));
    }
}
