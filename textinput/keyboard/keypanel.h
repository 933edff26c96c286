// Keys on the screen, as they are drawn and touched: what the keyboard and the number pad have in common.
#pragma once

#include <QBasicTimer>
#include <QList>
#include <QRect>
#include <QString>
#include <QWidget>

class ZInputMethodSink;

struct KeyboardKey {
    enum Action { Type, Shift, Backspace, Symbols, Letters, OtherSymbols, Language, Space, Enter };
    Action action = Type;
    QString text; // what it types, or what stands on it
    QRect place;
};

class KeyPanel : public QWidget {
    Q_OBJECT

public:
    explicit KeyPanel(ZInputMethodSink &sink);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    enum class Shift { Off, Once, Locked };

    virtual void addKeys() = 0; // its four rows
    virtual void press(const KeyboardKey &key); // tapped; of one that repeats, again and again while it is held
    virtual void type(const QString &text);
    [[nodiscard]] virtual QString offeredBy(const KeyboardKey &key) const = 0; // characters, when it is held
    [[nodiscard]] virtual QString shifted(const QString &text) const { return text; } // as it stands on the key
    [[nodiscard]] virtual Shift shift() const { return Shift::Off; }

    void arrange(); // the keys anew
    void addRow(const QList<KeyboardKey> &keys, const QList<double> &weights, int row);
    static QList<KeyboardKey> typing(const QString &letters); // a key each

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override; // the pen may lift where nobody tells
    void timerEvent(QTimerEvent *event) override;

private:
    [[nodiscard]] int keyAt(QPoint position) const;
    void openOffers();
    void closeOffers();
    void drawKey(QPainter &painter, const KeyboardKey &key, bool down) const;
    void drawFace(QPainter &painter, const KeyboardKey &key) const;

    ZInputMethodSink &m_sink;
    QList<KeyboardKey> m_keys;
    QList<KeyboardKey> m_offers; // over the keys, while a key is held
    int m_down = -1; // of m_keys
    int m_offer = -1; // of m_offers
    bool m_repeated = false; // while it was held
    QBasicTimer m_hold;
};
