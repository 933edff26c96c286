#include "textinput/server/hostprocess.h"

#include "appbase/messaging/route.h"
#include "appbase/messaging/wire.h"
#include "textinput/server/restartpolicy.h"

#include <QCoreApplication>
#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int kLookMs = 150;
constexpr int kSilentLooks = 2; // 300 ms
constexpr int kDeadLooks = 20; // three seconds
constexpr qsizetype kLongestText = 1000;

using Row = Route<HostProcess>;

constexpr Row answerRoutes[] = {
    {imhost::kMethods, &HostProcess::onMethods},
    {imhost::kShown, &HostProcess::onShown},
    {imhost::kFailed, &HostProcess::onFailed},
    {imhost::kPong, &HostProcess::onPong},
    {imhost::kKey, &HostProcess::onKey},
    {imhost::kUnconfirmed, &HostProcess::onUnconfirmed},
    {imhost::kTip, &HostProcess::onTip},
    {imhost::kLeave, &HostProcess::onLeave},
};

// The plug-ins of the phone are beside the server when nobody says where.
QProcessEnvironment environment()
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    if (!variables.contains(QStringLiteral("QTDIR")))
        variables.insert(QStringLiteral("QTDIR"), QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
    return variables;
}

}

HostProcess::HostProcess(QObject *parent) : QObject(parent), m_channel(imhost::kServerChannel)
{
    connect(&m_channel, &QCopChannel::received, this, &HostProcess::receive);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setProcessEnvironment(environment());
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }); // it is nothing without the server
    connect(&m_process, &QProcess::finished, this, &HostProcess::ended);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            ended();
    });
    m_restart.setSingleShot(true);
    connect(&m_restart, &QTimer::timeout, this, &HostProcess::start);
    m_look.setInterval(kLookMs);
    connect(&m_look, &QTimer::timeout, this, &HostProcess::look);
}

HostProcess::~HostProcess() { stop(); }

void HostProcess::start()
{
    m_stopped = false;
    m_restart.stop();
    if (m_process.state() == QProcess::NotRunning)
        m_process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/tyx-imhost"), {});
}

void HostProcess::stop()
{
    constexpr int kPatienceMs = 1000;
    m_stopped = true;
    m_ready = false;
    m_restart.stop();
    m_look.stop();
    m_again = false;
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(kPatienceMs);
}

void HostProcess::ended()
{
    m_ready = false;
    m_silent = false;
    m_look.stop();
    m_again = false;
    if (m_stopped)
        return;
    ++m_deaths;
    if (m_deaths <= 3)
        qWarning("input methods: their process has ended; it is started again");
    if (m_deaths < kMostRestartDeaths)
        m_restart.start(restartDelayMs(m_deaths));
    Q_EMIT died();
}

void HostProcess::worked() { m_deaths = 0; }

void HostProcess::restartNow()
{
    if (!m_stopped && m_process.state() == QProcess::NotRunning)
        m_restart.start(0);
}

void HostProcess::keyboardWanted()
{
    if (!m_restart.isActive())
        restartNow();
}

template <typename... T> void HostProcess::tell(const char *message, const T &...values)
{
    QCopChannel::send(imhost::kHostChannel, message, wire::pack(values...));
}

void HostProcess::show(const QUuid &method, int inputType, quint32 language)
{
    tell(imhost::kShow, method, qint32(inputType), language);
    ask();
}

void HostProcess::hide()
{
    if (m_ready)
        tell(imhost::kHide);
    ask(); // one that hangs now would leave its window on the screen
}

void HostProcess::release()
{
    if (m_ready)
        tell(imhost::kRelease);
}

void HostProcess::run(int command, const QByteArray &arguments)
{
    if (m_ready)
        tell(imhost::kCommand, qint32(command), arguments);
    ask();
}

void HostProcess::hardKey(const ZInputMethodPlugin::HardKey &key)
{
    tell(imhost::kHardKey, key.unicode, key.key, key.modifiers.toInt(), key.isPress, key.autoRepeat);
    ask();
}

// The pen does not come by the bus: a question that is sent at once might be answered before the pen is there.
void HostProcess::touched() { ask(When::AfterALook); }

// One question at a time: those that wait in a process that hangs would only fill its socket, and who asks again and
// again must not keep a silent one from being noticed.
void HostProcess::ask(When when)
{
    if (!m_ready)
        return;
    if (m_look.isActive()) {
        m_again = true;
        return;
    }
    m_unanswered = -1;
    m_look.start();
    if (when == When::Now)
        look();
}

void HostProcess::look()
{
    if (m_unanswered < 0) {
        tell(imhost::kPing, qint32(++m_question));
        m_unanswered = 0;
        return;
    }
    ++m_unanswered;
    if (m_unanswered == kSilentLooks) {
        m_silent = true;
        Q_EMIT silent();
    } else if (m_unanswered >= kDeadLooks) {
        m_process.kill();
    }
}

void HostProcess::heard()
{
    m_look.stop();
    if (std::exchange(m_again, false))
        ask(When::AfterALook);
    if (std::exchange(m_silent, false))
        Q_EMIT answered();
}

void HostProcess::receive(const QCString &message, const QByteArray &arguments)
{
    dispatch<HostProcess>(answerRoutes, *this, message, arguments);
}

void HostProcess::onMethods(const QByteArray &arguments)
{
    qint32 from = 0;
    QByteArray methods;
    if (!wire::unpack(arguments, from, methods) || !isFromHost(from))
        return;
    m_ready = true;
    m_silent = false;
    Q_EMIT ready(unpackMethods(methods));
}

void HostProcess::onShown(const QByteArray &arguments)
{
    qint32 from = 0;
    QUuid method;
    qint32 window = 0;
    qint32 height = 0;
    if (wire::unpack(arguments, from, method, window, height) && isFromHost(from))
        Q_EMIT shown(method, window, height);
}

void HostProcess::onFailed(const QByteArray &arguments)
{
    qint32 from = 0;
    QUuid method;
    QString reason;
    if (wire::unpack(arguments, from, method, reason) && isFromHost(from))
        Q_EMIT failed(method, reason);
}

void HostProcess::onPong(const QByteArray &arguments)
{
    qint32 from = 0;
    qint32 number = 0;
    if (wire::unpack(arguments, from, number) && isFromHost(from) && number == m_question)
        heard();
}

void HostProcess::onKey(const QByteArray &arguments)
{
    qint32 from = 0;
    QByteArray event;
    if (!wire::unpack(arguments, from, event) || !isFromHost(from))
        return;
    wire::Reader reader(event);
    bool complete = false;
    IM_KeyEventEx decoded = decodeKeyEventEx(reader.stream(), complete);
    if (!complete)
        return;
    decoded.text.truncate(kLongestText);
    Q_EMIT key(decoded);
}

void HostProcess::onUnconfirmed(const QByteArray &arguments)
{
    qint32 from = 0;
    QString text;
    if (wire::unpack(arguments, from, text) && isFromHost(from))
        Q_EMIT unconfirmed(text.left(kLongestText));
}

void HostProcess::onTip(const QByteArray &arguments)
{
    qint32 from = 0;
    QString word;
    if (wire::unpack(arguments, from, word) && isFromHost(from))
        Q_EMIT tip(word.left(kLongestText));
}

void HostProcess::onLeave(const QByteArray &arguments)
{
    qint32 from = 0;
    if (wire::unpack(arguments, from) && isFromHost(from))
        Q_EMIT leaveRequested();
}
