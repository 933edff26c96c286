#include "platform/window/qwsapplication.h"

#include "platform/bus/busbroker.h"
#include "platform/bus/busflush.h"
#include "platform/bus/businspector.h"
#include "platform/system/fatal.h"
#include "platform/window/qwsdecoration.h"
#include "platform/window/qwsserver.h"
#include "platform/window/startup.h"
#include "platform/window/windowframe.h"
#include "platform/window/windowregistry.h"
#include "platform/window/windowserverbackend.h"
#include "platform/window/windowserverloader.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <grp.h>
#include <optional>

class QWSApplicationData {
public:
    explicit QWSApplicationData(QWSApplication::Type applicationType) : type(applicationType) { }

    QWSApplication::Type type;
    std::optional<int> result; // of exec()
    QPointer<QWidget> mainWidget;
    std::unique_ptr<QWSDecoration> decoration = std::make_unique<QWSDecoration>();
    std::unique_ptr<platform::BusBroker> broker; // only in the GUI server, like the next
    std::unique_ptr<QWSServer> server;
    std::unique_ptr<WindowRegistry> windows; // only in a client on the phone's screen
};

namespace {

QWSApplicationData *theData = nullptr;

bool isPress(const QEvent &event) { return event.type() == QEvent::KeyPress; }

bool filterKey(QWSApplication &application, int window, const QKeyEvent &key)
{
    QWSKeyEvent event(window);
    event.keycode = key.key();
    event.modifiers = key.modifiers();
    event.text = key.text();
    event.isPress = isPress(key);
    event.isAutoRepeat = key.isAutoRepeat();
    return application.qwsEventFilter(&event);
}

bool filterMouse(QWSApplication &application, int window, const QMouseEvent &mouse)
{
    QWSMouseEvent event(window);
    event.position = mouse.globalPosition().toPoint();
    event.state = mouse.buttons();
    return application.qwsEventFilter(&event);
}

bool filterFocus(QWSApplication &application, int window, bool gained)
{
    QWSFocusEvent event(window, gained);
    return application.qwsEventFilter(&event);
}

bool filterEvent(QWSApplication &application, int window, const QEvent &event)
{
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return filterKey(application, window, static_cast<const QKeyEvent &>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return filterMouse(application, window, static_cast<const QMouseEvent &>(event));
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        return filterFocus(application, window, event.type() == QEvent::FocusIn);
    default:
        return false;
    }
}

bool concernsFrame(const QObject &receiver, const QEvent &event)
{
    switch (event.type()) {
    case QEvent::Polish:
    case QEvent::WindowTitleChange:
    case QEvent::FontChange:
    case QEvent::Paint:
        return receiver.isWidgetType() && static_cast<const QWidget &>(receiver).isWindow();
    default:
        return false;
    }
}

}

QWSApplication::QWSApplication(int &argc, char **argv, Type applicationType)
    : QApplication(startup::prepare(argc, argv, applicationType), argv)
    , d(std::make_unique<QWSApplicationData>(applicationType))
{
    theData = d.get();
    startup::settle();
    if (applicationType == GuiServer) {
        startServer();
    } else if (platformName() == QLatin1String("wayland")) {
        d->windows = std::make_unique<WindowRegistry>();
    }
}

void QWSApplication::startServer()
{
    const ServerOptions &options = startup::serverOptions();
    if (!options.group.isEmpty() && getgrnam(options.group.constData()) == nullptr)
        platform::giveUp(QStringLiteral("cannot serve the message bus: there is no group \"%1\"")
                             .arg(QString::fromLocal8Bit(options.group)),
            1);
    // The bus comes first: a client that finds the screen finds the bus too.
    auto broker = platform::BusBroker::listen({.socketPath = {}, .group = options.group});
    if (!broker)
        platform::giveUp(QStringLiteral("cannot serve the message bus at %1: %2")
                             .arg(QString::fromLocal8Bit(platform::BusInspector::socketPath()), broker.error().text()),
            1);
    d->broker = std::move(*broker);
    auto backend = loadWindowServer();
    if (!backend)
        platform::giveUp(backend.error(), 1);
    d->server.reset(new QWSServer(std::move(*backend), options.size)); // its constructor is private
    startup::serverStarted();
}

QWSApplication::~QWSApplication()
{
    const bool onPhone = d->windows != nullptr;
    const std::optional<int> result = d->result;
    d.reset();
    theData = nullptr;
    if (!onPhone || !result)
        return;
    platform::busFlush();
    platform::leave(*result);
}

QWSApplication::Type QWSApplication::type() { return theData ? theData->type : Tty; }

int QWSApplication::exec()
{
    const int result = QApplication::exec();
    if (theData)
        theData->result = result;
    return result;
}

QWidget *QWSApplication::mainWidget() const { return d->mainWidget; }

void QWSApplication::setMainWidget(QWidget *widget) { d->mainWidget = widget; }

bool QWSApplication::qwsEventFilter(QWSEvent *) { return false; }

void QWSApplication::qwsSetDecoration(QWSDecoration *decoration)
{
    std::unique_ptr<QWSDecoration> owned(decoration ? decoration : new QWSDecoration);
    if (theData)
        theData->decoration = std::move(owned);
}

QWSDecoration &QWSApplication::qwsDecoration()
{
    static QWSDecoration frameless;
    return theData ? *theData->decoration : frameless;
}

int QWSApplication::windowId(const QWidget *widget)
{
    return theData && theData->windows ? theData->windows->idOf(widget) : 0;
}

bool QWSApplication::notify(QObject *receiver, QEvent *event)
{
    // What comes from the screen reaches a QWindow first, and only then the widget inside it.
    if (event->spontaneous() && receiver->isWindowType() && theData) {
        const int window = theData->windows ? theData->windows->idOf(static_cast<QWindow *>(receiver)) : 0;
        if (filterEvent(*this, window, *event))
            return true;
    }
    const bool closesMain = event->type() == QEvent::Close && theData && receiver == theData->mainWidget;
    // A client that was started with a platform of its own has the frames of that one.
    const bool framed = theData && (theData->windows || theData->type != GuiClient) && concernsFrame(*receiver, *event);
    const QPointer<QWidget> window = framed ? static_cast<QWidget *>(receiver) : nullptr;
    const bool handled = QApplication::notify(receiver, event);
    if (window) // the event may have destroyed it
        windowframe::followEvent(qwsDecoration(), *window, *event);
    if (closesMain && event->isAccepted())
        quit();
    return handled;
}
