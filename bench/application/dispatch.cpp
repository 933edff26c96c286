// What it costs to bring a message from the bus to the application's signal, beyond reading its arguments.
#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"
#include "appbase/messaging/wire.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

constexpr int kMessages = 20'000;
constexpr int kRounds = 50;

template <typename Work> double nanoseconds(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < kMessages; ++i)
        work();
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - begin;
    return time.count() / kMessages;
}

// Both in turn; the best round of each counts, since other programs only ever add time.
template <typename Dispatch, typename Decode> void compare(const char *what, Dispatch dispatch, Decode decode)
{
    double all = 1e9;
    double decoding = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        all = std::min(all, nanoseconds(dispatch));
        decoding = std::min(decoding, nanoseconds(decode));
    }
    std::printf(
        "  %-45s %5.0f ns, of which decoding %5.0f ns, dispatch %5.0f ns\n", what, all, decoding, all - decoding);
}

}

int main(int argc, char **argv)
{
    ZApplication application(argc, argv, ZApplication::Tty);
    ZApplicationData data(application, "bench"); // no channel: messages are put in by hand
    int heard = 0;
    const auto hear = [&heard] { ++heard; };
    QObject::connect(&application, &ZApplication::signalCmdLine, hear);
    QObject::connect(&application, &ZApplication::usbStorageInOut, hear);
    QObject::connect(&application, &ZApplication::signalBridgeMessageWithoutRaise, hear);
    QObject::connect(&application, &ZApplication::systemMessage, hear);

    const QByteArray line = wire::pack(QStringLiteral("--open /tmp/letter.txt"));
    const QByteArray enabled = wire::pack(true);
    const QByteArray bridged = wire::pack(QCString("hello()"), QByteArray(64, 'd'));
    QString text;
    bool flag = false;
    QCString message;
    QByteArray bytes;
    const QCString cmdLine("cmdLine");
    const QCString usb("usbMassStorageEnabled(bool)");
    const QCString bridge("bridgeMessageWithoutRaise");
    const QCString unknown("own message");
    std::puts("A message on its way to one slot (goal: dispatch at most 1000 ns):");
    compare(
        "cmdLine", [&] { data.pidMessage(cmdLine, line); }, [&] { std::ignore = wire::unpack(line, text); });
    compare(
        "usbMassStorageEnabled(bool), the last row", [&] { data.pidMessage(usb, enabled); },
        [&] { std::ignore = wire::unpack(enabled, flag); });
    compare(
        "bridgeMessageWithoutRaise", [&] { data.slotSystemMessage(bridge, bridged); },
        [&] { std::ignore = wire::unpack(bridged, message, bytes); });
    compare(
        "one that the library does not know", [&] { data.slotSystemMessage(unknown, bridged); }, [] {});
    return heard == 4 * kMessages * kRounds ? 0 : 1;
}
