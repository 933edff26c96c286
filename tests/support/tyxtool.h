// The program `tyx`, as a script runs it.
#pragma once

#include "tests/support/patience.h"
#include "tests/support/testfiles.h"

#include <QJsonDocument>

inline QStringList words(const char *line) { return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts); }

// What a program that was started says until it ends. A broker of this process works meanwhile.
inline Outcome finish(QProcess &process)
{
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, kPatienceMs))
        return {-1, "(does not end)", {}};
    const bool isOrderly = process.error() != QProcess::FailedToStart && process.exitStatus() == QProcess::NormalExit;
    return {isOrderly ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

// `tyx NAME`
struct TyxCommand {
    QString name;

    void start(QProcess &process, const QStringList &arguments) const
    {
        process.start(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), QStringList(name) + arguments);
    }
    Outcome operator()(const QStringList &arguments) const
    {
        QProcess process;
        start(process, arguments);
        return finish(process);
    }
    Outcome operator()(const char *line) const { return (*this)(words(line)); }
    [[nodiscard]] QJsonDocument json(const QStringList &arguments) const
    {
        return QJsonDocument::fromJson((*this)(arguments + QStringList(QStringLiteral("--json"))).out);
    }
    [[nodiscard]] QJsonDocument json(const char *line) const { return json(words(line)); }
};
