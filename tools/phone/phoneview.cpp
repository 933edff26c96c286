#include "tools/phone/phoneview.h"

#include "tools/phone/desktopkeys.h"
#include "tools/tyx/panelplace.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <chrono>
#include <utility>

using phone::Hit;

namespace {

using namespace std::chrono_literals;

constexpr auto kFlipTurns = 180ms;

QString tipFor(const Hit &hit, phone::Posture posture)
{
    switch (hit.what) {
    case Hit::KeyOfPhone:
        return QString::fromUtf8(hit.key->name.data(), qsizetype(hit.key->name.size()));
    case Hit::Flip:
        return posture.flipOpen ? PhoneView::tr("close the flip") : PhoneView::tr("open the flip");
    case Hit::Jack:
        return posture.headset ? PhoneView::tr("unplug the headset") : PhoneView::tr("plug in a headset");
    case Hit::Nothing:
    case Hit::Screen:
        break;
    }
    return {};
}

// A key that comes up may mean something else than when it went down, if Shift came up before. Only events that no
// keyboard sent have no code of it.
quint32 idOf(const QKeyEvent &event) { return event.nativeScanCode() ? event.nativeScanCode() : quint32(event.key()); }

}

PhoneView::PhoneView(ScreenLink &screen, Hand &hand, QWidget *parent) : QWidget(parent), m_screen(screen), m_hand(hand)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    m_flip.setDuration(int(std::chrono::milliseconds(kFlipTurns).count()));
    m_flip.setStartValue(0.0);
    m_flip.setEndValue(1.0);
    m_flip.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_flip, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&screen, &ScreenLink::pictureChanged, this, [this] { update(widgetRect(phone::kScreen)); });
    connect(&screen, &ScreenLink::attachedChanged, this, &PhoneView::onAttachedChanged);
}

void PhoneView::onAttachedChanged()
{
    if (!m_screen.isAttached()) { // nobody is left to be told of releases
        m_underMouse = nullptr;
        m_isTouching = false;
        m_byKeyboard.clear();
        m_pressed.clear();
        m_hand.letGo();
    }
    update();
}

void PhoneView::setPosture(phone::Posture posture)
{
    if (posture == m_posture)
        return;
    if (posture.flipOpen != m_posture.flipOpen) {
        m_flip.setDirection(posture.flipOpen ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
        m_flip.start();
    }
    m_posture = posture;
    update();
}

void PhoneView::turnFlip(bool open) { m_hand.put(*keypad::rawKeyNamed("flip"), !open); }

void PhoneView::plugHeadset(bool in) { m_hand.put(*keypad::rawKeyNamed("headset"), in); }

QSize PhoneView::sizeHint() const { return phone::kSize.toSize(); }

int PhoneView::heightForWidth(int width) const { return int(width * phone::kSize.height() / phone::kSize.width()); }

qreal PhoneView::scale() const
{
    const qreal fitting = std::min(width() / phone::kSize.width(), height() / phone::kSize.height());
    return std::max(fitting, 0.1);
}

QPointF PhoneView::origin() const
{
    const QSizeF rest = QSizeF(size()) - phone::kSize * scale();
    return {std::round(rest.width() / 2), std::round(rest.height() / 2)};
}

QPointF PhoneView::toLayout(QPointF point) const { return (point - origin()) / scale(); }

QPointF PhoneView::toWidget(QPointF point) const { return point * scale() + origin(); }

QRect PhoneView::widgetRect(const QRectF &rect) const
{
    return QRectF(toWidget(rect.topLeft()), rect.size() * scale()).toAlignedRect().adjusted(-2, -2, 2, 2);
}

void PhoneView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate(origin());
    painter.scale(scale(), scale());
    m_artwork.paint(
        painter, {m_posture, m_flip.currentValue().toReal(), !m_screen.isAttached()}, scale() * devicePixelRatioF());
    paintScreen(painter);
    for (auto key = m_pressed.cbegin(); key != m_pressed.cend(); ++key) {
        const phone::Key *drawn = phone::keyNamed(key.key());
        if (drawn && !(m_posture.flipOpen && phone::isOnFlip(*drawn)))
            phone::Artwork::paintPressed(painter, *drawn);
    }
}

void PhoneView::paintScreen(QPainter &painter) const
{
    painter.fillRect(phone::kScreen, Qt::black);
    const QImage &picture = m_screen.picture();
    if (!picture.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, scale() * devicePixelRatioF() < 2);
        painter.drawImage(phone::pictureRect(picture.size()), picture);
    }
    if (const QString text = notice(); !text.isEmpty())
        paintNotice(painter, text);
}

QString PhoneView::notice() const
{
    if (!m_screen.trouble().isEmpty())
        return tr("The screen cannot be shown") + u'\n' + m_screen.trouble();
    if (m_screen.isAttached())
        return {};
    return m_screen.wasAttached()
        ? tr("The phone has stopped") + u'\n' + tr("its GUI server has ended; waiting for the next one")
        : tr("No phone runs here yet") + u'\n' + tr("waiting for tyx-guiserver");
}

