// What the plug-ins of the methods for the twelve keys have in common: the pad, the clock, the way of the text.
#pragma once

#include "textinput/plugin/zinputmethodplugin.h"
#include "textinput/twelvekeys/keypadview.h"
#include "textinput/twelvekeys/twelvekeymethod.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPointer>

class TwelveKeyPlugin : public QObject, public ZInputMethodPlugin {
public:
    QWidget *createWidget(ZInputMethodSink &sink) override;
    void runCommand(const IMStateCmd &command) override;
    void keyEvent(const HardKey &key) override;

protected:
    explicit TwelveKeyPlugin(TwelveKeyMethod &method); // a member of the heir
    void timerEvent(QTimerEvent *event) override;
    virtual void setLanguages(const QString & /*preferred*/, const QString & /*secondary*/) { }
    virtual void hidden() { }
    void refresh(); // shows what became of the method

private:
    void apply(const TwelveKeyMethod::Typing &typing, Qt::KeyboardModifiers modifiers = {});
    void forget(); // what is not confirmed is the editor's now
    void press(const HardKey &key);
    void select(quint32 language);
    void setMode(int mode);
    [[nodiscard]] TwelveKeyMethod::Time now() const { return TwelveKeyMethod::Time(m_clock.elapsed()); }

    TwelveKeyMethod &m_method;
    ZInputMethodSink *m_sink = nullptr;
    QPointer<KeypadView> m_view;
    QElapsedTimer m_clock;
    QBasicTimer m_timer; // until the method's deadline
    QString m_shown; // as not confirmed, in the editor
    QString m_language; // as it was last selected
    bool m_numbers = false;
};
