// Orders about the windows of an application: what the GUI server does with them, and what the application does.
#pragma once

#include "platform/values/qvaluelist.h"

#include <QPointer>
#include <QString>

class QWidget;

// In the GUI server; elsewhere these do nothing.
namespace windoworders {

// Carries out ZApplication::WindowOperation on the windows of the application, pop-ups excepted; what only the
// application can do it is told by message. An unknown operation or application is ignored.
void give(int operation, const QString &application);

// The window that was used last and takes the focus gets it: `byUse` are identifiers, the last used first. `except` is
// the identifier of a window that must not.
void focusLatest(const QList<int> &byUse, int except);

}

// In the application: hides, shows and closes its windows as ordered.
class WindowOrders {
public:
    // Of the windows with these identifiers, those of this process. One that the application hid itself stays hidden:
    // only what was hidden by order, and the main widget, is shown.
    void obey(int operation, const QValueList<int> &windows);

private:
    QList<QPointer<QWidget>> m_hidden;
};
