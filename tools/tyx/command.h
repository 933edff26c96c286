// What the sub-commands of `tyx` share: how they are added, how they answer, how they report an error.
#pragma once

#include <CLI/CLI.hpp>
#include <QByteArrayView>
#include <QJsonDocument>
#include <QString>
#include <memory>
#include <optional>
#include <string>

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

// The same for what was typed wrongly; yields Exit::Usage.
[[nodiscard]] int refuse(const QString &message);

// For a terminal, which should see no control characters: a name or a file from elsewhere may contain anything.
QString printable(QByteArrayView text); // UTF-8

// On standard output, as UTF-8; printable when it is a terminal, as it is when a script reads it. That it could not be
// written is told when the program ends.
void printLine(const QString &line);
void printJson(const QJsonDocument &document);

// What was typed as a whole number: decimal, or hexadecimal behind "0x", and nothing around it.
std::optional<qint64> wholeNumber(const std::string &text);

// Replaces a file, or writes to standard output when it is "-".
[[nodiscard]] int saveTo(const std::string &file, const QByteArray &bytes);

// Of a file that could not be saved (notSaved()); yields Exit::Failed.
[[nodiscard]] int failToSave(const QString &file, const QString &why, int number = 0);

// For output that somebody waits for. False when it is lost: nobody listens any more, or the disk is full.
[[nodiscard]] bool flushOutput();

// A range for an option. CLI11's own let "nan" pass, and say no short text.
CLI::Validator numberFrom(double least, double most, const std::string &text);
// How often something is to be seen.
CLI::Validator countRange();

// `tyx NAME COMMAND`: the commands below one name. They share one Options, which has a `bool json` for addJson(), and
// answer with their exit status. What is added lives as long as the App.
template <typename Options> class CommandGroup {
public:
    using Action = int (*)(const Options &);

    CommandGroup(CLI::App &app, const char *name, const char *help, int &exit)
        : m_parent(app.add_subcommand(name, help)), m_exit(exit)
    {
        m_parent->require_subcommand(1);
    }

    CLI::App *add(const char *name, const char *help, Action action) const
    {
        CLI::App *command = m_parent->add_subcommand(name, help);
        command->callback([action, options = m_options, &exit = m_exit] { exit = action(*options); });
        return command;
    }
    CLI::Option *addJson(CLI::App *command) const { return command->add_flag("--json", m_options->json, "As JSON"); }
    [[nodiscard]] Options &options() const { return *m_options; }

private:
    CLI::App *m_parent;
    int &m_exit;
    std::shared_ptr<Options> m_options = std::make_shared<Options>();
};

// Each lives in the file of its name; `exit` outlives the parse.
void addQueue(CLI::App &app, int &exit);
void addScreen(CLI::App &app, int &exit);
void addBus(CLI::App &app, int &exit);
void addConfig(CLI::App &app, int &exit);
void addIm(CLI::App &app, int &exit);
void addPack(CLI::App &app, int &exit);
void addSkin(CLI::App &app, int &exit); // in tyx-images, like the next
void addShare(CLI::App &app, int &exit);
void addDoctor(CLI::App &app, int &exit);
void addLock(CLI::App &app, int &exit);
void addNewApp(CLI::App &app, int &exit);
void addStatus(CLI::App &app, int &exit);
void addSettings(CLI::App &app, int &exit);
void addKeys(CLI::App &app, int &exit); // both in input.cpp
void addTouch(CLI::App &app, int &exit);

}
