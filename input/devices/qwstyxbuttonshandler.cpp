#include "input/devices/qwstyxbuttonshandler.h"

#include "appbase/messaging/wire.h"
#include "input/devices/devicereader.h"
#include "input/devices/hardkeysound.h"
#include "input/devices/testpipe.h"
#include "input/logic/keymap.h"
#include "input/logic/keypadlogic.h"
#include "platform/bus/qcopchannel.h"
#include "platform/window/qwsserver.h"
#include "settings/status/switchprobe.h"
#include "settings/status/systemstatus.h"

#include <cstdio>
#include <cstring>
#include <sys/ioctl.h>

short QWSTyxButtonsHandler::TYXflipStatus = -1;
int QWSTyxButtonsHandler::TYXHeadset = 0;
QWSTyxButtonsHandler *hardkeyHandler = nullptr;

namespace {

using namespace std::chrono_literals;
using keypad::Action;

constexpr char kButtonDevice[] = "/dev/button";
constexpr char kKeypadDevice[] = "/dev/keypad0";
constexpr char kVoice[] = "TYX/Application/VR";
constexpr char kLauncher[] = "/AM/Launcher";

// Requests of the drivers. Their numbers say how many bytes go which way.
constexpr unsigned long kReadFlip = 0x8004DE01; // 4 bytes, of which the driver fills the first two
constexpr unsigned long kReadHeadset = 0x8004DE02;
constexpr unsigned long kSetUpKeypad = 0x40046B06;
constexpr unsigned long kSetKeypadPeriod = 0x40026B04;
constexpr unsigned long kReadKeypad = 0x80046B04;
constexpr quint16 kKeypadPeriod = 60;
constexpr qint16 kNoHeadset = 1;

// An application that leaves 2000 events waiting is taken for dead. From here on keys are read no faster than fingers
// press them, so that a flood waits in the device, and a phone whose application hangs still sees its flip.
constexpr int kManyWaiting = 500;
constexpr auto kSlowPause = 5ms;

template <typename T> bool request(int fd, unsigned long number, T &value)
{
    return fd >= 0 && ::ioctl(fd, number, &value) >= 0;
}

// A driver that knows only of 16 bits fills the first two bytes, whatever the byte order.
bool readSwitch(int fd, unsigned long number, short &value)
{
    std::byte bytes[4]{};
    if (!request(fd, number, bytes))
        return false;
    std::memcpy(&value, bytes, sizeof value);
    return true;
}

const char *reportOf(int key)
{
    switch (key) {
    case Qt::Key_F7:
        return "HOME";
    case Qt::Key_F5:
        return "HEADSET ANSWER";
    case Qt::Key_F1:
        return "HEADSET STATUS";
    default:
        return "FLIP";
    }
}

}

// KeypadLogic decides what a record means; this reads the devices and does what was decided.
class QWSTyxButtonsHandlerData : public SwitchProbe, public keypad::Phone {
public:
    explicit QWSTyxButtonsHandlerData(QWSTyxButtonsHandler &handler);

    [[nodiscard]] int headsetState() const override { return QWSTyxButtonsHandler::TYXHeadset; }
    [[nodiscard]] int flipState() const override { return QWSTyxButtonsHandler::TYXflipStatus; }

    [[nodiscard]] bool isSuspended() const override { return hasWindowServer() && !QWSServer::isInputEnabled(); }
    [[nodiscard]] bool isInCall() const override { return UTIL_GetPhoneInCall(); }
    [[nodiscard]] bool hasWindowServer() const override { return QWSServer::instance() != nullptr; }

    void openDevices();
    void askSwitches();
    void setUpKeypad();
    void openTestPipe();
    static void readFrom(DeviceReader &reader);
    void feed(quint16 record);
    void lift();
    void perform(const std::vector<Action> &actions);

    QWSTyxButtonsHandler &q;
    keypad::KeypadLogic logic;
    DeviceReader button;
    DeviceReader keypad;
    DeviceReader testPipe; // closed unless the phone is under test
    const bool isUnderTest = testpipe::isEnabled(); // only then others may learn which keys are pressed

private:
    using Source = keypad::Device;

    void takeRecords(Source device, DeviceReader::Records records);
    void perform(const Action &action);
    static void tell(const Action &action);
};

