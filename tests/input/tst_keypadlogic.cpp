#include "input/logic/keymap.h"
#include "input/logic/keypadlogic.h"

#include <QSet>
#include <QTest>

using keypad::Action;

namespace {

struct TestPhone : keypad::Phone {
    QByteArrayList words;

    bool isSuspended() const override { return words.contains("suspended"); }
    bool isInCall() const override { return words.contains("call"); }
    bool hasWindowServer() const override { return !words.contains("noserver"); }
    bool takesHeadsetAnswer() const override { return !words.contains("noanswer"); }
};

constexpr const char *kNames[] = {"flip", "headset", "usb", "interrupt", "flipopen", "activate", "deactivate", ".",
    "storeflip", "storeheadset", "report", "click", "press", "repeat", "release"};

QByteArray text(const std::vector<Action> &actions)
{
    QByteArrayList words;
    for (const Action &action : actions) {
        QByteArray word = kNames[action.kind];
        if (action.kind >= Action::Report && action.key > Qt::Key_F1 - 1)
            word += "-F" + QByteArray::number(action.key - Qt::Key_F1 + 1);
        else if (action.kind >= Action::Report)
            word += "-" + (action.key == Qt::Key_Left ? QByteArray("Left") : QByteArray::number(action.key, 16));
        if (action.kind <= Action::UsbDevice || (action.kind >= Action::StoreFlip && action.kind <= Action::Report))
            word += '=' + QByteArray::number(action.value);
        words.append(word);
    }
    return words.join(' ');
}

// Words change what the phone is ("closed", "open", "call", "-call"); "+NAME" presses a key, "-NAME" lets it go, names
// or numbers of keys; "|" forgets what was done so far.
QByteArray play(const QByteArray &script)
{
    TestPhone phone;
    keypad::KeypadLogic logic;
    std::vector<Action> actions;
    for (const QByteArray &word : script.split(' ')) {
        const QByteArray name = word.mid(1);
        const auto *key = keypad::rawKeyNamed({name.constData(), std::size_t(name.size())});
        bool isNumber = false;
        const quint16 number = key ? key->number : name.toUShort(&isNumber, 16);
        if (word == "|")
            actions.clear();
        else if (word == "closed" || word == "open")
            logic.setFlip(word == "open");
        else if (word == "lift")
            logic.lift(actions);
        else if (word.startsWith('-') && phone.words.contains(name))
            phone.words.removeAll(name);
        else if (key || (isNumber && (word[0] == '+' || word[0] == '-')))
            logic.feed(quint16(number | (word[0] == '+' ? keypad::kPressed : 0)), phone, actions);
        else
            phone.words.append(word);
    }
    return text(actions);
}

}

class TstKeypadLogic : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theKeysAreThese();
    void records();
    void anyRecordInAnyStateIsHandled();
};

void TstKeypadLogic::theKeysAreThese()
{
    using namespace keypad;
    // Number, key, and whether it is tracked, of the keypad.
    const QList<std::array<int, 4>> keys = {{0x0B, Qt::Key_Up, 1, 1}, {0x0C, Qt::Key_Down, 1, 1},
        {0x0D, Qt::Key_Left, 1, 1}, {0x0E, Qt::Key_Right, 1, 1}, {0x1D, Qt::Key_Enter, 1, 1}, {0x1E, Qt::Key_F6, 1, 1},
        {0x1F, Qt::Key_F9, 1, 1}, {0x20, Qt::Key_F10, 1, 1}, {0x21, Qt::Key_F11, 1, 1}, {0x22, Qt::Key_F12, 1, 1},
        {0x25, Qt::Key_F7, 1, 1}, {0x80, Qt::Key_F3, 1, 0}, {0x81, Qt::Key_F5, 1, 0}, {0x82, Qt::Key_F1, 1, 0},
        {0x0F, Qt::Key_1, 0, 1}, {0x17, Qt::Key_9, 0, 1}, {0x18, Qt::Key_Asterisk, 0, 1}, {0x19, Qt::Key_0, 0, 1},
        {0x1A, Qt::Key_NumberSign, 0, 1}, {0x1B, Qt::Key_Backspace, 0, 1}, {0x23, Qt::Key_F2, 1, 0}};
    for (const auto &[number, key, tracked, ofKeypad] : keys) {
        QVERIFY(rawKey(quint16(number)));
        QCOMPARE(rawKey(quint16(number))->key, key);
        QCOMPARE(isTracked(key), tracked == 1);
        QCOMPARE(isKeypadKey(key), ofKeypad == 1);
    }
    QVERIFY(!isTracked(Qt::Key_F8) && !isKeypadKey(Qt::Key_F8));
    QList<int> types;
    for (int number = 0xA3; number <= 0xAC; ++number)
        types.append(usbDeviceType(number));
    QCOMPARE(types, (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 0}));
}

