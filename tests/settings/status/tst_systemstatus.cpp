#include "settings/status/statuslayout.h"
#include "settings/status/switchprobe.h"
#include "settings/status/systemstatus.h"
#include "tests/support/columns.h"
#include "tests/support/standarderror.h"

#include <QTest>
#include <cstdio>
#include <functional>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kKeyFile[] = "/tmp/key_testcommand";
constexpr quint8 kAround = 0xA5;

using Create = void (*)();

// The bytes of the table as another process sees them.
class Bytes {
public:
    Bytes() : m_bytes(static_cast<quint8 *>(UTIL_GetTableAddress())) { }
    ~Bytes() { ::shmdt(m_bytes); }
    Q_DISABLE_COPY(Bytes)
    quint8 &operator[](std::size_t offset) { return m_bytes[offset]; }
    void fill() { std::fill_n(m_bytes, status::kTableBytes, kAround); }
    [[nodiscard]] QByteArray at(std::size_t offset, qsizetype size) const
    {
        return {reinterpret_cast<const char *>(m_bytes) + offset, size};
    }

private:
    quint8 *m_bytes;
};

// An accessor pair of a number, whatever its C++ form.
struct Pair {
    const char *name;
    status::Row row;
    std::function<quint32()> get;
    std::function<void(quint32)> set;
};

template <typename Got, typename T, typename Field>
Pair pair(const char *name, Got (*get)(), void (*set)(T), Field field)
{
    return {name, status::row("", field, ""), [=] { return get(); }, [=](quint32 v) { set(T(v)); }};
}

template <typename T, typename Field> Pair pair(const char *name, void (*get)(T *), void (*set)(T), Field field)
{
    const auto filled = [=] {
        get(nullptr);
        T value = T(1);
        get(&value);
        return quint32(value);
    };
    return {name, status::row("", field, ""), filled, [=](quint32 v) { set(T(v)); }};
}

#define PAIR(getter, setter, field) pair(#field, &getter, &setter, status::field)

