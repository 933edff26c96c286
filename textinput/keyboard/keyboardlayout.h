// What stands on the keys, as data.
#pragma once

#include <QList>
#include <QString>

struct KeyRows {
    QString top;
    QString middle;
    QString bottom; // between shift and backspace
};

struct KeyboardLayout {
    QString language; // "de"
    QString label; // on the key that goes to the next layout
    KeyRows rows; // small letters
};

namespace keyboardlayout {

const QList<KeyboardLayout> &all();
const KeyRows &symbols(int page); // 0 or 1
QString accents(QChar letter); // what the key offers when it is held, of a small letter; empty: nothing

}