void PhoneView::paintNotice(QPainter &painter, const QString &text)
{
    constexpr qreal kMargin = 20;
    painter.fillRect(phone::kScreen, QColor(8, 12, 18, 215));
    const QStringList lines = text.split(u'\n');
    QFont font = painter.font();
    font.setPixelSize(17);
    painter.setFont(font);
    painter.setPen(QColor(0xff, 0xc8, 0x7a));
    const QRectF upper = phone::kScreen.adjusted(kMargin, 0, -kMargin, -phone::kScreen.height() / 2 - 4);
    painter.drawText(upper, Qt::AlignHCenter | Qt::AlignBottom | Qt::TextWordWrap, lines.first());
    font.setPixelSize(12);
    painter.setFont(font);
    painter.setPen(QColor(0xc8, 0xd2, 0xdc));
    const QRectF lower = phone::kScreen.adjusted(kMargin, phone::kScreen.height() / 2 + 4, -kMargin, 0);
    painter.drawText(lower, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, lines.last());
}

void PhoneView::put(std::string_view name, bool pressed)
{
    int &count = m_pressed[name];
    count += pressed ? 1 : -1;
    if (count == (pressed ? 1 : 0))
        m_hand.put(*keypad::rawKeyNamed(name), pressed);
    if (count <= 0)
        m_pressed.remove(name);
    if (const phone::Key *key = phone::keyNamed(name))
        update(widgetRect(key->place));
}

void PhoneView::touchAt(QPointF point, bool isFirst)
{
    const auto place = tyx::panelPlace(phone::nearestPixel(point, m_screen.picture().size()));
    if (!place) {
        QToolTip::showText(QCursor::pos(), tr("The calibration keeps the panel from reaching this place"), this);
        return;
    }
    m_isTouching = true;
    if (isFirst)
        m_hand.touch(*place);
    else
        m_hand.moveTo(*place);
}

void PhoneView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_screen.isAttached())
        return;
    letGoOfMouse(); // the last release may have gone to another window
    const QPointF point = toLayout(event->position());
    const Hit hit = phone::hitAt(point, m_posture);
    switch (hit.what) {
    case Hit::KeyOfPhone:
        m_underMouse = hit.key;
        put(hit.key->name, true);
        break;
    case Hit::Screen:
        if (phone::pixelAt(point, m_screen.picture().size()))
            touchAt(point, true);
        break;
    case Hit::Flip:
        turnFlip(!m_posture.flipOpen);
        break;
    case Hit::Jack:
        plugHeadset(!m_posture.headset);
        break;
    case Hit::Nothing:
        break;
    }
}

void PhoneView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF point = toLayout(event->position());
    if (!(event->buttons() & Qt::LeftButton))
        letGoOfMouse(); // the release went to another window
    if (m_isTouching)
        touchAt(point, false);
    const Hit hit = phone::hitAt(point, m_posture);
    const bool isPointed = hit.what != Hit::Nothing && hit.what != Hit::Screen;
    setCursor(isPointed ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void PhoneView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        letGoOfMouse();
}

void PhoneView::letGoOfMouse()
{
    if (const phone::Key *key = std::exchange(m_underMouse, nullptr))
        put(key->name, false);
    if (std::exchange(m_isTouching, false))
        m_hand.lift();
}

void PhoneView::letGoOfKeys()
{
    for (const std::string_view name : std::exchange(m_byKeyboard, {}))
        put(name, false);
}

// The phone repeats held keys itself.
void PhoneView::keyPressEvent(QKeyEvent *event)
{
    const std::string_view name = phone::keyOfDesktop(event->key());
    const auto chord = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (name.empty() || chord || !m_screen.isAttached()) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat() || m_byKeyboard.contains(idOf(*event)))
        return;
    m_byKeyboard.insert(idOf(*event), name);
    put(name, true);
}

void PhoneView::keyReleaseEvent(QKeyEvent *event)
{
    if (event->isAutoRepeat())
        return;
    if (const std::string_view name = m_byKeyboard.take(idOf(*event)); !name.empty())
        put(name, false);
}

// Whoever takes the keyboard away gets the releases too; a modal dialog also those of the mouse.
void PhoneView::focusOutEvent(QFocusEvent *event)
{
    letGoOfMouse();
    letGoOfKeys();
    QWidget::focusOutEvent(event);
}

void PhoneView::hideEvent(QHideEvent *event)
{
    letGoOfMouse();
    letGoOfKeys();
    QWidget::hideEvent(event);
}

bool PhoneView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const QString tip = tipFor(phone::hitAt(toLayout(help->pos()), m_posture), m_posture);
        if (tip.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), tip, this);
        return true;
    }
    return QWidget::event(event);
}