void TstKeypadLogic::records()
{
    QCOMPARE(play("+left -left"), ". press-Left . release-Left"); // an unknown flip: no click
    QCOMPARE(play("closed +left -left"), ". click-Left press-Left . release-Left");
    QCOMPARE(play("open +left -left +1 -1"), ". . . ."); // dead
    QCOMPARE(play("+700d"), ". press-Left"); // bits 12 to 14 are nothing
    QCOMPARE(play("+left +left -left +left"), ". press-Left . repeat-Left . release-Left . press-Left");
    QCOMPARE(play("+1 +1 -1"), ". press-31 . press-31 . release-31"); // digits are not held
    QCOMPARE(play("-left"), ". release-Left");
    QCOMPARE(play("+24 -24 +7f +fff -1c"), ""); // no such key
    // The side key, short and long.
    QCOMPARE(play("+side -side"), ". press-F2 . release-F2");
    QCOMPARE(play("+side +side +side -side +side -side"),
        ". press-F2 . repeat-F2 . press-F8 . release-F8 . press-F2 . release-F2");
    QCOMPARE(play("+side +side +side +side +side | -side"), ". release-F8");
    QCOMPARE(play("+side +left +side"), ". press-F2 . press-Left . repeat-F2");
    QCOMPARE(play("call +side +side +side +side -side"), ". press-F2 . repeat-F2 . repeat-F2 . repeat-F2 . release-F2");
    QCOMPARE(play("+side +side call +side -call +side -side"),
        ". press-F2 . repeat-F2 . press-F8 . press-F8 . release-F8"); // a call ends counting
    QCOMPARE(play("open +side +side +side -side"), ". press-F2 . repeat-F2 . activate . deactivate");
    QCOMPARE(play("open +flip"), "flip=0 interrupt . storeflip=1 report-F3=1 press-F3");
    QCOMPARE(play("closed -flip"), "flip=1 flipopen . storeflip=0 report-F3=0 release-F3");
    QCOMPARE(play("closed +left +1 +headset | -flip -left -1 +flip +left"), // it opens under keys
        "flip=1 flipopen . storeflip=0 report-F3=0 release-Left release-31 release-F3 . . "
        "flip=0 interrupt . storeflip=1 report-F3=1 press-F3 . click-Left press-Left");
    QCOMPARE(play("+headset -headset"),
        "headset=1 . storeheadset=1 report-F1=1 press-F1 headset=0 . storeheadset=0 report-F1=0 release-F1");
    QCOMPARE(play("open +headset-answer -headset-answer"), ". report-F5=1 press-F5 . report-F5=0 release-F5");
    QCOMPARE(play("noanswer +headset-answer +headset-answer"), ". report-F5=1 . report-F5=1");
    QCOMPARE(play("closed +end"), ". report-F7=1 click-F7 press-F7");
    QCOMPARE(play("open +end"), ". report-F7=1");
    QCOMPARE(play("noserver +headset +end"), "headset=1 . press-F1 . press-F7");
    QCOMPARE(play("closed suspended +left -left +side +end -flip +headset"),
        "flip=1 flipopen storeflip=0 headset=1 storeheadset=1");
    QCOMPARE(play("+left suspended -left -suspended +left"), ". press-Left . press-Left");
    QCOMPARE(play("+a4 -a5 +ab -a4 -ab"), "usb=1 usb=8 usb=0"); // accessories
    QCOMPARE(play("+left +1 +flip | lift +left"), "release-Left release-31 . click-Left press-Left");
}

void TstKeypadLogic::anyRecordInAnyStateIsHandled()
{
    TestPhone phone;
    keypad::KeypadLogic logic;
    std::vector<Action> actions;
    QSet<int> down;
    for (quint32 i = 0; i < 200'000; ++i) {
        phone.words = i % 1000 < 10 ? QByteArrayList{"suspended"} : QByteArrayList{};
        logic.feed(quint16(i * 40503U >> 3), phone, actions);
        for (const Action &action : std::exchange(actions, {})) {
            if (action.kind == Action::Repeat)
                QVERIFY(down.contains(action.key)); // or an application sees repeats of nothing
            if (action.kind == Action::Press)
                down.insert(action.key);
            if (action.kind == Action::Release)
                down.remove(action.key);
        }
    }
    QVERIFY(logic.held().size() <= 15);
}

QTEST_GUILESS_MAIN(TstKeypadLogic)
#include "tst_keypadlogic.moc"
