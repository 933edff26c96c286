// From a record at the keypad's device to the key in an application. This process is the server; run it with
// bench/run-input.
#include "platform/system/fd.h"
#include "platform/system/keyfile.h"
#include "platform/window/qwsserver.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <ZApplication>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kKeys = 2000;

long long now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<long long>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

void pause(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

double measure(QProcess &client, int keypad)
{
    QEventLoop loop;
    QObject::connect(&client, &QProcess::readyReadStandardOutput, &loop, &QEventLoop::quit);
    const quint16 records[] = {0x800D, 0x000D};
    const long long begin = now();
    if (::write(keypad, records, sizeof records) != sizeof records)
        qFatal("the keypad's device is full");
    while (!client.canReadLine())
        loop.exec();
    return static_cast<double>(client.readLine().trimmed().toLongLong() - begin) / 1e6;
}

}

int main(int argc, char **argv)
{
    std::ignore = platform::makeKeyFile("/tmp/key_testcommand");
    const ZApplication application(argc, argv, ZApplication::GuiServer);
    ZApplication::setQuitOnLastWindowClosed(false);
    QProcess client;
    client.start(QCoreApplication::applicationDirPath() + QStringLiteral("/bench_input_echo"), {});
    while (!QWSServer::instance()->activeWindow())
        pause(10);
    pause(200);
    const auto keypad = platform::Fd::open("/dev/keypad0", O_WRONLY | O_NONBLOCK);
    if (!keypad)
        qFatal("no device");
    std::vector<double> times;
    for (int i = 0; i < kKeys; ++i) {
        times.push_back(measure(client, keypad->get()));
        pause(2);
    }
    std::sort(times.begin(), times.end());
    std::printf(
        "record at the device to key in the application: median %.3f ms, 95%% under %.3f ms, 99%% under %.3f ms "
        "(%d keys)\n",
        times[kKeys / 2], times[kKeys * 95 / 100], times[kKeys * 99 / 100], kKeys);
    client.kill();
    client.waitForFinished();
    return 0;
}
