#include "textinput/twelvekeys/multitap.h"

#include <Qt>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isDigit(int key) { return key >= Qt::Key_0 && key <= Qt::Key_9; }

}

MultiTap::Typing MultiTap::press(int key, Time now)
{
    m_down = 0;
    if (isDigit(key) || key == Qt::Key_Asterisk || key == Qt::Key_NumberSign) {
        m_down = key;
        m_downSince = now;
    }
    if (isDigit(key))
        return pressDigit(key - Qt::Key_0, now);
    const bool wasPending = m_digit >= 0;
    switch (key) {
    case Qt::Key_Asterisk:
    case Qt::Key_NumberSign:
        return {}; // what they mean shows when they come up
    case Qt::Key_Backspace:
        drop();
        return {{}, wasPending ? 0 : key};
    case Qt::Key_Right: // the cursor stands behind the letter then: there is nothing to move
        return {confirm(), wasPending ? 0 : key};
    default:
        return {confirm(), key};
    }
}

MultiTap::Typing MultiTap::pressDigit(int digit, Time now)
{
    if (m_shift == Shift::Digits)
        return {confirm() + QChar(u'0' + digit)};
    Typing typing;
    if (digit == m_digit && now - m_pressed < kNextLetter) {
        m_letter = (m_letter + 1) % int(letters().size());
    } else {
        typing.text = confirm();
        m_digit = digit;
        m_letter = 0;
    }
    m_pressed = now;
    return typing;
}

MultiTap::Typing MultiTap::release(int key, Time now)
{
    Typing typing = expire(now); // the clock may be late
    if (m_down != key)
        return typing;
    m_down = 0;
    if (key == Qt::Key_Asterisk) {
        typing.text += confirm();
        nextShift();
    } else if (key == Qt::Key_NumberSign) {
        if (m_digit < 0)
            nextLanguage();
        typing.text += confirm();
    }
    return typing;
}

MultiTap::Typing MultiTap::typed(const QString &text)
{
    m_down = 0;
    return {confirm() + text};
}

// A key that is held confirms nothing yet: its letter may become the digit.
MultiTap::Typing MultiTap::expire(Time now)
{
    const auto due = deadline();
    if (!due || now < *due)
        return {};
    const int held = std::exchange(m_down, 0);
    if (held == 0)
        return {confirm()};
    if (!isDigit(held))
        return {confirm() + QChar(held)};
    if (m_digit < 0) // it typed its digit already
        return {};
    m_digit = -1;
    return {QString(QChar(held))};
}

std::optional<MultiTap::Time> MultiTap::deadline() const
{
    if (m_down != 0)
        return m_downSince + kHold;
    if (m_digit >= 0)
        return m_pressed + kNextLetter;
    return std::nullopt;
}

void MultiTap::drop()
{
    m_digit = -1;
    m_down = 0;
}

QString MultiTap::confirm()
{
    QString text = unconfirmed();
    if (m_digit >= 2 && m_shift == Shift::Once)
        m_shift = Shift::Small;
    m_digit = -1;
    return text;
}

void MultiTap::nextLanguage()
{
    if (!m_preferred.isEmpty())
        setLanguage(language() == m_preferred ? m_secondary : m_preferred);
}

QString MultiTap::letters() const { return m_keys->letters.at(std::size_t(m_digit)) + QChar(u'0' + m_digit); }

QString MultiTap::shifted(QChar letter) const
{
    return m_shift == Shift::Once || m_shift == Shift::Capitals ? keyletters::upper(letter) : QString(letter);
}

QString MultiTap::unconfirmed() const { return m_digit < 0 ? QString() : shifted(letters().at(m_letter)); }

QStringList MultiTap::offers() const
{
    QStringList offered;
    if (m_digit >= 0) {
        for (const QChar letter : letters())
            offered.append(shifted(letter));
    }
    return offered;
}

MultiTap::Typing MultiTap::choose(int offer)
{
    if (m_digit < 0 || offer < 0 || offer >= letters().size())
        return {};
    m_letter = offer;
    m_down = 0;
    return {confirm()};
}

QString MultiTap::mode() const
{
    static const QString latin[] = {u"abc"_s, u"Abc"_s, u"ABC"_s, u"123"_s};
    static const QString cyrillic[] = {u"абв"_s, u"Абв"_s, u"АБВ"_s, u"123"_s};
    const auto state = std::size_t(m_shift);
    return m_keys->language == u"ru" ? cyrillic[state] : latin[state];
}

void MultiTap::setLanguage(const QString &language)
{
    m_keys = &keyletters::of(language);
    drop();
}

void MultiTap::setLanguages(const QString &preferred, const QString &secondary)
{
    const bool areTwo = keyletters::of(preferred).language != keyletters::of(secondary).language;
    m_preferred = areTwo ? keyletters::of(preferred).language : QString();
    m_secondary = areTwo ? keyletters::of(secondary).language : QString();
}

void MultiTap::nextShift()
{
    constexpr int kStates = 4;
    m_shift = Shift((int(m_shift) + 1) % kStates);
}
