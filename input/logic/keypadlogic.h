// What the phone does about the records of its keypad: records in, actions out; no device, no clock, no message.
//
// Every record first has its key found (keymap.h) and its effect on the switches, then it goes down these rows until
// one ends it:
//
//   | when                          | a press                             | a release                                |
//   |-------------------------------|-------------------------------------|------------------------------------------|
//   | accessory connector           | UsbDevice, its type; ends           | UsbDevice 0, if it was that type; ends   |
//   | no such key                   | ends                                | ends                                     |
//   | flip (F3)                     | Flip 0, VoiceInterrupt              | Flip 1, VoiceFlipOpen                    |
//   | headset (F1)                  | Headset 1                           | Headset 0                                |
//   | the phone is suspended        | StoreFlip, StoreHeadset of these    | the same; ends                           |
//   |                               | two keys; ends                      |                                          |
//   | any                           | Activity                            | Activity                                 |
//   | F8, flip open                 | VoiceActivate; ends                 | VoiceDeactivate; ends                    |
//   | F1, F3, a window server       | StoreHeadset, StoreFlip             | the same                                 |
//   | F1, F3, F5, F7, window server | Report 1                            | Report 0                                 |
//   | flip (F3)                     |                                     | Release of the keypad keys that are down |
//   | keypad key, flip open         | ends                                | ends                                     |
//   | keypad key, flip closed       | Click                               |                                          |
//   | tracked key                   | held from now on                    | no more held                             |
//   | F5, not to be answered        | ends                                |                                          |
//   | any                           | Press; Repeat if it was held before | Release                                  |
//
// The flip is unknown until it moves, when the device does not tell: then the keypad works, and is silent.
//
// The side key counts its presses, except during a call:
//
//   | presses so far | a press is                  | the release is, and counting starts anew |
//   |----------------|-----------------------------|------------------------------------------|
//   | 0              | F2                          | F2                                       |
//   | 1              | what the press before was   | F2                                       |
//   | 2              | F8                          | F2                                       |
//   | 3 and more     | what the press before was   | F8                                       |
#pragma once

#include <QtGlobal>
#include <vector>

namespace keypad {

// What the logic has to know of the phone at the moment of a record. Asked only when it matters.
class Phone {
public:
    Phone() = default;
    Phone(const Phone &) = delete;
    Phone &operator=(const Phone &) = delete;
    virtual ~Phone() = default;

    [[nodiscard]] virtual bool isSuspended() const = 0;
    [[nodiscard]] virtual bool isInCall() const = 0;
    [[nodiscard]] virtual bool hasWindowServer() const = 0;
    [[nodiscard]] virtual bool takesHeadsetAnswer() const { return true; } // the button of the headset is a key
};

struct Action {
    enum Kind : quint8 {
        Flip, // the flip's word becomes `value`: 0 closed, 1 open
        Headset, // the headset's word becomes `value`: 1 plugged in
        UsbDevice, // the accessory's type becomes `value`, 0 is none
        VoiceInterrupt, // the voice recognition is told ...
        VoiceFlipOpen,
        VoiceActivate, // ... and the launcher
        VoiceDeactivate, // only if there is a voice recognition
        Activity, // somebody uses the phone
        StoreFlip, // the status table's flip becomes `value`: 1 closed, 0 open
        StoreHeadset, // the status table's headset becomes `value`
        Report, // the device report of `key`, with `value`
        Click, // the sound of `key`
        Press, // the key goes to the window server
        Repeat,
        Release,
    };

    Kind kind;
    int key = 0; // Qt::Key
    int value = 0;

    bool operator==(const Action &) const = default;
};

// What the status table and the device reports have to say of a key: the rows of F1, F3, F5 and F7 above.
void appendReports(int key, bool pressed, std::vector<Action> &actions);

class KeypadLogic {
public:
    // Appends what is to be done, in order.
    void feed(quint16 record, const Phone &phone, std::vector<Action> &actions);

    // The devices are gone: what is down comes up.
    void lift(std::vector<Action> &actions);

    [[nodiscard]] int flip() const { return m_flip; } // 0 closed, 1 open, -1 unknown
    void setFlip(int flip) { m_flip = flip; }

    [[nodiscard]] int lastKey() const { return m_lastKey; } // 0: there was none yet
    [[nodiscard]] bool isKeyDown() const { return m_keyDown; } // the last record was a press

    // The list of held keys; no key is in it twice.
    void hold(int key);
    void unhold(int key);
    [[nodiscard]] bool isHeld(int key) const;
    [[nodiscard]] const std::vector<int> &held() const { return m_held; }

private:
    int keyOf(quint16 number, bool pressed, const Phone &phone);
    int sideKey(bool pressed, const Phone &phone);
    void accessory(int type, bool pressed, std::vector<Action> &actions);
    void press(int key, const Phone &phone, std::vector<Action> &actions);
    void release(int key, const Phone &phone, std::vector<Action> &actions);
    void turnSwitch(int key, bool pressed, std::vector<Action> &actions);
    void liftKeypad(std::vector<Action> &actions);

    int m_flip = -1;
    int m_usbDevice = 0;
    int m_lastKey = 0;
    bool m_keyDown = false;
    bool m_slept = false; // records came while the phone was suspended: releases may have been missed
    qint32 m_sidePresses = 0;
    int m_sideKey = 0; // of its last press
    std::vector<int> m_held; // tracked keys
    std::vector<int> m_down; // keys that applications got the press of and not yet the release
};

}
