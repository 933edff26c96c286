#include "input/logic/keymap.h"

#include <Qt>
#include <algorithm>
#include <array>
#include <iterator>

namespace keypad {

namespace {

constexpr int kFirstAccessory = 0xA4;
constexpr int kLastAccessory = 0xAB;

// clang-format off
constexpr RawKey rows[] = {
    {0x0B, Qt::Key_Up,         "up",             Device::Keypad},
    {0x0C, Qt::Key_Down,       "down",           Device::Keypad},
    {0x0D, Qt::Key_Left,       "left",           Device::Keypad},
    {0x0E, Qt::Key_Right,      "right",          Device::Keypad},
    {0x0F, Qt::Key_1,          "1",              Device::Keypad},
    {0x10, Qt::Key_2,          "2",              Device::Keypad},
    {0x11, Qt::Key_3,          "3",              Device::Keypad},
    {0x12, Qt::Key_4,          "4",              Device::Keypad},
    {0x13, Qt::Key_5,          "5",              Device::Keypad},
    {0x14, Qt::Key_6,          "6",              Device::Keypad},
    {0x15, Qt::Key_7,          "7",              Device::Keypad},
    {0x16, Qt::Key_8,          "8",              Device::Keypad},
    {0x17, Qt::Key_9,          "9",              Device::Keypad},
    {0x18, Qt::Key_Asterisk,   "*",              Device::Keypad},
    {0x19, Qt::Key_0,          "0",              Device::Keypad},
    {0x1A, Qt::Key_NumberSign, "#",              Device::Keypad},
    {0x1B, Qt::Key_Backspace,  "clear",          Device::Keypad},
    {0x1D, Qt::Key_Enter,      "enter",          Device::Keypad},
    {0x1E, Qt::Key_F6,         "send",           Device::Keypad},
    {0x1F, Qt::Key_F9,         "left-volume",    Device::Keypad},
    {0x20, Qt::Key_F10,        "right-volume",   Device::Keypad},
    {0x21, Qt::Key_F11,        "f11",            Device::Keypad},
    {0x22, Qt::Key_F12,        "f12",            Device::Keypad},
    {kSideKey, Qt::Key_F2,     "side",           Device::Keypad},
    {0x25, Qt::Key_F7,         "end",            Device::Keypad},
    {0x80, Qt::Key_F3,         "flip",           Device::Button},
    {0x81, Qt::Key_F5,         "headset-answer", Device::Button},
    {0x82, Qt::Key_F1,         "headset",        Device::Button},
};
// clang-format on

// Looked up for every record: by number, without a search.
constexpr auto byNumber = [] {
    std::array<const RawKey *, 0x100> table{};
    for (const RawKey &row : rows)
        table[row.number] = &row;
    return table;
}();

bool isSwitchOrSideKey(int key)
{
    return key == Qt::Key_F1 || key == Qt::Key_F2 || key == Qt::Key_F3 || key == Qt::Key_F5;
}

bool isDigitKey(int key)
{
    return (key >= Qt::Key_0 && key <= Qt::Key_9) || key == Qt::Key_Asterisk || key == Qt::Key_NumberSign
        || key == Qt::Key_Backspace;
}

}

std::span<const RawKey> rawKeys() { return rows; }

const RawKey *rawKey(quint16 number) { return number < byNumber.size() ? byNumber[number] : nullptr; }

const RawKey *rawKeyNamed(std::string_view name)
{
    const auto *row = std::find_if(std::begin(rows), std::end(rows), [&](const RawKey &r) { return r.name == name; });
    return row == std::end(rows) ? nullptr : row;
}

bool isTracked(int key)
{
    switch (key) {
    case Qt::Key_Enter:
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Down:
    case Qt::Key_F6:
    case Qt::Key_F7:
    case Qt::Key_F9:
    case Qt::Key_F10:
    case Qt::Key_F11:
    case Qt::Key_F12:
        return true;
    default:
        return isSwitchOrSideKey(key);
    }
}

bool isKeypadKey(int key) { return isDigitKey(key) || (isTracked(key) && !isSwitchOrSideKey(key)); }

int usbDeviceType(int number)
{
    return number >= kFirstAccessory && number <= kLastAccessory ? number - kFirstAccessory + 1 : 0;
}

}
