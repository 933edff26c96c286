// A key pressed once is its first letter, pressed again soon its second one.
#pragma once

#include "textinput/twelvekeys/keyletters.h"
#include "textinput/twelvekeys/twelvekeymethod.h"

// state          | key of the letter | other letter key    | 1 s passed | held for 0.6 s
// ---------------+-------------------+---------------------+------------+---------------------
// no letter      |                   | its first letter    |            |
// letter pending | the key's next    | confirm, its first  | confirm    | the digit instead
//
// In the state of digits every key types its digit at once. Asterisk goes on to the next shift state, held it types
// itself. Number sign confirms; with nothing to confirm it asks for the next language, held it types itself.
class MultiTap : public TwelveKeyMethod {
public:
    enum class Shift { Small, Once, Capitals, Digits };

    Typing press(int key, Time now) override;
    Typing release(int key, Time now) override;
    Typing typed(const QString &text) override;
    Typing expire(Time now) override;
    [[nodiscard]] std::optional<Time> deadline() const override;
    void drop() override;

    [[nodiscard]] QString unconfirmed() const override;
    [[nodiscard]] QStringList offers() const override;
    [[nodiscard]] int chosen() const override { return m_digit < 0 ? -1 : m_letter; }
    Typing choose(int offer) override;

    [[nodiscard]] QString mode() const override;
    void setLanguage(const QString &language) override;
    [[nodiscard]] QString language() const override { return m_keys->language; }
    void setNumbers(bool numbers) override { m_shift = numbers ? Shift::Digits : Shift::Small; }
    void nextShift() override;

    // The two that number sign goes to and fro between; the same twice: it does not.
    void setLanguages(const QString &preferred, const QString &secondary);
    [[nodiscard]] Shift shift() const { return m_shift; }
    void setShift(Shift shift) { m_shift = shift; }

private:
    Typing pressDigit(int digit, Time now);
    void nextLanguage();
    QString confirm(); // what was pending
    [[nodiscard]] QString letters() const; // of the pending key, its digit last
    [[nodiscard]] QString shifted(QChar letter) const;

    const KeyLetters *m_keys = &keyletters::all().front();
    QString m_preferred;
    QString m_secondary;
    Shift m_shift = Shift::Small;
    int m_digit = -1; // whose letter is pending; -1: none
    int m_letter = 0; // index into letters()
    Time m_pressed{0}; // the last time the pending letter's key was
    int m_down = 0; // Qt::Key that may yet be held long enough; 0: none
    Time m_downSince{0};
};