const std::vector<Pair> &pairs()
{
    // clang-format off
    static const std::vector<Pair> all{
        PAIR(UTIL_GetPhoneAudioPath, UTIL_SetPhoneAudioPath, phoneAudioPath),
        PAIR(UTIL_GetEMUBus_Acc_Status, UTIL_SetEMUBus_Acc_Status, emuBusAccessory),
        PAIR(UTIL_GetPowerOnMode, UTIL_SetPowerOnMode, powerOnMode),
        PAIR(UTIL_GetPowerOnProcess, UTIL_SetPowerOnProcess, powerOnProcess),
        PAIR(UTIL_GetPhoneLockStatus, UTIL_SetPhoneLockStatus, phoneLock),
        PAIR(UTIL_GetRFMode, UTIL_SetRFMode, rfMode),
        PAIR(UTIL_GetSimCardStatus, UTIL_SetSimCardStatus, simCard),
        PAIR(UTIL_GetPinStatus, UTIL_SetPinStatus, pin),
        PAIR(UTIL_GetBatteryStatus, UTIL_SetBatteryStatus, battery),
        PAIR(UTIL_GetBatteryLevel, UTIL_SetBatteryLevel, batteryLevel),
        PAIR(UTIL_GetGprsFeatureStatus, UTIL_SetGprsFeatureStatus, gprsFeature),
        PAIR(UTIL_GetBtStatus, UTIL_SetBtStatus, bluetooth),
        PAIR(UTIL_GetBtConnCount, UTIL_SetBtConnCount, bluetoothConnections),
        PAIR(UTIL_GetRoamStatus, UTIL_SetRoamStatus, roaming),
        PAIR(UTIL_GetHomeZoneStatus, UTIL_SetHomeZoneStatus, homeZone),
        PAIR(UTIL_GetNotificationStatus, UTIL_SetNotificationStatus, notification),
        PAIR(UTIL_GetPhoneCallIconIndex, UTIL_SetPhoneCallIconIndex, phoneCallIcon),
        PAIR(UTIL_GetMMSLaunchCamera, UTIL_SetMMSLaunchCamera, mmsLaunchesCamera),
        PAIR(UTIL_GetAddrLaunchCamera, UTIL_SetAddrLaunchCamera, addressLaunchesCamera),
        PAIR(UTIL_GetIncomingCallStatus, UTIL_SetIncomingCallStatus, incomingCall),
        PAIR(UTIL_GetBTHSStatus, UTIL_SetBTHSStatus, bluetoothHeadset),
        PAIR(UTIL_GetHeadsetStatus, UTIL_SetHeadsetStatus, headset),
        PAIR(UTIL_GetPhoneAudioDeviceStatus, UTIL_SetPhoneAudioDeviceStatus, phoneAudioDevice),
        PAIR(UTIL_GetPhoneLine, UTIL_SetPhoneLine, phoneLine),
        PAIR(UTIL_GetPhoneInCall, UTIL_SetPhoneInCall, phoneInCall),
        PAIR(UTIL_GetChargeStatus, UTIL_SetChargeStatus, charging),
        PAIR(UTIL_GetGprsServiceStatus, UTIL_SetGprsServiceStatus, gprsService),
        PAIR(UTIL_GetGprsAttachStatus, UTIL_SetGprsAttachStatus, gprsAttach),
        PAIR(UTIL_GetGprsActivatedStatus, UTIL_SetGprsActivatedStatus, gprsActivated),
        PAIR(UTIL_GetFlipStatus, UTIL_SetFlipStatus, flip),
        PAIR(UTIL_GetDataConnStatus, UTIL_SetDataConnStatus, dataConnection),
        PAIR(UTIL_GetPhoneApplicationStatus, UTIL_SetPhoneApplicationStatus, phoneApplication),
        PAIR(UTIL_GetEgprsServiceStatus, UTIL_SetEgprsServiceStatus, egprsService),
        PAIR(UTIL_GetEgprsTransStatus, UTIL_SetEgprsTransStatus, egprsTransfer),
        PAIR(UTIL_GetIrdaBusyStatus, UTIL_SetIrdaBusyStatus, irdaBusy),
        PAIR(UTIL_GetAMApplicationStatus, UTIL_SetAMApplicationStatus, amApplication),
        PAIR(UTIL_GetPowerOffStatus, UTIL_SetPowerOffStatus, powerOff),
        PAIR(UTIL_GetCountryId, UTIL_SetCountryId, countryId),
        PAIR(UTIL_GetBtHandfreeStatus, UTIL_SetBtHandfreeStatus, bluetoothHandsFree),
        PAIR(UTIL_GetCphsLineLockStatus, UTIL_SetCphsLineLockStatus, cphsLineLock),
        PAIR(UTIL_GetTTYDeviceStatus, UTIL_SetTTYDeviceStatus, ttyDevice),
        PAIR(UTIL_GetUSBConnectionStatus, UTIL_SetUSBConnectionStatus, usbConnection),
        PAIR(UTIL_GetUSBChargingStatus, UTIL_SetUSBChargingStatus, usbCharging),
        PAIR(UTIL_GetUSBDeviceType, UTIL_SetUSBDeviceType, usbDeviceType),
        PAIR(UTIL_GetEarpieceSafety, UTIL_SetEarpieceSafety, earpieceSafety),
        PAIR(UTIL_GetMMCSDStatus, UTIL_SetMMCSDStatus, memoryCard),
        PAIR(UTIL_GetA2dpStatus, UTIL_SetA2dpStatus, a2dp),
        PAIR(UTIL_GetTimingPhoneLock, UTIL_SetTimingPhoneLock, timingPhoneLock),
        PAIR(UTIL_GetTransparency, UTIL_SetTransparency, transparency),
        PAIR(UTIL_GetTotalDuration, UTIL_SetTotalDuration, totalDuration),
        PAIR(UTIL_GetDataCallStaus, UTIL_SetDataCallStatus, dataCall),
        PAIR(UTIL_GetBlendingColor, UTIL_SetBlendingColor, blendingColor),
        PAIR(UTIL_GetBlendingPercentage, UTIL_SetBlendingPercentage, blendingPercentage),
        PAIR(UTIL_GetBlendingGNB, UTIL_SetBlendingGNB, blendingGnb),
        PAIR(UTIL_GetBlendingCST, UTIL_SetBlendingCST, blendingCst),
        PAIR(UTIL_GetBlendingStatusBar, UTIL_SetBlendingStatusBar, blendingStatusBar),
        PAIR(UTIL_GetBlendingScrollBar, UTIL_SetBlendingScrollBar, blendingScrollBar),
        PAIR(UTIL_GetUsbMassStorage, UTIL_SetUsbMassStorage, usbMassStorage),
    };
    // clang-format on
    return all;
}

