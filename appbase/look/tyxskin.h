// What the screen of the phone is made of: the parts and colours of its skin.
#pragma once

#include "platform/tyxexport.h"

#include <QColor>
#include <QPixmap>
#include <QString>

class QPainter;

// The skin file of TYX_RES_SKIN_FILE, whose atlas all processes share. A control that is to look like those of the
// phone draws itself with it, and by its own means where the skin lacks the part:
//
//     if (!TYXSkin::draw(painter, rect(), QStringLiteral("button"), {.on = isDown(), .active = hasFocus()}))
//         painter.fillRect(rect(), palette().button());
//
// A name is that of the image without ".g". When the phone puts on another skin, widgets get QEvent::StyleChange.
class TYX_EXPORT TYXSkin {
public:
    // Of a control. A part has one image for each state that it shows, told by the end of its name.
    struct State {
        bool on = false; // _O: pressed, chosen or switched on
        bool active = false; // _A: has the focus; with the former _OA
        bool enabled = true; // else _D, whatever the others are
    };

    // Stretches a part over a rectangle, all but its border of six pixels. A part that has no image for the state shows
    // the one without an end. False, and nothing is drawn, when the skin has neither or there is no skin.
    static bool draw(QPainter &painter, const QRect &rect, const QString &name, State state);
    static bool draw(QPainter &painter, const QRect &rect, const QString &name); // at rest

    static QPixmap part(const QString &name); // null when the skin has none of that name
    static QColor color(const QString &name); // invalid then
    static QColor color(const QString &name, const QColor &otherwise); // `otherwise` then

    // Reads the variable and the file anew, and forgets what was cut before. The application object does so.
    static void reload();
};
