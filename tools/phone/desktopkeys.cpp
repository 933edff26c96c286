#include "tools/phone/desktopkeys.h"

#include <algorithm>
#include <iterator>

namespace phone {

namespace {

struct Row {
    int key; // Qt::Key
    std::string_view name;
};

// The table of docs/phone.md.
// clang-format off
constexpr Row rows[] = {
    {Qt::Key_0, "0"}, {Qt::Key_1, "1"}, {Qt::Key_2, "2"}, {Qt::Key_3, "3"}, {Qt::Key_4, "4"},
    {Qt::Key_5, "5"}, {Qt::Key_6, "6"}, {Qt::Key_7, "7"}, {Qt::Key_8, "8"}, {Qt::Key_9, "9"},
    {Qt::Key_Asterisk, "*"}, {Qt::Key_NumberSign, "#"},
    {Qt::Key_Left, "left"}, {Qt::Key_Up, "up"}, {Qt::Key_Right, "right"}, {Qt::Key_Down, "down"},
    {Qt::Key_Return, "enter"}, {Qt::Key_Enter, "enter"}, {Qt::Key_Space, "enter"},
    {Qt::Key_Backspace, "clear"}, {Qt::Key_Delete, "clear"},
    {Qt::Key_Escape, "end"}, {Qt::Key_F4, "end"},
    {Qt::Key_Home, "send"}, {Qt::Key_F3, "send"},
    {Qt::Key_F1, "f11"}, {Qt::Key_F11, "f11"}, {Qt::Key_F2, "f12"}, {Qt::Key_F12, "f12"},
    {Qt::Key_PageUp, "right-volume"}, {Qt::Key_Plus, "right-volume"},
    {Qt::Key_PageDown, "left-volume"}, {Qt::Key_Minus, "left-volume"},
    {Qt::Key_Insert, "side"},
    {Qt::Key_F5, "headset-answer"},
};
// clang-format on

}

std::string_view keyOfDesktop(int key)
{
    const auto *row = std::find_if(std::begin(rows), std::end(rows), [&](const Row &r) { return r.key == key; });
    return row == std::end(rows) ? std::string_view() : row->name;
}

}
