// Watches a descriptor from the Qt event loop, as soon and as long as there is a QCoreApplication.
//
// The bus works before the application object is made, without one, and after it is gone; a QSocketNotifier does not.
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace platform::bus {

// True between the construction and the destruction of the application object.
bool hasLoop();

class LoopWatch {
public:
    // `ready` may destroy this watch. The descriptor must outlive it.
    LoopWatch(int fd, QSocketNotifier::Type type, std::function<void()> ready);
    ~LoopWatch();
    LoopWatch(const LoopWatch &) = delete;
    LoopWatch &operator=(const LoopWatch &) = delete;

    void start(); // for the application's hooks
    void stop();

private:
    struct LaterDeleter {
        void operator()(QSocketNotifier *notifier) const;
    };

    int m_fd;
    QSocketNotifier::Type m_type;
    std::function<void()> m_ready;
    std::unique_ptr<QSocketNotifier, LaterDeleter> m_notifier;
};

}