// Runs `body` in a process of its own, which says on its standard error what it has to say.
Outcome inChild(const std::function<void()> &body)
{
    const StandardError error;
    const pid_t child = ::fork();
    if (child == 0) {
        body();
        std::fflush(nullptr);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, {}, StandardError::text()};
}

int makeSegment(char project, std::size_t size) { return ::shmget(::ftok(kKeyFile, project), size, IPC_CREAT | 0777); }

}

class TstSystemStatus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aNumberTouchesItsOwnBytesAlone();
    void someSwitchesAreTrueForOneOnly();
    void whatIsOutOfRangeIsClamped();
    void textsAreCutAndTerminated();
    void recordsTravelWhole();
    void tooLongThemeTextsBecomeEmpty();
    void dialogsWaitForMoreImportantOnes();
    void cphsServicesDependOnTheSimCard();
    void derivedQueries();
    void initialisationStoresTheInitialValues();
    void headsetAndFlipComeFromTheProbe();
    void withoutATableNothingHappens_data();
    void withoutATableNothingHappens();
    void aReaderSeesATableThatIsMadeAnew();
    void initialisingAfterAReleaseTouchesNothing();
    void theApplicationManagersLookupMakesItsTable();
    void thereMayBeNoMemoryForATable_data() { failuresOfCreationAreTold_data(); }
    void thereMayBeNoMemoryForATable();
    void failuresOfCreationAreTold_data();
    void failuresOfCreationAreTold();
    void threadsMayCallAtTheSameTime();
};

void TstSystemStatus::init()
{
    fill(QString::fromLatin1(kKeyFile), {});
    UTIL_CreateSystemStatusTable();
}

void TstSystemStatus::cleanup()
{
    UTIL_ReleaseSystemTable();
    ::unlink(kKeyFile);
}

void TstSystemStatus::aNumberTouchesItsOwnBytesAlone()
{
    for (const Pair &pair : pairs()) {
        const status::Row &row = pair.row;
        Bytes table;
        table.fill();
        QByteArray expected = table.at(0, status::kTableBytes);
        pair.set(0x84838281);
        const quint32 value = row.max == 1 ? 1 : 0x84838281 & row.max;
        for (std::size_t i = 0; i < row.size(); ++i)
            expected[qsizetype(row.offset) + qsizetype(i)] = char(value >> (8 * i));
        QVERIFY2(table.at(0, status::kTableBytes) == expected, pair.name);
        QVERIFY2(pair.get() == value, pair.name);
        pair.set(0);
        QVERIFY2(table.at(row.offset, qsizetype(row.size())) == QByteArray(qsizetype(row.size()), '\0'), pair.name);
        QVERIFY2(pair.get() == 0, pair.name);
    }
}

void TstSystemStatus::someSwitchesAreTrueForOneOnly()
{
    for (const Pair &pair : pairs()) {
        if (pair.row.kind != status::Row::Boolean)
            continue;
        Bytes()[pair.row.offset] = 2;
        const bool oneOnly = pair.row.offset == 0x021 || pair.row.offset == 0x56B || pair.row.offset == 0x57D;
        QVERIFY2(pair.get() == (oneOnly ? 0 : 1), pair.name);
    }
}

void TstSystemStatus::whatIsOutOfRangeIsClamped()
{
    const std::pair<int, quint8> rows[] = {{9, 5}, {-3, 0}, {5, 5}, {3, 3}, {256, 5}};
    for (const auto &[given, stored] : rows) {
        UTIL_SetSignalQuality(given);
        QCOMPARE(Bytes()[0x017], stored);
        QCOMPARE(UTIL_GetSignalQuality(), stored);
    }
}

