// What ZApplication costs beside a bare QApplication, and what examples/hello costs beside the same window put together
// from the toolkit's parts. This process is the server of them all; run it with bench/run-application.
#include "platform/window/qwsapplication.h"
#include "platform/window/qwsserver.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <vector>

namespace {

constexpr int kRounds = 40; // each starts every program once, so that whatever else the machine does meets them all

struct Program {
    const char *name;
    QString path;
    bool isTold; // where the screen is and that it has no graphics hardware, as ZApplication finds out by itself
};

struct Sample {
    double milliseconds = 0; // of the program's own clock, or from exec to the first picture
    double sinceExec = 0;
    double rss = 0; // MiB
    double pss = 0;
    double own = 0; // memory that no other process shares
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

double median(const std::vector<Sample> &samples, double Sample::*field)
{
    std::vector<double> values;
    for (const Sample &sample : samples)
        values.push_back(sample.*field);
    return median(values);
}

QString besideUs(const char *name) { return QCoreApplication::applicationDirPath() + u'/' + QString::fromLatin1(name); }

void runUntil(const std::function<void(QEventLoop &)> &prepare)
{
    QEventLoop loop;
    QTimer::singleShot(10'000, &loop, [] { qFatal("a program of the measurement does not answer"); });
    prepare(loop);
    loop.exec();
}

void waitForEvent(QWSServer::WindowEvent wanted)
{
    runUntil([=](QEventLoop &loop) {
        QObject::connect(QWSServer::instance(), &QWSServer::windowEvent, &loop,
            [&loop, wanted](QWSWindow *, QWSServer::WindowEvent event) {
                if (event == wanted)
                    loop.quit();
            });
    });
}

void readMemory(qint64 pid, Sample &sample)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no memory of process %lld", static_cast<long long>(pid));
    std::map<QByteArray, double> mib;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() == 3)
            mib[words[0]] = words[1].toDouble() / 1024;
    }
    sample.rss = mib["Rss:"];
    sample.pss = mib["Pss:"];
    sample.own = mib["Private_Clean:"] + mib["Private_Dirty:"];
}

void prepare(QProcess &client, const Program &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("tyx-screen-0"));
    if (program.isTold) {
        environment.insert(QStringLiteral("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"), QStringLiteral("none"));
        environment.insert(QStringLiteral("QT_WAYLAND_DISABLE_FIXED_POSITIONS"), QStringLiteral("1"));
    } else {
        environment.remove(QStringLiteral("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"));
        environment.remove(QStringLiteral("QT_WAYLAND_DISABLE_FIXED_POSITIONS"));
    }
    client.setProcessEnvironment(environment);
    client.setProgram(program.path);
    client.setStandardErrorFile(QProcess::nullDevice());
}

// The server goes on meanwhile: clients ask it for its screen and its shell.
void end(QProcess &client, void (QProcess::*how)())
{
    runUntil([&](QEventLoop &loop) {
        QObject::connect(&client, &QProcess::finished, &loop, &QEventLoop::quit);
        (client.*how)();
    });
}

Sample construct(const Program &program)
{
    Sample sample;
    QProcess client;
    prepare(client, program);
    QElapsedTimer timer;
    timer.start();
    runUntil([&](QEventLoop &loop) {
        QObject::connect(&client, &QProcess::readyReadStandardOutput, &loop, &QEventLoop::quit);
        client.start();
    });
    sample.sinceExec = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    sample.milliseconds = client.readLine().trimmed().toDouble() / 1e6;
    readMemory(client.processId(), sample);
    end(client, &QProcess::closeWriteChannel);
    return sample;
}

Sample showFirstPicture(const Program &program)
{
    Sample sample;
    QProcess client;
    prepare(client, program);
    QElapsedTimer timer;
    timer.start();
    client.start();
    waitForEvent(QWSServer::Show);
    sample.milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    sample.sinceExec = sample.milliseconds;
    readMemory(client.processId(), sample);
    client.kill();
    waitForEvent(QWSServer::Destroy);
    client.waitForFinished();
    return sample;
}

std::vector<std::vector<Sample>> measure(const std::vector<Program> &programs, Sample (*once)(const Program &))
{
    std::vector<std::vector<Sample>> samples(programs.size());
    for (const Program &program : programs)
        once(program); // from the disk into the cache
    for (int round = 0; round < kRounds; ++round) {
        for (size_t i = 0; i < programs.size(); ++i) {
            const size_t turn = round % 2 == 0 ? i : programs.size() - 1 - i;
            samples[turn].push_back(once(programs[turn]));
        }
    }
    return samples;
}

// Of each pair of starts: what the first takes more than the second.
double pairedDifference(const std::vector<Sample> &a, const std::vector<Sample> &b, double Sample::*field)
{
    std::vector<double> differences;
    for (size_t i = 0; i < a.size(); ++i)
        differences.push_back(a[i].*field - b[i].*field);
    return median(differences);
}

void print(const std::vector<Program> &programs, const std::vector<std::vector<Sample>> &samples, const char *what)
{
    std::printf(
        "  %-34s %22s %8s %12s %9s %9s %9s\n", "", what, "x ours", "since exec", "RSS MiB", "PSS MiB", "own MiB");
    const double ours = median(samples[0], &Sample::milliseconds);
    for (size_t i = 0; i < programs.size(); ++i) {
        const double time = median(samples[i], &Sample::milliseconds);
        std::printf("  %-34s %19.2f ms %8.2f %9.1f ms %9.2f %9.2f %9.2f\n", programs[i].name, time, time / ours,
            median(samples[i], &Sample::sinceExec), median(samples[i], &Sample::rss), median(samples[i], &Sample::pss),
            median(samples[i], &Sample::own));
    }
    std::printf("  %s minus %s, the median of %d pairs: %+.2f ms, %+.2f ms since exec, RSS %+.2f MiB, PSS %+.2f MiB, "
                "own %+.2f MiB\n\n",
        programs[0].name, programs[1].name, kRounds, pairedDifference(samples[0], samples[1], &Sample::milliseconds),
        pairedDifference(samples[0], samples[1], &Sample::sinceExec),
        pairedDifference(samples[0], samples[1], &Sample::rss), pairedDifference(samples[0], samples[1], &Sample::pss),
        pairedDifference(samples[0], samples[1], &Sample::own));
    std::fflush(stdout);
}

}

int main(int argc, char **argv)
{
    const QWSApplication application(argc, argv, QWSApplication::GuiServer);
    QWSApplication::setQuitOnLastWindowClosed(false);

    std::puts("The application object is constructed (goal: at most 5 ms and 1 MiB more):");
    const std::vector<Program> objects = {
        {"ZApplication", besideUs("bench_construct_tyx"), false},
        {"QApplication", besideUs("bench_construct_plain"), true},
    };
    print(objects, measure(objects, construct), "constructor");

    std::puts("From exec to the first picture (goal: hello under 60 ms):");
    const std::vector<Program> hellos = {
        {"hello", besideUs("hello"), false},
        {"QApplication", besideUs("bench_hello_plain"), true},
        {"QApplication, nothing told", besideUs("bench_hello_plain"), false},
        {"with D-Bus, settings, translator", besideUs("bench_hello_usual"), true},
        {"the same, nothing told", besideUs("bench_hello_usual"), false},
    };
    print(hellos, measure(hellos, showFirstPicture), "first picture");
    return 0;
}
