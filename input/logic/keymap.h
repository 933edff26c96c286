// The phone's keys: the numbers that its keypad and button devices send, and the key codes that applications see.
//
// A record of a device is 16 bits in the machine's byte order: bits 0 to 11 are the key's number, bit 15 is set when it
// went down and clear when it came up, bits 12 to 14 mean nothing.
#pragma once

#include <QtGlobal>
#include <optional>
#include <span>
#include <string_view>

namespace keypad {

inline constexpr quint16 kPressed = 0x8000;
inline constexpr quint16 kNumberMask = 0x0FFF;
inline constexpr quint16 kSideKey = 0x23; // what it means depends on how often it came down, see KeypadLogic

enum class Device { Keypad, Button };

struct RawKey {
    quint16 number;
    int key; // Qt::Key
    std::string_view name; // for people
    Device device; // that sends it
};

std::span<const RawKey> rawKeys();
const RawKey *rawKey(quint16 number); // null: there is no such key
const RawKey *rawKeyNamed(std::string_view name); // in lower case; null: there is no such key

// Held until it comes up: a second press meanwhile is a repeat.
bool isTracked(int key);

// Dead while the flip is open; clicks while it is closed.
bool isKeypadKey(int key);

// What hangs on the accessory connector says so with a record too: device type 1 to 8 for the numbers 0xA4 to 0xAB, 0
// for all others.
int usbDeviceType(int number);

}
