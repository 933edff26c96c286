// What the sub-commands of `tyx` share: how they are added, how they answer, how they report an error.
#pragma once

#include <CLI/CLI.hpp>
#include <QJsonDocument>
#include <QString>

namespace tyx {

// The exit status of every sub-command; a callback stores it in the int it was given.
enum Exit : int {
    Done = 0,
    AnsweredNo = 1, // the question was understood, and the answer is no
    Usage = 2,
    Failed = 3,
};

// One line on standard error that names the thing, the place and the cure; yields Exit::Failed.
[[nodiscard]] int fail(const QString &message);

void printLine(const QString &line); // on standard output, as UTF-8
void printJson(const QJsonDocument &document);

// Each lives in the file of its name; `exit` outlives the parse.
void addScreen(CLI::App &app, int &exit);
void addBus(CLI::App &app, int &exit);
void addConfig(CLI::App &app, int &exit);

}
