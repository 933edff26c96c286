// An input method that goes wrong as the file /tmp/bad says, or tells what it is told.
#include "textinput/plugin/zinputmethodplugin.h"

#include <QFile>
#include <QWidget>
#include <csignal>
#include <stdexcept>
#include <unistd.h>

namespace {

bool isTo(const QByteArray &what)
{
    QFile file(QStringLiteral("/tmp/bad"));
    return file.open(QIODevice::ReadOnly) && file.readAll() == what;
}

void goWrong(const char *when)
{
    if (isTo(QByteArray("crash in ") + when))
        ::raise(SIGSEGV);
    if (isTo(QByteArray("throw in ") + when))
        throw std::runtime_error("bad");
    while (isTo(QByteArray("hang in ") + when))
        ::pause();
}

class Pad : public QWidget {
public:
    [[nodiscard]] QSize sizeHint() const override
    {
        return isTo("huge") ? QSize(1'000'000, 2'000'000) : isTo("tiny") ? QSize(-5, -5) : QSize(240, 100);
    }

protected:
    void mousePressEvent(QMouseEvent * /*event*/) override { goWrong("press"); }
};

const bool loaded = (goWrong("load"), true);

}

class BadKeyboard : public QObject, public ZInputMethodPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "badkeyboard.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    QWidget *createWidget(ZInputMethodSink &sink) override
    {
        goWrong("create");
        m_sink = &sink;
        return isTo("none") ? nullptr : new Pad;
    }

    void runCommand(const IMStateCmd &command) override
    {
        goWrong("command");
        if (m_sink)
            m_sink->sendText(QStringLiteral("%1 %2").arg(command.number).arg(QLatin1String(command.pack().toHex())));
    }

    void keyEvent(const HardKey &key) override
    {
        if (m_sink && key.isPress)
            m_sink->sendText(QStringLiteral("key %1").arg(key.key));
    }

private:
    ZInputMethodSink *m_sink = nullptr;
};

#include "badkeyboard.moc"
