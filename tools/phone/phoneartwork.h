// The drawn phone: body, keys, flip and headset, painted from the table of phonelayout.h. Knows no devices.
#pragma once

#include "tools/phone/phonelayout.h"

#include <QPixmap>

class QPainter;

namespace phone {

class Artwork {
public:
    struct State {
        Posture posture;
        qreal flip = 0; // how far it is open, 0 to 1
        bool isDead = false; // no server: nothing is lit
    };

    // All but the screen's picture and the keys that are pressed. Units are those of the layout; `scale` is how many
    // device pixels each has, so that what is kept for the next time is sharp.
    void paint(QPainter &painter, const State &state, qreal scale);

    static void paintPressed(QPainter &painter, const Key &key);

private:
    static void paintBody(QPainter &painter);
    static void paintGlass(QPainter &painter);
    static void paintHeadset(QPainter &painter, bool plugged);
    static void paintInside(QPainter &painter);
    static void paintFlip(QPainter &painter, bool isLit);
    static void paintFlipBack(QPainter &painter);
    void paintTurned(QPainter &painter, const State &state, qreal scale);

    QPixmap m_kept;
    QByteArray m_keptAs;
};

}
