// One press a letter: the keys are compared with words.
#pragma once

#include "textinput/predictive/predictor.h"
#include "textinput/twelvekeys/multitap.h"

// A word grows with each of 2 to 9 (and 1 within it, for an apostrophe). What else is pressed:
//
// key          | while a word grows                  | otherwise
// -------------+-------------------------------------+----------------------------------------------
// 0            | types it and a space                | a space; held: 0
// 1            | types it, then punctuation          | punctuation, as in MultiTap
// * down up    | next candidate (up: the one before) | * the first of the words offered, or next shift
// #            | types it; not known: forgets it,    | letters instead of words, and back
//              | and takes letters                   |
// right        | types it                            | itself
// Backspace    | takes the last key back             | itself
// others       | type it, then themselves            | themselves
//
// In the states of letters and of digits, and while there are no words to compare with, it is MultiTap.
class WordPrediction : public TwelveKeyMethod {
public:
    struct Options {
        bool completion = true; // longer words are offered
        bool following = true; // and words that may come next
        bool learning = true;
    };

    // The predictor must outlive its use here; null: letters only.
    void setPredictor(Predictor *predictor);
    void setOptions(const Options &options) { m_options = options; }
    void setSecret(bool secret); // nothing that is typed may be learnt or shown
    // What stands before the cursor, as the editor tells it.
    void setTextBefore(const QString &text);

    Typing press(int key, Time now) override;
    Typing release(int key, Time now) override;
    Typing typed(const QString &text) override;
    Typing expire(Time now) override;
    [[nodiscard]] std::optional<Time> deadline() const override;
    void drop() override;

    [[nodiscard]] QString unconfirmed() const override;
    [[nodiscard]] QStringList offers() const override;
    [[nodiscard]] int chosen() const override;
    Typing choose(int offer) override;

    [[nodiscard]] QString mode() const override;
    void setLanguage(const QString &language) override;
    [[nodiscard]] QString language() const override { return m_letters.language(); }
    void setNumbers(bool numbers) override;
    void nextShift() override;

private:
    [[nodiscard]] bool hasWords() const;
    [[nodiscard]] bool takesWords() const;
    [[nodiscard]] bool grows() const { return m_chosen >= 0; }
    Typing pressInWord(int key);
    Typing pressDigit(int digit, Time now);
    Typing releaseSign(int key);
    Typing hold();
    QString accept(); // the word that grows
    Typing out(const Typing &typing); // everything that is typed passes here
    void learn();
    void look(); // which words fit the keys
    void endWord();
    void forgetBefore();
    void shiftForSentence();
    [[nodiscard]] QString shifted(const QString &word) const;

    MultiTap m_letters;
    Predictor *m_predictor = nullptr;
    Options m_options;
    bool m_secret = false;
    bool m_byLetter = false; // the user wants letters
    QByteArray m_keys; // of the word that grows
    QStringList m_offered; // words for the keys, or words that may come next
    int m_chosen = -1; // -1: no word grows
    bool m_isKnown = true; // some word begins with the keys
    QString m_before; // what stands before the cursor, as far as it is known; null: nothing is
    int m_untold = 0; // of its last characters: the editor has not told of them yet
    bool m_capital = false; // the sentence asked for the one that is to come
    int m_down = 0; // Qt::Key of ours that may yet be held long enough
    Time m_downSince{0};
};