void TstSystemStatus::textsAreCutAndTerminated()
{
    const struct {
        std::size_t offset;
        qsizetype limit;
        void (*get)(char *);
        void (*set)(const char *);
    } rows[] = {{0x366, 15, UTIL_GetNetworkId, UTIL_SetNetworkId},
        {0x376, 60, UTIL_GetServiceName, UTIL_SetServiceName}, {0x3B3, 60, UTIL_GetSpnName, UTIL_SetSpnName},
        {0x3F0, 21, UTIL_GetHomeZoneName, UTIL_SetHomeZoneName},
        {0x4F1, 60, UTIL_GetCphsOperatorName, UTIL_SetCphsOperatorName}};
    for (const auto &[offset, limit, get, set] : rows) {
        const auto got = [limit = limit, get = get] { // with the byte behind it, which is the caller's
            QByteArray buffer(limit + 2, '#');
            get(buffer.data());
            return buffer;
        };
        const QByteArray full(limit, 'x');
        const QByteArray clear(limit + 1, '\0');
        UTIL_CreateSystemStatusTable();
        Bytes table;
        table.fill();
        set(QByteArray(full + "and more").constData());
        const char around = char(kAround);
        QCOMPARE(table.at(offset - 1, limit + 3), around + full + '\0' + around);
        QCOMPARE(got(), full + QByteArray("\0#", 2));
        set("Nord");
        QCOMPARE(table.at(offset, limit + 1), "Nord" + clear.left(limit - 3));
        table[offset + 4] = '!';
        QCOMPARE(got(), "Nord!" + clear.left(limit - 4) + '#');
        table.fill(); // no NUL anywhere
        QCOMPARE(got(), QByteArray(limit, around) + QByteArray("\0#", 2));
        set(nullptr);
        QCOMPARE(table.at(offset, limit + 1), clear);
        get(nullptr);
        UTIL_ReleaseSystemTable();
        QCOMPARE(got(), clear + '#');
    }
}

void TstSystemStatus::recordsTravelWhole()
{
    ThemeInfo theme = {};
    std::iota(std::begin(theme.numbers), std::end(theme.numbers), 0x01020304U);
    std::memset(theme.texts[0], 's', 255);
    std::strcpy(theme.texts[2], "third");
    const SoundInfo touch{3, 0x11223344};
    Bytes table;
    table.fill();
    UTIL_SetThemeInfo(&theme);
    UTIL_SetTPSoundInfo(&touch);
    QCOMPARE(table.at(0x031, 5), QByteArray("\xA5\x04\x03\x02\x01", 5));
    QCOMPARE(table.at(0x052, 4), QByteArray("\x0C\x03\x02\x01", 4));
    QCOMPARE(table.at(0x256, 256), QByteArray("third") + QByteArray(251, '\0'));
    QCOMPARE(table.at(0x356, 9), QByteArray("\3\0\0\0\x44\x33\x22\x11\xA5", 9));
    ThemeInfo themeBack;
    SoundInfo back = {};
    UTIL_GetThemeInfo(&themeBack);
    UTIL_GetTPSoundInfo(&back);
    QVERIFY(std::memcmp(&theme, &themeBack, sizeof theme) == 0);
    QVERIFY(back.style == touch.style && back.volume == touch.volume);
    UTIL_SetHKSoundInfo(&touch);
    QCOMPARE(table.at(0x35E, 8), table.at(0x356, 8));
    UTIL_GetHKSoundInfo(&back);
    QCOMPARE(back.volume, touch.volume);

    UTIL_SetBatteryPercent(80, 4);
    quint8 second = 0;
    UTIL_GetBatteryPercent(nullptr, &second);
    QCOMPARE(table.at(0x010, 3), QByteArray("\x50\4\xA5", 3));
    QCOMPARE(second, 4);
    UTIL_SetTotalDataBytes(1, 2, 0xFFFFFFFF);
    quint32 third = 0;
    UTIL_GetTotalDataBytes(nullptr, nullptr, &third);
    QCOMPARE(table.at(0x570, 12), QByteArray("\1\0\0\0\2\0\0\0\xFF\xFF\xFF\xFF", 12));
    QCOMPARE(third, 0xFFFFFFFFU);
    SystemTableCopy copy;
    QVERIFY(UTIL_CopySystemTable(&copy));
    QVERIFY(std::memcmp(copy.bytes, table.at(0, 1456).constData(), 1456) == 0);
}

