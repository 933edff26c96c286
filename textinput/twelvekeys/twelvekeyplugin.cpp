#include "textinput/twelvekeys/twelvekeyplugin.h"

#include "settings/files/inputsetting.h"

#include <QTimerEvent>
#include <algorithm>
#include <utility>

namespace {

constexpr int kFirstWithoutCharacter = 0x0100'0000; // of Qt::Key

bool isOfTheTwelve(int key)
{
    return (key >= Qt::Key_0 && key <= Qt::Key_9) || key == Qt::Key_Asterisk || key == Qt::Key_NumberSign;
}

QString languageCode(quint32 number) { return settings::inputLanguageCode(int(number)).section(u'-', 0, 0); }

// A key that types and is none of the twelve, of another keyboard.
QString textOf(const ZInputMethodPlugin::HardKey &key)
{
    if (key.unicode > 0 && key.unicode < 0xFFFF)
        return QString(QChar(key.unicode));
    const QString capital = QChar(key.key);
    return key.modifiers.testFlag(Qt::ShiftModifier) ? capital : capital.toLower();
}

}

TwelveKeyPlugin::TwelveKeyPlugin(TwelveKeyMethod &method) : m_method(method) { m_clock.start(); }

QWidget *TwelveKeyPlugin::createWidget(ZInputMethodSink &sink)
{
    m_sink = &sink;
    m_view = new KeypadView;
    connect(m_view, &KeypadView::keyPressed, this, [this](int key) { apply(m_method.press(key, now())); });
    connect(m_view, &KeypadView::keyReleased, this, [this](int key) { apply(m_method.release(key, now())); });
    connect(m_view, &KeypadView::offerTapped, this, [this](int offer) { apply(m_method.choose(offer)); });
    connect(m_view, &KeypadView::modeTapped, this, [this] {
        m_method.nextShift();
        refresh();
    });
    connect(m_view, &KeypadView::left, this, [this] {
        forget();
        hidden();
    });
    refresh();
    return m_view;
}

void TwelveKeyPlugin::runCommand(const IMStateCmd &command)
{
    switch (command.number) {
    case IMStateCmd::SelectInputMethod:
        select(static_cast<const SelectInputMethodCmd &>(command).language);
        break;
    case IMStateCmd::SetInputMode:
        setMode(static_cast<const SetInputModeCmd &>(command).mode);
        break;
    case IMStateCmd::SupportLanguageId: {
        const auto &languages = static_cast<const SetSupportLanguageId &>(command);
        setLanguages(languageCode(languages.preferred), languageCode(languages.secondary));
        break;
    }
    case IMStateCmd::SetEditContext:
        if (static_cast<const SetEditContextCmd &>(command).state == SetEditContextCmd::Confirmed)
            forget();
        break;
    default:
        break;
    }
}

// It is shown, perhaps for another editor. What was not confirmed is text of the one before by now. Only another
// language counts: the user may have changed it by hand.
void TwelveKeyPlugin::select(quint32 number)
{
    forget();
    const QString language = languageCode(number);
    if (std::exchange(m_language, language) != language)
        m_method.setLanguage(language);
    refresh();
}

// Here too: the mode comes with every tap on the editor.
void TwelveKeyPlugin::setMode(int mode)
{
    const bool numbers = mode == SetInputModeCmd::Numbers;
    if (mode == SetInputModeCmd::NextShift)
        m_method.nextShift();
    else if (std::exchange(m_numbers, numbers) != numbers)
        m_method.setNumbers(numbers);
    refresh();
}

void TwelveKeyPlugin::keyEvent(const HardKey &key)
{
    if (m_view && isOfTheTwelve(key.key))
        m_view->setDown(key.isPress ? key.key : 0);
    if (key.isPress)
        press(key);
    else
        apply(m_method.release(key.key, now()));
}

void TwelveKeyPlugin::press(const HardKey &key)
{
    if (isOfTheTwelve(key.key)) {
        if (!key.autoRepeat) // the method knows by itself for how long a key is held
            apply(m_method.press(key.key, now()));
    } else if (key.key >= kFirstWithoutCharacter) {
        apply(m_method.press(key.key, now()), key.modifiers);
    } else {
        apply(m_method.typed(textOf(key)));
    }
}

void TwelveKeyPlugin::apply(const TwelveKeyMethod::Typing &typing, Qt::KeyboardModifiers modifiers)
{
    if (m_sink && !typing.text.isEmpty()) {
        m_sink->sendText(typing.text);
        m_shown.clear(); // the text took it away
    }
    const QString unconfirmed = m_method.unconfirmed();
    if (m_sink && std::exchange(m_shown, unconfirmed) != unconfirmed)
        m_sink->setUnconfirmedText(unconfirmed);
    if (m_sink && typing.key != 0)
        m_sink->sendKey(typing.key, modifiers);
    refresh();
}

void TwelveKeyPlugin::forget()
{
    m_method.drop();
    m_shown.clear();
    refresh();
}

void TwelveKeyPlugin::refresh()
{
    if (m_view)
        m_view->setContent(
            {m_method.mode(), &keyletters::of(m_method.language()), m_method.offers(), m_method.chosen()});
    const auto deadline = m_method.deadline();
    if (deadline)
        m_timer.start(int(std::max<qint64>((*deadline - now()).count(), 0)), this);
    else
        m_timer.stop();
}

void TwelveKeyPlugin::timerEvent(QTimerEvent * /*event*/)
{
    m_timer.stop(); // it may have been early: then it is started again
    apply(m_method.expire(now()));
}
