// What the GUI server's application object keeps of its window server.
#include "appbase/application/windowsbyuse.h"

#include "appbase/application/zapplication_p.h"

#include <QWidget>

void WindowsByUse::note(int window, QWSServer::WindowEvent event)
{
    if (event != QWSServer::Active && event != QWSServer::Destroy)
        return;
    m_ids.removeOne(window);
    if (event == QWSServer::Active)
        m_ids.prepend(window);
}

void ZApplicationData::followWindowServer()
{
    const QWSServer *server = QWSServer::instance();
    connect(server, &QWSServer::windowEvent, this, &ZApplicationData::updateWindowInfo);
    connect(server, &QWSServer::cursorSelected, this, &ZApplicationData::slotCursorSelected);
}

// Menus and lists have the focus for a moment only.
void ZApplicationData::updateWindowInfo(QWSWindow *window, QWSServer::WindowEvent event)
{
    if (event != QWSServer::Active || !window->isPopup())
        windowsByUse.note(window->winId(), event);
}

// A touch panel has no pointer; a development display shows one, unless the client below it wants none.
void ZApplicationData::slotCursorSelected(QWSCursor *cursor)
{
    QWSServer::instance()->screenWidget()->setCursor(cursor ? Qt::ArrowCursor : Qt::BlankCursor);
}
