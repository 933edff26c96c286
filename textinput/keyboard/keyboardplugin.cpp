// The phone's keyboard as an input method.
#include "settings/files/inputsetting.h"
#include "textinput/keyboard/keyboardview.h"
#include "textinput/plugin/zinputmethodplugin.h"

#include <QPointer>

class KeyboardPlugin : public QObject, public ZInputMethodPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "keyboard.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    QWidget *createWidget(ZInputMethodSink &sink) override
    {
        m_view = new KeyboardView(sink);
        m_view->setLanguage(m_language);
        m_view->showNumbers(m_numbers);
        return m_view;
    }

    void runCommand(const IMStateCmd &command) override
    {
        switch (command.number) {
        case IMStateCmd::SelectInputMethod:
            select(static_cast<const SelectInputMethodCmd &>(command).language);
            break;
        case IMStateCmd::SetInputMode:
            setMode(static_cast<const SetInputModeCmd &>(command).mode);
            break;
        default:
            break;
        }
    }

private:
    // Only a change counts: the user may have gone to another layout by hand.
    void select(quint32 number)
    {
        const QString language = settings::inputLanguageCode(int(number)).section(u'-', 0, 0);
        if (std::exchange(m_language, language) != language && m_view)
            m_view->setLanguage(language);
    }

    // Here too: the mode comes with every tap on the editor.
    void setMode(int mode)
    {
        if (mode == SetInputModeCmd::NextShift) {
            if (m_view)
                m_view->nextShift();
            return;
        }
        const bool numbers = mode == SetInputModeCmd::Numbers;
        if (std::exchange(m_numbers, numbers) != numbers && m_view)
            m_view->showNumbers(numbers);
    }

    QPointer<KeyboardView> m_view;
    QString m_language;
    bool m_numbers = false;
};

#include "keyboardplugin.moc"