void TstSystemStatus::tooLongThemeTextsBecomeEmpty()
{
    ThemeInfo theme = {};
    theme.numbers[0] = 7;
    std::memset(theme.texts[0], 'x', 256);
    std::strcpy(theme.texts[1], "icons");
    UTIL_SetThemeInfo(&theme);
    Bytes table;
    QCOMPARE(table[0x056], 0);
    std::fill_n(&table[0x256], 256, 'x'); // another program's
    UTIL_GetThemeInfo(&theme);
    QCOMPARE(theme.numbers[0], 7U);
    QCOMPARE(theme.texts[0], "");
    QCOMPARE(theme.texts[1], "icons");
    QCOMPARE(theme.texts[2], "");
}

void TstSystemStatus::dialogsWaitForMoreImportantOnes()
{
    UTIL_InitSystemTable();
    UTIL_SetDlgPriority(1);
    QCOMPARE(Bytes().at(0x406, 7), QByteArray("\0\0\1\0\0\0\0", 7));
    for (const auto &[priority, free] : {std::pair(0, true), {1, true}, {2, false}, {4, false}, {5, true}, {-1, true}})
        QVERIFY2(UTIL_GetDlgPriority(priority) == free, qPrintable(QString::number(priority)));
    Bytes()[0x408] = 2; // only 1 counts
    QVERIFY(UTIL_GetDlgPriority(4));
    UTIL_ResetDlgPriority(1);
    const QByteArray before = Bytes().at(0, 4096);
    for (const int priority : {5, -1, INT_MIN, INT_MAX}) {
        UTIL_SetDlgPriority(priority);
        UTIL_ResetDlgPriority(priority);
    }
    QCOMPARE(Bytes().at(0, 4096), before);
    UTIL_ReleaseSystemTable();
    QVERIFY(UTIL_GetDlgPriority(4));
}

void TstSystemStatus::cphsServicesDependOnTheSimCard()
{
    struct {
        quint8 info[6];
        std::array<bool, 5> answers; // SIM, voice mail, short name, service profile, numbers
    } const rows[] = {
        {{0, 1, 1, 1, 1, 9}, {false, false, false, false, false}},
        {{1, 1, 1, 1, 1, 9}, {true, true, false, true, false}},
        {{2, 1, 1, 1, 1, 9}, {true, true, true, true, true}},
        {{2, 0, 2, 0, 0xFF, 9}, {true, false, false, false, false}},
        {{3, 1, 1, 1, 1, 9}, {false, false, false, false, false}},
    };
    for (const auto &row : rows) {
        UTIL_SetCphsInfo(row.info);
        QCOMPARE(Bytes().at(0x40C, 6), QByteArray(reinterpret_cast<const char *>(row.info), 6));
        const std::array answers{UTIL_GetCphsSimCardStatus(), UTIL_GetCphsVMStatus(), UTIL_GetCphsOpnShortformSatus(),
            UTIL_GetCphsCspStatus(), UTIL_GetCphsInfoNumsStatus()};
        QCOMPARE(answers, row.answers);
    }
    UTIL_SetCphsInfo(nullptr);
    QCOMPARE(Bytes()[0x40C], 3);
}

void TstSystemStatus::derivedQueries()
{
    struct {
        quint8 sim;
        quint8 pin;
        int radio;
        int lock;
        bool system;
        bool simPin;
    } const rows[] = {
        {3, 3, 0, 0, false, false},
        {0, 7, 0, 0, false, false},
        {1, 7, 0, 0, true, true},
        {0, 1, 0, 0, true, true},
        {3, 7, 1, 0, true, false},
        {3, 7, 0, 1, true, false},
    };
    for (const auto &row : rows) {
        UTIL_SetSimCardStatus(row.sim);
        UTIL_SetPinStatus(row.pin);
        UTIL_SetRFMode(row.radio);
        UTIL_SetPhoneLockStatus(row.lock);
        QCOMPARE(UTIL_GetPhoneSystemStatus(), row.system);
        QCOMPARE(UTIL_GetSIMPinBatteryStatus(), row.simPin);
    }
}

