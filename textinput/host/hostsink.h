// An input method's output on its way to the GUI server.
#pragma once

#include "textinput/plugin/zinputmethodplugin.h"

class HostSink : public ZInputMethodSink {
public:
    void sendText(const QString &text) override;
    void sendKey(int key, Qt::KeyboardModifiers modifiers) override;
    void setUnconfirmedText(const QString &text) override;
    void setCompletionTip(const QString &word) override;
    void hide() override;

    void forget() { m_unconfirmed = false; } // the editor keeps what is shown, or has another owner

private:
    bool m_unconfirmed = false; // some is shown
};
