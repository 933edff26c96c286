#include "input/logic/recording.h"
#include "platform/bus/businspector.h"
#include "platform/bus/qcopchannel.h"
#include "platform/system/endsignals.h"
#include "platform/system/filecontent.h"
#include "settings/status/statuslayout.h"
#include "settings/status/statustable.h"
#include "tools/tyx/command.h"
#include "tools/tyx/inputwriter.h"
#include "tools/tyx/recorder.h"
#include "tools/tyx/server.h"

#include <QFile>
#include <chrono>

namespace tyx {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Outcome = InputWriter::Done;

// A line of events of one way in is read in order by itself; another way in could overtake it.
constexpr qsizetype kMostUnsettled = 100;

Outcome problem(const QString &text) { return tl::make_unexpected(text); }

class Replay {
public:
    Outcome run(const QList<recording::Event> &events, bool fast);
    void letGo() { m_writer.letGo(); }

private:
    Outcome play(const recording::Key &key) { return m_writer.write(key); }
    Outcome play(const recording::Touch &touch) { return m_writer.write(touch); }
    static Outcome play(const recording::Message &message);
    static Outcome play(const recording::Status &status);

    platform::EndSignals m_signals; // looked at between two events
    InputWriter m_writer;
};

Outcome Replay::play(const recording::Message &message)
{
    if (!message.isEffect && !QCopChannel::send(message.channel, message.name, message.data))
        return problem(QStringLiteral("the message was not sent: the phone has stopped"));
    return {};
}

Outcome Replay::play(const recording::Status &status)
{
    for (const status::Row &row : status::rows) {
        if (status.field != QByteArrayView(row.name.data(), qsizetype(row.name.size()))
            || row.kind == status::Row::Unused)
            continue;
        if (status.bytes.size() != qsizetype(row.size()))
            return problem(QStringLiteral("the field has %1 bytes").arg(row.size()));
        const std::span<const char> bytes(status.bytes.constData(), row.size());
        if (!status::writeBytes(row, {reinterpret_cast<const quint8 *>(bytes.data()), bytes.size()}))
            return problem(QStringLiteral("there is no status table"));
        return {};
    }
    return problem(QStringLiteral("there is no such field of the status table"));
}

Outcome Replay::run(const QList<recording::Event> &events, bool fast)
{
    const QList<qint64> pauses = fast ? recording::shortenedPauses(events) : QList<qint64>();
    const auto start = steady_clock::now();
    qsizetype unsettled = 0;
    for (qsizetype i = 0; i < events.size(); ++i) {
        const recording::Event &event = events[i];
        const bool sameWay = i > 0 && events[i - 1].what.index() == event.what.index();
        if ((i > 0 && !sameWay) || ++unsettled == kMostUnsettled) {
            if (auto settled = m_writer.settle(); !settled)
                return settled;
            unsettled = 0;
        }
        if (!m_signals.pause(fast
                    ? milliseconds(pauses[i])
                    : std::chrono::duration_cast<milliseconds>(start + milliseconds(event.at) - steady_clock::now())))
            return problem(QStringLiteral("stopped before event %1").arg(i + 1));
        if (auto played = std::visit([this](const auto &what) { return this->play(what); }, event.what); !played)
            return problem(QStringLiteral("event %1: %2").arg(QString::number(i + 1), played.error()));
    }
    return m_writer.settle();
}

}

int replay(const RecordingOptions &options)
{
    constexpr qint64 kLargest = 256LL * 1024 * 1024;
    const auto content = platform::fileContent(QFile::decodeName(options.file.c_str()), kLargest);
    if (!content)
        return fail(QStringLiteral("%1: %2; name a regular file of 256 MiB at most")
                        .arg(printable(options.file), content.error().text()));
    const auto events = recording::parse(*content);
    if (!events)
        return fail(QStringLiteral("%1: %2; docs/formats/recording.md tells what a recording is")
                        .arg(printable(options.file), events.error()));
    if (const auto bus = platform::BusInspector::open(); !bus)
        return fail(whyNoServer(bus.error()));
    Replay player;
    const auto played = player.run(*events, options.fast);
    if (played)
        return Done;
    player.letGo(); // the releases would have come later
    return fail(QStringLiteral("%1: %2").arg(printable(options.file), played.error()));
}

}
