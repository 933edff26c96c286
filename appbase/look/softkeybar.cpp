#include "appbase/look/softkeybar.h"

#include "appbase/look/tyxskin.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QShortcut>

namespace {

constexpr int kHeight = 28; // pixels: what a finger can hit
constexpr int kRoom = 8; // pixels left and right of a text
constexpr int kIcon = 16;

QColor inkOf(const QWidget &widget, bool enabled)
{
    QColor ink = TYXSkin::color(QStringLiteral("softkeys_text"), widget.palette().color(QPalette::ButtonText));
    ink.setAlphaF(enabled ? 1.0F : 0.45F);
    return ink;
}

class SoftKey : public QAbstractButton {
public:
    SoftKey(QWidget *bar, Qt::Alignment side, Qt::Key key) : QAbstractButton(bar), m_side(side), m_shortcut(key, bar)
    {
        setFocusPolicy(Qt::NoFocus); // the text field keeps it while a key is tapped
        hide();
        connect(&m_shortcut, &QShortcut::activated, this, &SoftKey::use);
        connect(this, &QAbstractButton::clicked, this, &SoftKey::use);
    }

    void setAction(QAction *action)
    {
        if (m_action)
            m_action->disconnect(this);
        m_action = action;
        if (action) {
            connect(action, &QAction::changed, this, &SoftKey::follow);
            connect(action, &QObject::destroyed, this, &SoftKey::follow);
        }
        follow();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        if (isDown() && !TYXSkin::draw(painter, rect(), QStringLiteral("softkeys"), {.on = true}))
            painter.fillRect(rect(), palette().color(QPalette::Midlight));
        painter.setPen(inkOf(*this, isEnabled()));
        QFont bold = font();
        bold.setBold(true);
        painter.setFont(bold);
        QRect room = rect().adjusted(kRoom, 0, -kRoom, 0);
        if (!icon().isNull()) {
            const int x = m_side == Qt::AlignLeft ? room.left() : room.right() - kIcon + 1;
            icon().paint(&painter, QRect(x, (height() - kIcon) / 2, kIcon, kIcon), Qt::AlignCenter,
                isEnabled() ? QIcon::Normal : QIcon::Disabled);
            room.adjust(m_side == Qt::AlignLeft ? kIcon + 4 : 0, 0, m_side == Qt::AlignLeft ? 0 : -kIcon - 4, 0);
        }
        const QString shown = painter.fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
        painter.drawText(room, int(m_side | Qt::AlignVCenter) | Qt::TextHideMnemonic, shown);
    }

private:
    void follow()
    {
        const bool shown = m_action && m_action->isVisible();
        setVisible(shown);
        m_shortcut.setEnabled(shown && m_action->isEnabled());
        if (!shown)
            return;
        setEnabled(m_action->isEnabled());
        setText(m_action->text());
        setIcon(m_action->icon());
        update();
    }

    void use()
    {
        if (!m_action)
            return;
        QMenu *menu = m_action->menu();
        if (!menu)
            return m_action->trigger();
        const int left = m_side == Qt::AlignLeft ? 0 : width() - menu->sizeHint().width();
        menu->popup(mapToGlobal(QPoint(left, -menu->sizeHint().height())));
    }

    Qt::Alignment m_side;
    QShortcut m_shortcut;
    QPointer<QAction> m_action;
};

}

class SoftKeyBarData {
public:
    explicit SoftKeyBarData(QWidget *bar)
        : left(bar, Qt::AlignLeft, Qt::Key_F11), right(bar, Qt::AlignRight, Qt::Key_F12)
    {
    }

    SoftKey left;
    SoftKey right;
};

SoftKeyBar::SoftKeyBar(QWidget *parent) : QWidget(parent), d(std::make_unique<SoftKeyBarData>(this))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

SoftKeyBar::~SoftKeyBar() = default;

void SoftKeyBar::setLeft(QAction *action) { d->left.setAction(action); }

void SoftKeyBar::setRight(QAction *action) { d->right.setAction(action); }

QSize SoftKeyBar::sizeHint() const { return {0, kHeight}; }

void SoftKeyBar::resizeEvent(QResizeEvent * /*event*/)
{
    const int half = width() / 2;
    d->left.setGeometry(0, 0, half, height());
    d->right.setGeometry(width() - half, 0, half, height());
}

void SoftKeyBar::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    if (!TYXSkin::draw(painter, rect(), QStringLiteral("softkeys")))
        painter.fillRect(rect(), palette().color(QPalette::Button));
}
