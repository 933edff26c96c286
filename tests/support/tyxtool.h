// The program `tyx`, as a script runs it.
#pragma once

#include "tests/support/testfiles.h"

#include <QJsonDocument>

// `tyx NAME`
struct TyxCommand {
    QString name;

    Outcome operator()(const QStringList &arguments) const
    {
        return run(QStringLiteral(TYX_BINARY_DIR "/bin/tyx"), QStringList(name) + arguments);
    }
    [[nodiscard]] QJsonDocument json(const QStringList &arguments) const
    {
        return QJsonDocument::fromJson((*this)(arguments + QStringList(QStringLiteral("--json"))).out);
    }
};
