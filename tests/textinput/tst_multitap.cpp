// The letters of the twelve keys: what is typed when, by a clock that the tests feed.
#include "tests/support/keyscript.h"
#include "textinput/twelvekeys/multitap.h"

#include <QTest>

class TstMultiTap : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKeyGoesAroundItsLetters();
    void types();
    void numberSignChangesTheLanguage();
    void whatIsOfferedCanBeChosen();
};

void TstMultiTap::everyKeyGoesAroundItsLetters()
{
    const auto letters = [](const QString &language) { // of keys 2 to 9
        QString went;
        for (char digit = '2'; digit <= '9'; ++digit) {
            MultiTap method;
            method.setLanguage(language);
            QString first;
            for (int times = 1; times < 20; ++times) {
                method.drop();
                const QString out = Script(method).play(QString(times, QLatin1Char(digit)));
                if (times == 1)
                    first = out;
                else if (out == first)
                    break; // it went around
                went += out.mid(1, out.size() - 2);
            }
        }
        return went;
    };
    QCOMPARE(letters(u"en"_s), u"abc2def3ghi4jkl5mno6pqrs7tuv8wxyz9"_s);
    QCOMPARE(letters(u"de"_s), u"abcä2def3ghi4jkl5mnoö6pqrsß7tuvü8wxyz9"_s);
    QCOMPARE(letters(u"fr"_s), u"abcàâçæ2deféèêë3ghiîï4jkl5mnoôœ6pqrs7tuvùûü8wxyzÿ9"_s);
    QCOMPARE(letters(u"ru"_s), u"абвг2деёжз3ийкл4мноп5рсту6фхцч7шщъы8ьэюя9"_s);
    QCOMPARE(letters(u"xx"_s), letters(u"en"_s));
}

void TstMultiTap::types()
{
    const auto typed = [](const QString &keys) {
        MultiTap method;
        return Script(method).play(keys);
    };
    QCOMPARE(typed(u"4433"_s), u"h[e]"_s); // another key confirms
    QCOMPARE(typed(u"2,2"_s), u"[b]"_s); // the same key in time goes on
    QCOMPARE(typed(u"2,2,,.2"_s), u"b[a]"_s); // a second after the last press it is confirmed
    QCOMPARE(typed(u"2#2"_s), u"a[a]"_s); // number sign confirms at once
    QCOMPARE(typed(u"2>2>>"_s), u"aa>"_s); // right confirms, and moves when there is nothing
    QCOMPARE(typed(u"2^3/"_s), u"a^d/"_s); // up and Return confirm first
    QCOMPARE(typed(u"23<<"_s), u"a<"_s); // Backspace takes the letter that is pending, then others
    QCOMPARE(typed(u"22<2"_s), u"[a]"_s); // after Backspace the key begins anew
    QCOMPARE(typed(u"22!3"_s), u"2[d]"_s); // held: the digit, whatever was pending on the key
    QCOMPARE(typed(u"35!"_s), u"d5"_s); // held after another key
    QCOMPARE(typed(u"*22.3"_s), u"B[d]"_s); // one capital
    QCOMPARE(typed(u"*1.0.2"_s), u". [A]"_s); // punctuation and a space do not use it up
    QCOMPARE(typed(u"**23"_s), u"A[D]"_s); // capitals, which ß has none of
    QCOMPARE(typed(u"***4401"_s), u"4401"_s); // digits at once
    QCOMPARE(typed(u"****4"_s), u"[g]"_s); // and around to small letters
    QCOMPARE(typed(u"2*2"_s), u"a[A]"_s); // asterisk confirms with the shift of before
    QCOMPARE(typed(u"2*!#!2"_s), u"a*#[a]"_s); // held, asterisk and number sign type themselves
    QCOMPARE(typed(u"0.00"_s), u" [0]"_s); // zero is a space, then itself
    QCOMPARE(typed(u"11"_s), u"[,]"_s); // punctuation goes around
}

void TstMultiTap::numberSignChangesTheLanguage()
{
    MultiTap method;
    QCOMPARE(Script(method).play(u"#2."_s), u"a"_s);
    method.setLanguages(u"en"_s, u"ru"_s);
    QCOMPARE(Script(method).play(u"2#2.#2.##2."_s), u"aaаа"_s); // Latin, Latin, Cyrillic twice
    method.setLanguages(u"de"_s, u"de"_s);
    QCOMPARE(Script(method).play(u"#2."_s), u"а"_s);
}

void TstMultiTap::whatIsOfferedCanBeChosen()
{
    MultiTap method;
    method.setLanguage(u"de"_s);
    method.setNumbers(true);
    QCOMPARE(Script(method).play(u"7"_s), u"7"_s);
    QVERIFY(method.offers().isEmpty());
    QCOMPARE(method.choose(0), MultiTap::Typing{});
    method.setNumbers(false);
    method.nextShift();
    QCOMPARE(Script(method).play(u"77"_s), u"[Q]"_s);
    QCOMPARE(method.offers().join(u' '), u"P Q R S ß 7"_s);
    QCOMPARE(method.chosen(), 1);
    QCOMPARE(method.choose(6), MultiTap::Typing{});
    QCOMPARE(method.choose(4).text, u"ß"_s);
    QCOMPARE(Script(method).play(u"7"_s), u"[p]"_s);
}

QTEST_GUILESS_MAIN(TstMultiTap)
#include "tst_multitap.moc"