void TstSystemStatus::initialisationStoresTheInitialValues()
{
    Bytes table;
    table.fill();
    UTIL_InitSystemTable();
    QByteArray expected(1456, '\0');
    for (const int offset : {0x008, 0x00C, 0x00D, 0x00E, 0x57E, 0x57F, 0x580, 0x581})
        expected[offset] = '\xFF';
    for (int word = 1; word <= 7; ++word)
        expected.replace(0x032 + 4 * word, 3, "\xFF\xFF\xFF");
    expected[0x026] = expected[0x052] = expected[0x57D] = 1;
    expected[0x356] = 2;
    expected[0x35A] = 7;
    for (const int offset : {0x582, 0x586, 0x58A, 0x58E, 0x592})
        expected[offset] = 100;
    QCOMPARE(table.at(0, 1456), expected);
    QCOMPARE(table.at(1456, 4096 - 1456), QByteArray(4096 - 1456, char(kAround)));
}

void TstSystemStatus::headsetAndFlipComeFromTheProbe()
{
    struct Probe : SwitchProbe {
        int headset = 0;
        int flip = 0;
        [[nodiscard]] int headsetState() const override { return headset; }
        [[nodiscard]] int flipState() const override { return flip; }
    } probe;
    for (const auto &[headset, flip] : {std::pair(0, 0), {5, 1}, {-1, -1}}) {
        probe.headset = headset;
        probe.flip = flip;
        UTIL_InitSystemTable();
        QCOMPARE(Bytes()[0x01E], headset != 0);
        QCOMPARE(Bytes()[0x026], flip == 0);
    }
}

void TstSystemStatus::withoutATableNothingHappens_data()
{
    const auto row = columns<bool, int>("keyFile", "segment");
    row("no key file", false, 0);
    row("no segment", true, 0);
    row("a segment that is too small", true, 4095);
}

void TstSystemStatus::withoutATableNothingHappens()
{
    QFETCH(bool, keyFile);
    QFETCH(int, segment);
    UTIL_ReleaseSystemTable();
    const int id = segment > 0 ? makeSegment('m', size_t(segment)) : -1;
    if (!keyFile)
        ::unlink(kKeyFile);
    QVERIFY(!UTIL_GetTableAddress());
    ThemeInfo theme;
    theme.numbers[3] = 1;
    UTIL_SetThemeInfo(&theme);
    UTIL_GetThemeInfo(&theme);
    QCOMPARE(theme.numbers[3], 0U);
    SystemTableCopy copy;
    QVERIFY(!UTIL_CopySystemTable(&copy));
    QCOMPARE(status::valueOf(copy, status::pin), 0xFF);
    QCOMPARE(status::valueOf(copy, status::battery), 0);
    QVERIFY(UTIL_GetPhoneSystemStatus());
    for (const Pair &pair : pairs()) {
        pair.set(1);
        QCOMPARE(pair.get(), pair.row.absent);
    }
    if (id >= 0)
        ::shmctl(id, IPC_RMID, nullptr);
}

void TstSystemStatus::aReaderSeesATableThatIsMadeAnew()
{
    UTIL_SetCountryId(49);
    const Outcome other = inChild([] { std::fprintf(stderr, "%u", UTIL_GetCountryId()); });
    QCOMPARE(other.err, "49");
    UTIL_ReleaseSystemTable();
    QCOMPARE(UTIL_GetCountryId(), 0U);
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    QCOMPARE(UTIL_GetBatteryStatus(), 0xFF);
    UTIL_SetCountryId(43);
    UTIL_CreateSystemStatusTable(); // opens what is there
    QCOMPARE(UTIL_GetCountryId(), 43U);
}

void TstSystemStatus::initialisingAfterAReleaseTouchesNothing()
{
    UTIL_ReleaseSystemTable();
    UTIL_ReleaseSystemTable();
    UTIL_InitSystemTable(); // would crash
    QCOMPARE(makeSegment('m', 4096) >= 0, true);
    UTIL_InitSystemTable();
    QCOMPARE(Bytes().at(0, 4096), QByteArray(4096, '\0'));
    UTIL_CreateSystemStatusTable();
    UTIL_InitSystemTable();
    QCOMPARE(Bytes()[0x008], 0xFF);
}

