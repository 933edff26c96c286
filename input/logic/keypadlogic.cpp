#include "input/logic/keypadlogic.h"

#include "input/logic/keymap.h"

#include <Qt>
#include <algorithm>
#include <utility>

namespace keypad {

namespace {

constexpr int kFlipClosed = 0;
constexpr int kFlipOpen = 1;
constexpr qint32 kLongPress = 3; // presses that make the side key F8 when it comes up

bool contains(const std::vector<int> &keys, int key) { return std::find(keys.begin(), keys.end(), key) != keys.end(); }

void add(std::vector<int> &keys, int key)
{
    if (!contains(keys, key))
        keys.push_back(key);
}

// The position of a switch for the status table. Also while the phone sleeps and nobody hears of it.
void appendSwitch(int key, bool pressed, std::vector<Action> &actions)
{
    if (key == Qt::Key_F1)
        actions.push_back({Action::StoreHeadset, key, pressed});
    if (key == Qt::Key_F3)
        actions.push_back({Action::StoreFlip, key, pressed});
}

}

void appendReports(int key, bool pressed, std::vector<Action> &actions)
{
    appendSwitch(key, pressed, actions);
    if (key == Qt::Key_F1 || key == Qt::Key_F3 || key == Qt::Key_F5 || key == Qt::Key_F7)
        actions.push_back({Action::Report, key, pressed});
}

void KeypadLogic::feed(quint16 record, const Phone &phone, std::vector<Action> &actions)
{
    const quint16 number = record & kNumberMask;
    const bool pressed = (record & kPressed) != 0;
    if (const int type = usbDeviceType(number)) {
        accessory(type, pressed, actions);
        return;
    }
    const int key = keyOf(number, pressed, phone);
    if (key == 0)
        return;
    m_lastKey = key;
    m_keyDown = pressed;
    turnSwitch(key, pressed, actions);
    if (phone.isSuspended()) {
        m_slept = true;
        appendSwitch(key, pressed, actions);
        return;
    }
    if (std::exchange(m_slept, false)) {
        m_held.clear();
        m_down.clear(); // the window server lifted them when the suspension began
    }
    actions.push_back({Action::Activity});
    if (pressed)
        press(key, phone, actions);
    else
        release(key, phone, actions);
    if (number == kSideKey && !pressed)
        unhold(Qt::Key_F2); // also when it comes up as F8: the key is one
}

int KeypadLogic::keyOf(quint16 number, bool pressed, const Phone &phone)
{
    if (number == kSideKey)
        return sideKey(pressed, phone);
    const RawKey *row = rawKey(number);
    return row ? row->key : 0;
}

int KeypadLogic::sideKey(bool pressed, const Phone &phone)
{
    if (!pressed)
        return std::exchange(m_sidePresses, 0) < kLongPress ? Qt::Key_F2 : Qt::Key_F8;
    if (m_sidePresses == 0)
        m_sideKey = Qt::Key_F2;
    else if (m_sidePresses == kLongPress - 1)
        m_sideKey = Qt::Key_F8;
    if (m_sidePresses < kLongPress && !phone.isInCall()) // more makes no difference
        ++m_sidePresses;
    return m_sideKey;
}

void KeypadLogic::accessory(int type, bool pressed, std::vector<Action> &actions)
{
    if (!pressed && m_usbDevice != type)
        return;
    m_usbDevice = pressed ? type : 0;
    actions.push_back({Action::UsbDevice, 0, m_usbDevice});
}

void KeypadLogic::turnSwitch(int key, bool pressed, std::vector<Action> &actions)
{
    if (key == Qt::Key_F1)
        actions.push_back({Action::Headset, key, pressed});
    if (key != Qt::Key_F3)
        return;
    m_flip = pressed ? kFlipClosed : kFlipOpen;
    actions.push_back({Action::Flip, key, m_flip});
    actions.push_back({pressed ? Action::VoiceInterrupt : Action::VoiceFlipOpen, key});
}

void KeypadLogic::press(int key, const Phone &phone, std::vector<Action> &actions)
{
    if (key == Qt::Key_F8 && m_flip == kFlipOpen) {
        actions.push_back({Action::VoiceActivate, key});
        return;
    }
    if (phone.hasWindowServer())
        appendReports(key, true, actions);
    if (isKeypadKey(key) && m_flip == kFlipOpen)
        return;
    if (isKeypadKey(key) && m_flip == kFlipClosed)
        actions.push_back({Action::Click, key});
    const bool repeats = isTracked(key) && isHeld(key);
    if (isTracked(key))
        hold(key);
    if (key == Qt::Key_F5 && !phone.takesHeadsetAnswer())
        return;
    actions.push_back({repeats ? Action::Repeat : Action::Press, key});
    add(m_down, key);
}

void KeypadLogic::release(int key, const Phone &phone, std::vector<Action> &actions)
{
    if (key == Qt::Key_F8 && m_flip == kFlipOpen) {
        actions.push_back({Action::VoiceDeactivate, key});
        return;
    }
    if (phone.hasWindowServer())
        appendReports(key, false, actions);
    if (key == Qt::Key_F3)
        liftKeypad(actions);
    if (isKeypadKey(key) && m_flip == kFlipOpen)
        return;
    unhold(key);
    std::erase(m_down, key);
    actions.push_back({Action::Release, key});
}

// Their releases will not be delivered: without this they would repeat until the next key.
void KeypadLogic::liftKeypad(std::vector<Action> &actions)
{
    for (const int key : m_down) {
        if (isKeypadKey(key))
            actions.push_back({Action::Release, key});
    }
    std::erase_if(m_down, isKeypadKey);
    std::erase_if(m_held, isKeypadKey);
}

void KeypadLogic::lift(std::vector<Action> &actions)
{
    // The flip and the headset are where they were.
    const auto isSwitch = [](int key) { return key == Qt::Key_F1 || key == Qt::Key_F3; };
    for (const int key : m_down) {
        if (!isSwitch(key))
            actions.push_back({Action::Release, key});
    }
    m_down.clear();
    m_held.clear();
    m_sidePresses = 0;
    m_keyDown = false;
}

void KeypadLogic::hold(int key) { add(m_held, key); }

void KeypadLogic::unhold(int key) { std::erase(m_held, key); }

bool KeypadLogic::isHeld(int key) const { return contains(m_held, key); }

}
