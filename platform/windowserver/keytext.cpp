#include "platform/windowserver/keytext.h"

#include <QChar>

namespace {

constexpr int kNoCharacter = 0xFFFF; // drivers say so by this value or by 0

bool bringsCharacter(int unicode)
{
    return unicode > 0 && unicode != kNoCharacter && unicode <= static_cast<int>(QChar::LastValidCodePoint)
        && !QChar::isSurrogate(static_cast<char32_t>(unicode));
}

QString controlText(int keycode)
{
    switch (keycode) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("\r");
    case Qt::Key_Tab:
        return QStringLiteral("\t");
    case Qt::Key_Backspace:
        return QStringLiteral("\b");
    case Qt::Key_Escape:
        return QStringLiteral("\x1b");
    case Qt::Key_Delete:
        return QStringLiteral("\x7f");
    default:
        return {};
    }
}

bool isMove(int keycode) { return keycode >= Qt::Key_Home && keycode <= Qt::Key_PageDown; }

}

QString keyText(const KeyStroke &stroke)
{
    if (bringsCharacter(stroke.unicode)) {
        const auto character = static_cast<char32_t>(stroke.unicode);
        return QString::fromUcs4(&character, 1);
    }
    // As on a desktop: an editor does not take it for a letter.
    const bool isLetter = stroke.keycode >= Qt::Key_A && stroke.keycode <= Qt::Key_Z;
    if (isLetter && stroke.modifiers & Qt::ControlModifier)
        return QChar(static_cast<char16_t>(stroke.keycode - Qt::Key_A + 1));
    // Key codes of letters are those of the capitals.
    if (stroke.keycode >= Qt::Key_Space && stroke.keycode <= Qt::Key_ydiaeresis) {
        const QChar capital(static_cast<char16_t>(stroke.keycode));
        return stroke.modifiers & Qt::ShiftModifier ? capital : capital.toLower();
    }
    return controlText(stroke.keycode);
}

int keyCode(const KeyStroke &stroke)
{
    if (stroke.keycode != 0 || !bringsCharacter(stroke.unicode))
        return stroke.keycode;
    return static_cast<int>(QChar::toUpper(static_cast<char32_t>(stroke.unicode)));
}

bool repeats(const KeyStroke &stroke)
{
    return isMove(stroke.keycode) || (!keyText(stroke).isEmpty() && keyCode(stroke) != Qt::Key_Escape);
}
