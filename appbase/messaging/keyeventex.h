// A keystroke that the input method server makes, and its form in messages.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>

class QDataStream;

// One keystroke, press and release together.
struct TYX_EXPORT IM_KeyEventEx { // name fixed
    quint16 unicode = 0; // what the key types when there is no text; 0 or 0xFFFF: nothing
    quint16 keyCode = 0; // see qtKey()
    qint32 modifiers = 0; // Qt::KeyboardModifiers
    QString text; // what the key types, of any length

    // Compares the fields, not what is typed: "a" as the text is another event than U+0061 as the unicode.
    bool operator==(const IM_KeyEventEx &) const = default;

    [[nodiscard]] QString typed() const; // the text, else the unicode, else nothing

    // Key codes have 16 bits here: the keys without a character, which Qt::Key numbers from 0x01000000 on, stand at
    // 0x1000 and up; all others have their Qt::Key.
    [[nodiscard]] int qtKey() const;
    [[nodiscard]] static quint16 keyCodeOf(int qtKey); // 0: has none
};

// Reads one from where the stream is. `complete` tells whether all of it was there; if not, the event is empty.
TYX_EXPORT IM_KeyEventEx decodeKeyEventEx(QDataStream &stream, bool &complete);

// The argument of "sendKeyEventEx(IM_KeyEvent_Ex)", which brings it to the application that is typed into.
TYX_EXPORT QByteArray encodeKeyEventEx(const IM_KeyEventEx &event);