void TstSystemStatus::theApplicationManagersLookupMakesItsTable()
{
    const auto id = [] { return ::shmget(::ftok(kKeyFile, 'n'), 0, 0); };
    QCOMPARE(id(), -1);
    // Of mode 0232 it is: its owner may write, but not read, and without privileges cannot attach it.
    QVERIFY(!UTIL_GetApplicationManagerTableAddress());
    QVERIFY(id() >= 0);
    QCOMPARE(::shmget(::ftok(kKeyFile, 'n'), 0, 0200), id());
    QCOMPARE(::shmget(::ftok(kKeyFile, 'n'), 0, 0400), -1);
    ::shmctl(id(), IPC_RMID, nullptr);
    UTIL_CreateApplicationManagerStatusTable();
    auto *address = static_cast<quint8 *>(UTIL_GetApplicationManagerTableAddress());
    QVERIFY(address);
    address[4095] = 1;
    UTIL_CreateApplicationManagerStatusTable();
    QCOMPARE(address[4095], 0);
    ::shmdt(address);
    UTIL_ReleaseApplicationManagerStatusTable();
    QCOMPARE(id(), -1);
}

void TstSystemStatus::failuresOfCreationAreTold_data()
{
    const auto row = columns<Create, char, QByteArray>("create", "project", "fatal");
    row("system", Create(UTIL_CreateSystemStatusTable), 'm', "System table in error...");
    row("application manager", Create(UTIL_CreateApplicationManagerStatusTable), 'n',
        "Application Manager table in error...");
}

void TstSystemStatus::thereMayBeNoMemoryForATable()
{
#ifdef TYX_EMULATED
    QSKIP("the emulator sets no limit to a program's memory");
#endif
    QFETCH(Create, create);
    QFETCH(char, project);
    UTIL_ReleaseSystemTable();

    const Outcome noMemory = inChild([&] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_AS, &none);
        create();
        UTIL_InitSystemTable(); // would crash
    });
    QCOMPARE(noMemory.status, 0);
    QVERIFY2(noMemory.err.startsWith("Cannot attach to main ram shared memory\n: "), noMemory.err.constData());
    ::shmctl(::shmget(::ftok(kKeyFile, project), 0, 0), IPC_RMID, nullptr);
}

void TstSystemStatus::failuresOfCreationAreTold()
{
    QFETCH(Create, create);
    QFETCH(char, project);
    QFETCH(QByteArray, fatal);
    UTIL_ReleaseSystemTable();

    const int small = makeSegment(project, 100);
    const Outcome wrongSize = inChild(create);
    ::shmctl(small, IPC_RMID, nullptr);
    QCOMPARE(wrongSize.status, 255);
    QCOMPARE(wrongSize.err, "System table allocates main ram shared memory\n: Invalid argument\n");

    ::unlink(kKeyFile);
    const auto withoutHandler = [&] {
        qInstallMessageHandler(nullptr);
        create();
    };
    const Outcome noKey = inChild(withoutHandler);
    QCOMPARE(noKey.status, 1);
    QCOMPARE(noKey.err, fatal + '\n');

    // A handler that returns: the table is made under the key -1.
    const Outcome handled = inChild([&] {
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            std::fprintf(stderr, "%s/%s", type == QtFatalMsg ? "fatal" : "", qPrintable(text));
        });
        create();
        ::shmctl(::shmget(-1, 4096, 0777), IPC_RMID, nullptr);
    });
    QCOMPARE(handled.status, 0);
    QCOMPARE(handled.err, "fatal/" + fatal);
}

void TstSystemStatus::threadsMayCallAtTheSameTime()
{
    constexpr quint32 kTimes = 2000;
    std::vector<std::thread> threads;
    for (void (*set)(quint32) : {UTIL_SetCountryId, UTIL_SetTotalDuration, UTIL_SetA2dpStatus}) {
        threads.emplace_back([set] {
            for (quint32 i = 1; i <= kTimes; ++i)
                set(i);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    quint32 duration = 0;
    UTIL_GetTotalDuration(&duration);
    QCOMPARE(UTIL_GetCountryId(), kTimes);
    QCOMPARE(duration, kTimes);
    QCOMPARE(UTIL_GetA2dpStatus(), kTimes);
}

QTEST_APPLESS_MAIN(TstSystemStatus)
#include "tst_systemstatus.moc"
