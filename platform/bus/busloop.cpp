#include "platform/bus/busloop.h"

#include <QCoreApplication>
#include <QList>

namespace platform::bus {

namespace {

bool loopThere = false;

// Never destroyed: watches of other static objects may outlive everything.
QList<LoopWatch *> &watches()
{
    static auto *list = new QList<LoopWatch *>;
    return *list;
}

void loopEnds()
{
    loopThere = false;
    for (LoopWatch *watch : std::as_const(watches()))
        watch->stop();
}

void loopBegins()
{
    loopThere = true;
    qAddPostRoutine(loopEnds);
    for (LoopWatch *watch : std::as_const(watches()))
        watch->start();
}

// Qt calls it now if there is an application, and whenever one is made.
void followApplication()
{
    static const bool followed = (qAddPreRoutine(loopBegins), true);
    Q_UNUSED(followed)
}

}

bool hasLoop()
{
    followApplication();
    return loopThere;
}

LoopWatch::LoopWatch(int fd, QSocketNotifier::Type type, std::function<void()> ready)
    : m_fd(fd), m_type(type), m_ready(std::move(ready))
{
    watches().append(this);
    if (hasLoop())
        start();
}

LoopWatch::~LoopWatch() { watches().removeOne(this); }

void LoopWatch::start()
{
    if (m_notifier)
        return;
    m_notifier.reset(new QSocketNotifier(m_fd, m_type));
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), m_ready);
}

void LoopWatch::stop() { m_notifier.reset(); }

// It may be the notifier whose signal is being delivered.
void LoopWatch::LaterDeleter::operator()(QSocketNotifier *notifier) const
{
    notifier->setEnabled(false);
    notifier->deleteLater();
}

}
