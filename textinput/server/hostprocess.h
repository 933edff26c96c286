// The process that runs the input methods, seen from the server: started, watched, started again.
#pragma once

#include "appbase/messaging/keyeventex.h"
#include "platform/bus/qcopchannel.h"
#include "textinput/plugin/inputmethodinfo.h"
#include "textinput/plugin/zinputmethodplugin.h"

#include <QProcess>
#include <QTimer>
#include <QUuid>

// A host that dies is started again, with growing pauses when it dies again and again, and in the end only when a
// keyboard is asked for. Whenever it was given something to do it is asked whether it lives; one that has not answered
// for 300 ms is silent, and after three seconds it is killed. An idle phone is not woken for this.
class HostProcess : public QObject {
    Q_OBJECT

public:
    explicit HostProcess(QObject *parent);
    ~HostProcess() override; // ends the process

    void start();
    void stop(); // it stays down

    [[nodiscard]] qint64 pid() const { return m_process.processId(); } // 0 when it does not run
    [[nodiscard]] bool isUp() const { return m_ready; } // it may be silent just now, and reads later
    [[nodiscard]] bool isReady() const { return m_ready && !m_silent; }
    [[nodiscard]] int deaths() const { return m_deaths; } // in a row

    void show(const QUuid &method, int inputType, quint32 language); // answered by shown(), or failed(), or silence
    void hide();
    void release(); // keyboard and memory
    void run(int command, const QByteArray &arguments);
    void hardKey(const ZInputMethodPlugin::HardKey &key);
    void touched(); // the pen went to its window
    void worked(); // it was of use: the next death is a first one
    void restartNow(); // whatever pause is on
    void keyboardWanted(); // starts one that is not tried any more

    // One a message.
    void onMethods(const QByteArray &arguments);
    void onShown(const QByteArray &arguments);
    void onFailed(const QByteArray &arguments);
    void onPong(const QByteArray &arguments);
    void onKey(const QByteArray &arguments);
    void onUnconfirmed(const QByteArray &arguments);
    void onTip(const QByteArray &arguments);
    void onLeave(const QByteArray &arguments);

Q_SIGNALS:
    void ready(const QList<InputMethodInfo> &methods);
    void shown(const QUuid &method, int window, int height);
    void failed(const QUuid &method, const QString &reason);
    void silent(); // no answer for 300 ms; it may still come
    void answered(); // after silence
    void died();
    void key(const IM_KeyEventEx &event);
    void unconfirmed(const QString &text);
    void tip(const QString &word);
    void leaveRequested();

private:
    void receive(const QCString &message, const QByteArray &arguments);
    void ended();
    enum class When { Now, AfterALook };
    void ask(When when = When::Now); // whether it lives
    void look(); // for the answer to the last question
    void heard();
    [[nodiscard]] bool isFromHost(qint32 pid) const { return pid != 0 && pid == m_process.processId(); }
    template <typename... T> void tell(const char *message, const T &...values);

    QCopChannel m_channel;
    QProcess m_process;
    QTimer m_restart;
    QTimer m_look;
    int m_deaths = 0;
    int m_unanswered = 0; // looks since the question; -1: it is to be asked at the next one
    int m_question = 0; // the last number asked
    bool m_again = false; // it got more to do since the question
    bool m_ready = false;
    bool m_silent = false;
    bool m_stopped = true;
};
