// The keyboard: letters of several languages, their accents, and symbols.
#pragma once

#include "textinput/keyboard/keypanel.h"

class KeyboardView : public KeyPanel {
    Q_OBJECT

public:
    using KeyPanel::KeyPanel;

    void setLanguage(const QString &language); // "de"; one that there is no layout for: English
    void showNumbers(bool numbers);
    void nextShift(); // small, one capital, capitals

protected:
    void addKeys() override;
    void press(const KeyboardKey &key) override;
    void type(const QString &text) override;
    [[nodiscard]] QString offeredBy(const KeyboardKey &key) const override;
    [[nodiscard]] QString shifted(const QString &text) const override;
    [[nodiscard]] Shift shift() const override { return m_shift; }

private:
    int m_layout = 0;
    int m_symbols = -1; // its page; -1: letters
    Shift m_shift = Shift::Off;
};