QWSTyxButtonsHandlerData::QWSTyxButtonsHandlerData(QWSTyxButtonsHandler &handler)
    : q(handler)
    , button(kButtonDevice, sizeof(quint16), [this](auto records) { takeRecords(Source::Button, records); })
    , keypad(kKeypadDevice, sizeof(quint16), [this](auto records) { takeRecords(Source::Keypad, records); })
    , testPipe(testpipe::kPath, sizeof(quint16), [this](auto records) { takeRecords(Source::Keypad, records); })
{
}

void QWSTyxButtonsHandlerData::takeRecords(Source device, DeviceReader::Records records)
{
    for (; !records.empty(); records = records.subspan(sizeof(quint16))) {
        quint16 record = 0;
        std::memcpy(&record, records.data(), sizeof record); // host order
        if (isUnderTest)
            QCopChannel::send("TYX/TestCapture", "record(int,int)", wire::pack(int(device), int(record)));
        q.ProcessHardkey(record);
    }
}

void QWSTyxButtonsHandlerData::openDevices()
{
    for (DeviceReader *device : {&button, &keypad}) {
        QObject::connect(device, &DeviceReader::activated, &q, &QWSTyxButtonsHandler::readKeyboardData);
        device->onLost([this] { lift(); });
        if (const auto opened = device->open(); !opened)
            std::fprintf(
                stderr, "%s: %s; the phone runs without it\n", device->path(), qPrintable(opened.error().text()));
    }
    // A driver that was gone has forgotten what it was told, and may have missed the flip.
    button.onFound([this] { askSwitches(); });
    keypad.onFound([this] { setUpKeypad(); });
}

void QWSTyxButtonsHandlerData::askSwitches()
{
    QWSTyxButtonsHandler::TYXflipStatus = -1;
    short flip = -1;
    if (readSwitch(button.fd(), kReadFlip, flip) && (flip == 0 || flip == 1))
        QWSTyxButtonsHandler::TYXflipStatus = flip;
    short headset = kNoHeadset;
    if (!readSwitch(button.fd(), kReadHeadset, headset))
        headset = kNoHeadset;
    QWSTyxButtonsHandler::TYXHeadset = headset == kNoHeadset ? 0 : 1;
}

// What does not come from a driver has nothing to be set up; nobody has to know that it failed.
void QWSTyxButtonsHandlerData::setUpKeypad()
{
    qint32 zero = 0;
    quint16 period = kKeypadPeriod;
    qint32 unused = 0;
    request(keypad.fd(), kSetUpKeypad, zero);
    request(keypad.fd(), kSetKeypadPeriod, period);
    request(keypad.fd(), kReadKeypad, unused);
}

void QWSTyxButtonsHandlerData::openTestPipe()
{
    auto pipe = testpipe::open();
    if (!pipe) {
        std::fprintf(
            stderr, "%s: %s; the phone runs without test agent\n", testpipe::kPath, qPrintable(pipe.error().text()));
        return;
    }
    QObject::connect(&testPipe, &DeviceReader::activated, &q, &QWSTyxButtonsHandler::readTestKeyboardData);
    testPipe.adopt(std::move(*pipe));
}

void QWSTyxButtonsHandlerData::readFrom(DeviceReader &reader)
{
    const QWSServer *server = QWSServer::instance();
    if (server && server->pendingInput() > kManyWaiting)
        reader.readOne(kSlowPause);
    else
        reader.read();
}

void QWSTyxButtonsHandlerData::feed(quint16 record)
{
    std::vector<Action> actions;
    logic.setFlip(QWSTyxButtonsHandler::TYXflipStatus);
    logic.feed(record, *this, actions);
    perform(actions);
}

void QWSTyxButtonsHandlerData::lift()
{
    std::vector<Action> actions;
    logic.lift(actions);
    perform(actions);
}

void QWSTyxButtonsHandlerData::perform(const std::vector<Action> &actions)
{
    for (const Action &action : actions)
        perform(action);
}

void QWSTyxButtonsHandlerData::perform(const Action &action)
{
    switch (action.kind) {
    case Action::Flip:
        QWSTyxButtonsHandler::TYXflipStatus = short(action.value);
        break;
    case Action::Headset:
        QWSTyxButtonsHandler::TYXHeadset = action.value;
        break;
    case Action::UsbDevice:
        UTIL_SetUSBDeviceType(quint32(action.value));
        break;
    case Action::StoreFlip:
        UTIL_SetFlipStatus(action.value);
        break;
    case Action::StoreHeadset:
        UTIL_SetHeadsetStatus(action.value);
        break;
    case Action::Activity:
        Q_EMIT q.hardkeyEventActivated();
        break;
    case Action::Click:
        UTIL_HardKeySound::soundHardKey(action.key);
        break;
    case Action::Press:
    case Action::Repeat:
    case Action::Release:
        q.processKeyEvent(0, action.key, 0, action.kind != Action::Release, action.kind == Action::Repeat);
        break;
    default:
        tell(action);
        break;
    }
}

