// From a tap on the keyboard of the screen to the character drawn in an application, and what a question to the shared
// state of the input methods costs. This process is the application; it starts the server. Run it with
// bench/run-textinput.
#include "appbase/messaging/wire.h"
#include "platform/bus/qcopchannel.h"
#include "textinput/state/zinputmethodstate.h"

#include <QEventLoop>
#include <QLineEdit>
#include <QProcess>
#include <QTimer>
#include <ZApplication>
#include <ZMainWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

extern "C" int plainRead(const volatile short *memory); // in a library of its own

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTaps = 1000;
constexpr QPoint kLetter(84, 205); // on the keyboard, of a screen of 240 x 320

void pause(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

void pen(QPoint at, int buttons)
{
    QCopChannel::send(
        "TYX/Screen", "pointer(QCString,int,int,int)", wire::pack(QCString("TYX/Tool/bench"), at.x(), at.y(), buttons));
}

void tap(QPoint at)
{
    pen(at, 1);
    pen(at, 0);
}

// Tells when a picture with another text was drawn.
class Field : public QLineEdit {
public:
    bool isDrawn() const { return m_drawn == text(); }

    QEventLoop drawn;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLineEdit::paintEvent(event);
        if (std::exchange(m_drawn, text()) != text())
            drawn.quit();
    }

private:
    QString m_drawn;
};

void keys(Field &field)
{
    std::vector<double> times;
    for (int i = 0; i < kTaps; ++i) {
        const QString before = field.text();
        pen(kLetter, 1);
        pause(3);
        const auto begin = Clock::now(); // the pen lifts, and the key types
        pen(kLetter, 0);
        field.drawn.exec();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
        if (field.text().size() != before.size() + 1)
            qFatal("one tap typed %d characters", int(field.text().size() - before.size()));
        if (field.text().size() == 20) {
            field.clear();
            pause(3);
        }
    }
    std::ranges::sort(times);
    std::printf(
        "tap on the keyboard to the character drawn: median %.2f ms, 95%% under %.2f ms, 99%% under %.2f ms (%d)\n",
        times[kTaps / 2], times[kTaps * 95 / 100], times[kTaps * 99 / 100], kTaps);
}

template <typename Ask> double nanoseconds(Ask ask)
{
    constexpr int kRounds = 20;
    constexpr int kAsked = 1'000'000;
    double best = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        const auto begin = Clock::now();
        int sum = 0;
        for (int i = 0; i < kAsked; ++i)
            sum += ask();
        asm volatile("" : : "r"(sum));
        best = std::min(best, std::chrono::duration<double, std::nano>(Clock::now() - begin).count() / kAsked);
    }
    return best;
}

void questions(const ZInputMethodState &state)
{
    const volatile short memory = 3;
    const double floor = nanoseconds([&] { return plainRead(&memory); });
    const double count = nanoseconds([&] { return state.getInputMethodCount(); });
    const double checked = nanoseconds([&] { return state.getIndexOfCheckedInputMethod(); });
    const double filter = nanoseconds([&] { return int(state.keyboardFilterEnabled()); });
    std::printf("a read of memory with its call: %.2f ns; the number of methods %.2f (%.2f times), the chosen one %.2f "
                "(%.2f), the filter %.2f (%.2f)\n",
        floor, count, count / floor, checked, checked / floor, filter, filter / floor);
}

}

int main(int argc, char **argv)
{
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const QString folder = QString::fromLocal8Bit(argv[0]).section(u'/', 0, -2);
    server.start(folder + QStringLiteral("/tyx-guiserver"), {QStringLiteral("--platform=offscreen")});
    if (!server.waitForReadyRead(20'000))
        qFatal("no server");
    {
        const ZApplication application(argc, argv);
        ZMainWidget window;
        auto *field = new Field; // the window's
        window.setContentWidget(field);
        window.show();
        ZApplication::instance()->registerEditor(field);
        field->setFocus();
        const ZInputMethodState state;
        while (state.getInputMethodCount() < 1 || field->text().isEmpty()) { // until the keyboard is up, and types
            tap(field->mapToGlobal(field->rect().center()));
            pause(100);
            tap(kLetter);
            pause(100);
        }
        keys(*field);
        questions(state);
    }
    server.terminate();
    server.waitForFinished();
    return 0;
}
