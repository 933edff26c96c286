// An application object for an endpoint that needs Qt's event loop.
#pragma once

#include <QCoreApplication>

namespace bench {

class QtLoop {
public:
    QtLoop() : m_app(m_count, m_arguments) { }
    static void run() { QCoreApplication::exec(); }
    static void stop() { QCoreApplication::quit(); }

private:
    char m_name[6] = "bench";
    int m_count = 1;
    char *m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_app;
};

}