// What goes out on the bus.
void QWSTyxButtonsHandlerData::tell(const Action &action)
{
    if (action.kind == Action::Report) {
        QCString report(reportOf(action.key));
        UTIL_BroadcastHardkey(report, action.value);
    } else if (action.kind == Action::VoiceInterrupt) {
        QCopChannel::send(kVoice, "VR TTS Interrupt");
    } else if (action.kind == Action::VoiceFlipOpen) {
        QCopChannel::send(kVoice, "VR Flip Open");
    } else if (action.kind == Action::VoiceActivate) {
        QCopChannel::send(kLauncher, "VR Activate");
    } else if (action.kind == Action::VoiceDeactivate && QCopChannel::isRegistered(kVoice)) {
        QCopChannel::send(kLauncher, "VR DeActivate");
    }
}

QWSTyxButtonsHandler::QWSTyxButtonsHandler() : d(std::make_unique<QWSTyxButtonsHandlerData>(*this))
{
    d->openDevices();
    d->askSwitches();
    d->setUpKeypad();
    hardkeyHandler = this;
    if (d->isUnderTest)
        d->openTestPipe();
}

QWSTyxButtonsHandler::~QWSTyxButtonsHandler()
{
    if (hardkeyHandler == this)
        hardkeyHandler = nullptr;
}

void QWSTyxButtonsHandler::readKeyboardData(int fd)
{
    for (DeviceReader *device : {&d->button, &d->keypad}) {
        if (device->fd() == fd)
            QWSTyxButtonsHandlerData::readFrom(*device);
    }
}

void QWSTyxButtonsHandler::readTestKeyboardData() { QWSTyxButtonsHandlerData::readFrom(d->testPipe); }

void QWSTyxButtonsHandler::ProcessHardkey(unsigned short code)
{
    if (ProcessCEBusStatus(code))
        return;
    const short before = TYXflipStatus;
    d->feed(code);
    if (TYXflipStatus != before)
        Q_EMIT flipMoved(TYXflipStatus == 1);
}

bool QWSTyxButtonsHandler::ProcessCEBusStatus(unsigned short code)
{
    if (keypad::usbDeviceType(code & keypad::kNumberMask) == 0)
        return false;
    d->feed(code);
    return true;
}

void QWSTyxButtonsHandler::PreProcessHardkey(int key, bool pressed)
{
    std::vector<Action> actions;
    keypad::appendReports(key, pressed, actions);
    d->perform(actions);
}

bool QWSTyxButtonsHandler::getFlipStatus(short *status) const
{
    return status && readSwitch(d->button.fd(), kReadFlip, *status);
}

void QWSTyxButtonsHandler::AddKeyToList(int key) { d->logic.hold(key); }

void QWSTyxButtonsHandler::RemoveKeyFromList(int key) { d->logic.unhold(key); }

bool QWSTyxButtonsHandler::CheckKeyPressed(int key) const { return d->logic.isHeld(key); }

bool QWSTyxButtonsHandler::IsKeyListEmpty() const { return d->logic.held().empty(); }

bool QWSTyxButtonsHandler::IsKeypadKeyCode(int key) { return keypad::isKeypadKey(key); }

bool QWSTyxButtonsHandler::CheckKeyCode(int key) { return keypad::isTracked(key); }

bool QWSTyxButtonsHandler::hasHardkeyEvent() const { return d->logic.isKeyDown(); }

int QWSTyxButtonsHandler::getHardkeyEvent() const { return d->logic.lastKey(); }

void QWSTyxButtonsHandler::reloadKeySound() { UTIL_HardKeySound::getHKSoundInfo(); }

void UTIL_BroadcastHardkey(QCString &report, int pressed)
{
    QCopChannel::send("Q400_DEVICE_REPORT", report, wire::pack(pressed));
}

short UTIL_ConvertUSBDeviceType(short code) { return short(keypad::usbDeviceType(code)); }
