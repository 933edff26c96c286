// What methods for the twelve keys have in common: keys and time come in, text goes out. No widget, no clock.
#pragma once

#include <QString>
#include <QStringList>
#include <chrono>
#include <optional>

// Owned by the plug-in. What is not confirmed yet, unconfirmed(), belongs to the method until it hands it out as text
// or drop() takes it away.
class TwelveKeyMethod {
public:
    using Time = std::chrono::milliseconds; // since any moment, the same for all calls

    static constexpr Time kNextLetter{1000}; // a letter that is left alone for so long is meant
    static constexpr Time kHold{600}; // a key that is down for so long means its digit

    // What is to be typed now: first the text, then the key.
    struct Typing {
        QString text;
        int key = 0; // Qt::Key; 0: none
        bool operator==(const Typing &) const = default;
    };

    TwelveKeyMethod() = default;
    TwelveKeyMethod(const TwelveKeyMethod &) = delete;
    TwelveKeyMethod &operator=(const TwelveKeyMethod &) = delete;
    virtual ~TwelveKeyMethod() = default;

    // A Qt::Key: a digit, asterisk, number sign, Backspace, Return or Enter, or an arrow. Of the twelve only the first
    // press counts, not its repeats.
    virtual Typing press(int key, Time now) = 0;
    virtual Typing release(int key, Time now) = 0;
    virtual Typing typed(const QString &text) = 0; // by another key than these
    virtual Typing expire(Time now) = 0; // to be called at deadline(); earlier it does nothing
    [[nodiscard]] virtual std::optional<Time> deadline() const = 0;
    virtual void drop() = 0; // what is not confirmed is the editor's now, or nobody's

    [[nodiscard]] virtual QString unconfirmed() const = 0;
    [[nodiscard]] virtual QStringList offers() const = 0; // for the bar: the letters of the key, or words
    [[nodiscard]] virtual int chosen() const = 0; // of the offers; -1: none
    virtual Typing choose(int offer) = 0; // by the pen

    [[nodiscard]] virtual QString mode() const = 0; // "abc"
    virtual void setLanguage(const QString &language) = 0; // "de"
    [[nodiscard]] virtual QString language() const = 0;
    virtual void setNumbers(bool numbers) = 0; // the field takes nothing else
    virtual void nextShift() = 0;
};
