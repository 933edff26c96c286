#include "platform/window/qwsserver.h"

#include "platform/window/phonescreen.h"
#include "platform/window/windowserverbackend.h"

#include <QWidget>
#include <utility>

namespace {

QWSServer *theServer = nullptr;
QWSServer::KeyboardFilter *theFilter = nullptr;

}

QWSWindow::~QWSWindow() = default;

QWSServer::KeyboardFilter::~KeyboardFilter()
{
    if (theFilter == this)
        theFilter = nullptr;
}

QWSServer::QWSServer(std::unique_ptr<WindowServerBackend> backend, QSize screen) : m_backend(std::move(backend))
{
    theServer = this;
    m_backend->start(*this, phonescreen::kSocketName, screen);
}

QWSServer::~QWSServer()
{
    blockSignals(true); // the application object, which listens, has lost its upper classes by now
    m_backend.reset();
    theServer = nullptr;
}

QWSServer *QWSServer::instance() { return theServer; }

void QWSServer::setKeyboardFilter(KeyboardFilter *filter) { theFilter = filter; }

void QWSServer::sendKeyEvent(int unicode, int keycode, int modifiers, bool isPress, bool autoRepeat)
{
    if (!theServer)
        return;
    const KeyStroke stroke{unicode, keycode, modifiers, isPress, autoRepeat};
    theServer->m_backend->watchRepeat(stroke);
    if (theFilter && theFilter->filter(unicode, keycode, modifiers, isPress, autoRepeat))
        return;
    Q_EMIT theServer->keySent(unicode, keycode, modifiers, isPress, autoRepeat);
    theServer->m_backend->sendKey(stroke);
}

void QWSServer::setKeyRepeat(int delay, int interval)
{
    if (theServer)
        theServer->m_backend->setKeyRepeat(delay, interval);
}

void QWSServer::sendMouseEvent(const QPoint &position, Qt::MouseButtons buttons, int wheel)
{
    if (theServer)
        theServer->m_backend->sendPointer({position, buttons, wheel});
}

void QWSServer::setInputEnabled(bool on)
{
    if (!theServer)
        return;
    theServer->m_inputEnabled = on;
    theServer->m_backend->setInputEnabled(on);
}

bool QWSServer::isInputEnabled() { return theServer && theServer->m_inputEnabled; }

int QWSServer::pendingInput() const { return m_backend->pendingInput(); }

QList<QWSWindow *> QWSServer::clientWindows() const { return m_backend->windows(); }

QWSWindow *QWSServer::window(int winId) const
{
    for (QWSWindow *window : clientWindows()) {
        if (window->winId() == winId)
            return window;
    }
    return nullptr;
}

QWSWindow *QWSServer::activeWindow() const
{
    for (QWSWindow *window : clientWindows()) {
        if (window->isActive())
            return window;
    }
    return nullptr;
}

QRect QWSServer::workArea() const { return m_backend->workArea(); }

void QWSServer::setWorkArea(const QRect &area) { m_backend->setWorkArea(area); }

QWidget *QWSServer::screenWidget() const { return m_backend->screen(); }

QImage QWSServer::grabScreen() const { return m_backend->grab(); }

QString QWSServer::socketPath() const { return phonescreen::socketPath(); }
