// What the window server costs: from a key to the picture that it changes, a client's start, and memory.
#include "platform/window/qwsapplication.h"
#include "platform/window/qwsserver.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kKeys = 500;
constexpr int kStarts = 20;
constexpr int kPause = 25; // milliseconds between keys: a client draws again after its frame, every 16

// Runs the event loop until the next time that the screen was composed because a client drew.
class ScreenWatch : public QObject {
public:
    ScreenWatch() { QWSServer::instance()->screenWidget()->installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        // Behind the handling of this event, which paints all that is damaged and puts it on the screen.
        if (event->type() == QEvent::UpdateRequest)
            QMetaObject::invokeMethod(&m_loop, &QEventLoop::quit, Qt::QueuedConnection);
        return false;
    }
    void wait() { m_loop.exec(); }

private:
    QEventLoop m_loop;
};

void pause(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitForEvent(QWSServer::WindowEvent wanted)
{
    QEventLoop loop;
    QTimer::singleShot(10'000, &loop, [] { qFatal("the client does not answer"); });
    QObject::connect(
        QWSServer::instance(), &QWSServer::windowEvent, &loop, [&](QWSWindow *, QWSServer::WindowEvent event) {
            if (event == wanted)
                loop.quit();
        });
    loop.exec();
}

void startPainter(QProcess &client)
{
    client.start(QCoreApplication::applicationDirPath() + QStringLiteral("/bench_window_painter"), {});
    waitForEvent(QWSServer::Show);
}

void stopPainter(QProcess &client)
{
    client.kill();
    if (!QWSServer::instance()->clientWindows().isEmpty())
        waitForEvent(QWSServer::Destroy);
    client.waitForFinished();
}

void print(const char *what, std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::printf("%-34s median %7.2f ms   95%% under %7.2f ms   (%zu samples)\n", what, values[values.size() / 2],
        values[values.size() * 95 / 100], values.size());
}

double milliseconds(const QElapsedTimer &timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

std::vector<double> measureStarts()
{
    std::vector<double> times;
    for (int i = 0; i < kStarts; ++i) {
        QProcess client;
        QElapsedTimer timer;
        timer.start();
        startPainter(client);
        times.push_back(milliseconds(timer));
        stopPainter(client);
    }
    return times;
}

std::vector<double> measureKeys()
{
    ScreenWatch screen;
    std::vector<double> times;
    for (int i = 0; i < kKeys; ++i) {
        pause(kPause);
        QElapsedTimer timer;
        timer.start();
        QWSServer::sendKeyEvent(0, Qt::Key_F6, 0, true, false);
        screen.wait();
        times.push_back(milliseconds(timer));
    }
    return times;
}

// The share of a process in the memory of the machine, in MiB.
double pss(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Pss:"))
            return line.mid(4).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}

int main(int argc, char **argv)
{
    QWSApplication application(argc, argv, QWSApplication::GuiServer);
    QWSApplication::setQuitOnLastWindowClosed(false);
    print("client start to its first picture", measureStarts());
    QProcess client;
    startPainter(client);
    print("key to composed picture", measureKeys());
    const double before = processorTime();
    pause(2000);
    std::printf("%-34s %.2f ms of processor time in 2 s\n", "idle server", processorTime() - before);
    std::printf("%-34s server %.1f MiB, client %.1f MiB (PSS)\n", "memory", pss(QCoreApplication::applicationPid()),
        pss(client.processId()));
    stopPainter(client);
    return 0;
}
