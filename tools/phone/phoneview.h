// The widget of the drawn phone: the mouse presses its keys and touches its screen, the desktop's keyboard presses
// keys.
#pragma once

#include "tools/phone/hand.h"
#include "tools/phone/phoneartwork.h"
#include "tools/phone/screenlink.h"

#include <QHash>
#include <QVariantAnimation>
#include <QWidget>

class PhoneView : public QWidget {
    Q_OBJECT

public:
    PhoneView(ScreenLink &screen, Hand &hand, QWidget *parent = nullptr);

    // What the status table says. The view itself never takes it for granted that a switch moved.
    void setPosture(phone::Posture posture);

    // Where a point of the layout is in this widget.
    [[nodiscard]] QPointF toWidget(QPointF point) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

    // What it says over the picture, in two lines; empty while there is nothing to say.
    [[nodiscard]] QString notice() const;

    void turnFlip(bool open);
    void plugHeadset(bool in);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    [[nodiscard]] qreal scale() const;
    [[nodiscard]] QPointF origin() const;
    [[nodiscard]] QPointF toLayout(QPointF point) const;
    [[nodiscard]] QRect widgetRect(const QRectF &rect) const;
    void paintScreen(QPainter &painter) const;
    static void paintNotice(QPainter &painter, const QString &text);
    void put(std::string_view name, bool pressed);
    void touchAt(QPointF point, bool isFirst);
    void letGoOfMouse();
    void letGoOfKeys();
    void onAttachedChanged();

    ScreenLink &m_screen;
    Hand &m_hand;
    phone::Artwork m_artwork;
    phone::Posture m_posture;
    QVariantAnimation m_flip; // how far it is open
    const phone::Key *m_underMouse = nullptr;
    bool m_isTouching = false;
    QHash<quint32, std::string_view> m_byKeyboard; // keys of the desktop (idOf) and what they hold down
    QHash<std::string_view, int> m_pressed; // and how often: mouse and keyboard may hold the same key
};
