// The application of the measurement: tells when each key arrived, in nanoseconds of the monotonic clock.
#include "platform/window/qwsapplication.h"

#include <QWidget>
#include <cstdio>
#include <ctime>

namespace {

class Window : public QWidget {
protected:
    void keyPressEvent(QKeyEvent *) override
    {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        std::printf("%lld\n", static_cast<long long>(now.tv_sec) * 1'000'000'000 + now.tv_nsec);
        std::fflush(stdout);
    }
};

}

int main(int argc, char **argv)
{
    QWSApplication application(argc, argv, QWSApplication::GuiClient);
    Window window;
    window.show();
    return QWSApplication::exec();
}
