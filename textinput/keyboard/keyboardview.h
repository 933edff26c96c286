// The keyboard as it is drawn and touched.
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

class KeyboardView : public QWidget {
    Q_OBJECT

public:
    explicit KeyboardView(ZInputMethodSink &sink);

    [[nodiscard]] QSize sizeHint() const override;
    void setLanguage(const QString &language); // "de"; one that there is no layout for: English
    void showNumbers(bool numbers);
    void nextShift(); // small, one capital, capitals

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override; // the pen may lift where nobody tells
    void timerEvent(QTimerEvent *event) override;

private:
    enum class Shift { Off, Once, Locked };

    void arrange();
    void addRow(const QList<KeyboardKey> &keys, const QList<double> &weights, int row);
    [[nodiscard]] int keyAt(QPoint position) const;
    void press(const KeyboardKey &key);
    void type(const QString &text);
    void openAccents();
    void closeAccents();
    [[nodiscard]] QString shifted(const QString &text) const;
    void drawKey(QPainter &painter, const KeyboardKey &key, bool down) const;
    void drawFace(QPainter &painter, const KeyboardKey &key) const;

    ZInputMethodSink &m_sink;
    QList<KeyboardKey> m_keys;
    QList<KeyboardKey> m_accents; // over the keys, while a key is held
    int m_layout = 0;
    int m_symbols = -1; // its page; -1: letters
    Shift m_shift = Shift::Off;
    int m_down = -1; // of m_keys
    int m_accent = -1; // of m_accents
    bool m_repeated = false; // while it was held
    QBasicTimer m_hold;
};
