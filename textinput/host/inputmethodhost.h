// The process of the input methods: runs the one that is chosen, and shows its keyboard.
#pragma once

#include "platform/bus/qcopchannel.h"
#include "textinput/host/hostsink.h"
#include "textinput/host/pluginlibrary.h"

#include <QWidget>
#include <map>
#include <memory>
#include <vector>

class InputMethodHost : public QObject {
    Q_OBJECT

public:
    InputMethodHost(); // tells the server what there is

    // One a message.
    void onShow(const QByteArray &arguments);
    void onHide(const QByteArray &arguments);
    void onRelease(const QByteArray &arguments);
    void onCommand(const QByteArray &arguments);
    void onHardKey(const QByteArray &arguments);
    void onPing(const QByteArray &arguments);

private:
    void receive(const QCString &message, const QByteArray &arguments);
    bool load(const QUuid &method); // false when that one cannot be had
    bool makeKeyboard();
    void run(const IMStateCmd &command);
    void runPacked(int number, const QByteArray &fields);
    void reportFailure(const QUuid &method, const QString &reason);

    QCopChannel m_channel;
    HostSink m_sink;
    std::vector<std::unique_ptr<PluginLibrary>> m_libraries;
    PluginLibrary *m_library = nullptr; // the chosen one, of the list
    ZInputMethodPlugin *m_plugin = nullptr; // its
    std::map<int, QByteArray> m_settings; // the last command of each kind, for the method that is loaded next
    QWidget m_window; // what the server stacks as the input widget
    std::unique_ptr<QWidget> m_keyboard; // inside the window; after it, so that it goes first
};
