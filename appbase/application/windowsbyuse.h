// The windows of the phone in the order in which they were used, for whoever gives the focus back.
#pragma once

#include "platform/window/qwsserver.h"

#include <QList>

class WindowsByUse {
public:
    void note(int window, QWSServer::WindowEvent event);

    // Identifiers (QWSServer::window()) of all that had the focus and exist, the last one first; some may be hidden.
    [[nodiscard]] const QList<int> &ids() const { return m_ids; }

private:
    QList<int> m_ids;
};
