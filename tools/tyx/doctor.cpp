// tyx doctor: tells what is wrong with this machine's set-up, and the cure.
#include "tools/tyx/command.h"
#include "tools/tyx/doctorchecks.h"

#include <QJsonArray>
#include <QJsonObject>
#include <memory>

namespace tyx {

namespace {

struct Options {
    bool json = false;
    bool all = false;
};

QString word(Finding::State state)
{
    switch (state) {
    case Finding::State::Fine:
        return QStringLiteral("ok");
    case Finding::State::Note:
        return QStringLiteral("note");
    case Finding::State::Wrong:
        break;
    }
    return QStringLiteral("WRONG");
}

QJsonObject json(const Check &check, const Finding &finding)
{
    QJsonObject object{{QStringLiteral("check"), QString::fromLatin1(check.name)},
        {QStringLiteral("state"), word(finding.state).toLower()}, {QStringLiteral("about"), finding.about},
        {QStringLiteral("text"), finding.text}};
    if (!finding.cure.isEmpty())
        object.insert(QStringLiteral("cure"), finding.cure);
    return object;
}

void print(const Finding &finding)
{
    printLine(QStringLiteral("%1  %2: %3").arg(word(finding.state), -5).arg(finding.about, finding.text));
    if (!finding.cure.isEmpty())
        printLine(QStringLiteral("       cure: ") + finding.cure);
}

int examine(const Options &options)
{
    QJsonArray array;
    int faults = 0;
    for (const Check &check : doctorChecks()) {
        for (const Finding &finding : check.look()) {
            faults += finding.state == Finding::State::Wrong ? 1 : 0;
            if (options.json)
                array.append(json(check, finding));
            else if (options.all || finding.state != Finding::State::Fine)
                print(finding);
        }
    }
    if (options.json)
        printJson(QJsonDocument(array));
    else
        printLine(faults == 0 ? QStringLiteral("nothing is wrong") : QStringLiteral("wrong: %1").arg(faults));
    return faults == 0 ? Done : AnsweredNo;
}

}

void addDoctor(CLI::App &app, int &exit)
{
    CLI::App *doctor = app.add_subcommand("doctor", "Tells what is wrong with this machine's set-up, and the cure.");
    const auto options = std::make_shared<Options>();
    doctor->add_flag("--all", options->all, "What is in order too");
    doctor->add_flag("--json", options->json, "Everything, as JSON");
    doctor->footer("Exit status: 0 nothing is wrong, 1 something is. Nothing is changed.");
    doctor->callback([options, &exit] { exit = examine(*options); });
}

}
