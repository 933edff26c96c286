// The keyboard driver of the phone's own keys, of its flip and its headset.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"
#include "platform/window/qwskeyboardhandler.h"

#include <memory>

class QWSTyxButtonsHandlerData;

// One in the GUI server, made by its application object; a device that is missing is done without. GUI thread only.
// Names are fixed.
class TYX_EXPORT QWSTyxButtonsHandler : public QWSKeyboardHandler {
    Q_OBJECT

public:
    static short TYXflipStatus; // 0 closed, 1 open, -1 unknown
    static int TYXHeadset; // 1 plugged in

    QWSTyxButtonsHandler();
    ~QWSTyxButtonsHandler() override;

    // One record of a device (docs/input.md tells what is in it).
    void ProcessHardkey(unsigned short code);

    // True for what the accessory connector says, which is then dealt with.
    bool ProcessCEBusStatus(unsigned short code);

    // Stores what flip and headset do in the status table, and tells the device reports of F1, F3, F5 and F7.
    void PreProcessHardkey(int key, bool pressed);

    // Asks the button device; false, and nothing is stored, when it does not answer.
    bool getFlipStatus(short *status) const;

    // The keys that are held (Qt::Key).
    void AddKeyToList(int key);
    void RemoveKeyFromList(int key);
    [[nodiscard]] bool CheckKeyPressed(int key) const;
    [[nodiscard]] bool IsKeyListEmpty() const;

    [[nodiscard]] static bool IsKeypadKeyCode(int key); // dead while the flip is open
    [[nodiscard]] static bool CheckKeyCode(int key); // tracked as held

    [[nodiscard]] bool hasHardkeyEvent() const; // the last record was a press
    [[nodiscard]] int getHardkeyEvent() const; // the last key (Qt::Key); 0: there was none yet

    static void reloadKeySound(); // the setting was changed

public Q_SLOTS:
    // Devices and the pipe of the test agent have records; called when they do. A descriptor that is none of the two
    // devices' is ignored. One record at a time while more keys wait for applications than these can take.
    void readKeyboardData(int fd);
    void readTestKeyboardData();

Q_SIGNALS:
    void hardkeyEventActivated(); // somebody uses the phone
    void flipMoved(bool open); // behind everything else that the flip does

private:
    friend class QWSTyxButtonsHandlerData;
    std::unique_ptr<QWSTyxButtonsHandlerData> d;
};

TYX_EXPORT extern QWSTyxButtonsHandler *hardkeyHandler; // the one that there is; null before and after

// Tells the device reports of `report`: a message of that name on "Q400_DEVICE_REPORT", with `pressed` as its int.
TYX_EXPORT void UTIL_BroadcastHardkey(QCString &report, int pressed);

// The device type 1 to 8 for the accessory codes 0xA4 to 0xAB; 0 for any other.
TYX_EXPORT short UTIL_ConvertUSBDeviceType(short code);
