// A program that a test leads line by line: a command on its standard input, an answer on its standard output.
#pragma once

#include "tests/support/patience.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <csignal>

class PeerProcess {
public:
    // A program of the build tree's test folder, already started.
    explicit PeerProcess(const QString &program, const QStringList &arguments = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setChildProcessModifier([] { // whoever runs the tests may ignore these, as nohup does
            for (const int number : {SIGHUP, SIGINT, SIGTERM})
                std::signal(number, SIG_DFL);
        });
        m_process.start(QStringLiteral(TYX_BINARY_DIR "/tests/") + program, arguments);
    }
    ~PeerProcess() { kill(); }
    PeerProcess(const PeerProcess &) = delete;
    PeerProcess &operator=(const PeerProcess &) = delete;

    void tell(const QByteArray &command) { m_process.write(command + '\n'); }

    // The next line of output, or what went wrong.
    QByteArray line()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(kPatienceMs) && !m_process.canReadLine())
                return m_process.state() == QProcess::NotRunning ? "(it has ended)" : "(no answer)";
        }
        return m_process.readLine().trimmed();
    }
    QByteArray ask(const QByteArray &command)
    {
        tell(command);
        return line();
    }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(kPatienceMs);
    }
    bool waitForEnd() { return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kPatienceMs); }
    // Its exit status once it has ended; -1 when a signal ended it or nothing does.
    int status() { return waitForEnd() && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }
    qint64 pid() const { return m_process.processId(); }

private:
    QProcess m_process;
};
