// What tests do with files, and with programs that run to their end.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTest>
#include <sys/stat.h>

inline QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

inline void fill(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

// Type and permissions, of a symbolic link its own; 0 when nothing is there.
inline mode_t modeOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode : 0;
}

struct Outcome {
    int status = -1; // -1: it did not start, crashed or did not end
    QByteArray out;
    QByteArray err;
};

inline Outcome run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

// Why the system calls of a program cannot be watched or made to fail here; null when they can.
inline const char *whyNotTraced()
{
#ifdef TYX_EMULATED
    return "strace would see the emulator's system calls";
#else
    const QStringList nothing{QStringLiteral("-o"), QStringLiteral("/dev/null"), QStringLiteral("true")};
    return run(QStringLiteral("strace"), nothing).status == 0
        ? nullptr
        : "nothing can be traced here (strace is missing or ptrace is forbidden)";
#endif
}
