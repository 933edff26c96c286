// The slim pad of the methods for the twelve keys: their mode, what the last key offers, and the keys themselves.
#pragma once

#include "textinput/twelvekeys/keyletters.h"

#include <QList>
#include <QRect>
#include <QStringList>
#include <QWidget>

// What is offered stands in the upper row, the twelve keys for the pen in the two lower ones.
class KeypadView : public QWidget {
    Q_OBJECT

public:
    struct Content {
        QString mode; // "abc"
        const KeyLetters *keys = nullptr;
        QStringList offers;
        int chosen = -1; // of the offers
    };

    KeypadView();

    [[nodiscard]] QSize sizeHint() const override;
    void setContent(const Content &content);
    void setDown(int key); // the key of the phone that is down; 0: none

Q_SIGNALS:
    // By the pen.
    void keyPressed(int key); // Qt::Key
    void keyReleased(int key);
    void offerTapped(int offer);
    void modeTapped();
    void left(); // it is not shown any more

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    [[nodiscard]] QRect modePlace() const;
    [[nodiscard]] QRect keyPlace(int index) const;
    [[nodiscard]] QList<QRect> offerPlaces(int &first) const; // `first`: index of the first one that is in sight
    void releaseKey();
    void drawMode(QPainter &painter) const;
    void drawOffers(QPainter &painter) const;
    void drawKeys(QPainter &painter) const;

    Content m_content;
    int m_down = 0;
    int m_pen = 0; // the key that the pen holds
};
