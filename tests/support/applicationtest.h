// A test program whose process is an application without a screen, on a bus of its own.
#pragma once

#include "appbase/application/zapplication.h"
#include "tests/support/peerprocess.h"

#include <QTest>

template <typename Test> int runAsApplication(int argc, char **argv)
{
    PeerProcess server(QStringLiteral("buspeer"));
    if (server.ask("host") != "hosting")
        return 1;
    const ZApplication application(argc, argv, ZApplication::Tty);
    Test test;
    return QTest::qExec(&test, argc, argv);
}
