// The letters of the twelve keys: what is typed when, by a clock that the tests feed.
#include "tests/support/keyscript.h"
#include "textinput/twelvekeys/multitap.h"

#include <QTest>

class TstMultiTap : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKeyGoesAroundItsLetters_data();
    void everyKeyGoesAroundItsLetters();
    void types_data();
    void types();
    void numberSignChangesTheLanguage();
    void whatIsOfferedCanBeChosen();
};

void TstMultiTap::everyKeyGoesAroundItsLetters_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("all"); // of keys 2 to 9
    QTest::newRow("English") << u"en"_s << u"abc2def3ghi4jkl5mno6pqrs7tuv8wxyz9"_s;
    QTest::newRow("German") << u"de"_s << u"abcä2def3ghi4jkl5mnoö6pqrsß7tuvü8wxyz9"_s;
    QTest::newRow("French") << u"fr"_s << u"abcàâçæ2deféèêë3ghiîï4jkl5mnoôœ6pqrs7tuvùûü8wxyzÿ9"_s;
    QTest::newRow("Russian") << u"ru"_s << u"абвг2деёжз3ийкл4мноп5рсту6фхцч7шщъы8ьэюя9"_s;
    QTest::newRow("no such language: English") << u"xx"_s << u"abc2def3ghi4jkl5mno6pqrs7tuv8wxyz9"_s;
}

void TstMultiTap::everyKeyGoesAroundItsLetters()
{
    QFETCH(QString, language);
    QString went;
    for (char digit = '2'; digit <= '9'; ++digit) {
        MultiTap method;
        method.setLanguage(language);
        QString first;
        for (int times = 1;; ++times) {
            method.drop();
            const QString out = Script(method).play(QString(times, QLatin1Char(digit)));
            if (times == 1)
                first = out;
            else if (out == first)
                break; // it went around
            went += out.mid(1, out.size() - 2);
            QVERIFY(times < 20);
        }
    }
    QTEST(went, "all");
}

void TstMultiTap::types_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("out");
    QTest::newRow("another key confirms") << u"4433"_s << u"h[e]"_s;
    QTest::newRow("the same key in time goes on") << u"2,2"_s << u"[b]"_s;
    QTest::newRow("a second after the last press it is confirmed") << u"2,2,,.2"_s << u"b[a]"_s;
    QTest::newRow("number sign confirms at once") << u"2#2"_s << u"a[a]"_s;
    QTest::newRow("right confirms, and moves when there is nothing") << u"2>2>>"_s << u"aa>"_s;
    QTest::newRow("up and Return confirm first") << u"2^3/"_s << u"a^d/"_s;
    QTest::newRow("Backspace takes the letter that is pending, then others") << u"23<<"_s << u"a<"_s;
    QTest::newRow("after Backspace the key begins anew") << u"22<2"_s << u"[a]"_s;
    QTest::newRow("held: the digit, whatever was pending on the key") << u"22!3"_s << u"2[d]"_s;
    QTest::newRow("held after another key") << u"35!"_s << u"d5"_s;
    QTest::newRow("one capital") << u"*22.3"_s << u"B[d]"_s;
    QTest::newRow("punctuation and a space do not use it up") << u"*1.0.2"_s << u". [A]"_s;
    QTest::newRow("capitals, which ß has none of") << u"**23"_s << u"A[D]"_s;
    QTest::newRow("digits at once") << u"***4401"_s << u"4401"_s;
    QTest::newRow("and around to small letters") << u"****4"_s << u"[g]"_s;
    QTest::newRow("asterisk confirms with the shift of before") << u"2*2"_s << u"a[A]"_s;
    QTest::newRow("held, asterisk and number sign type themselves") << u"2*!#!2"_s << u"a*#[a]"_s;
    QTest::newRow("zero is a space, then itself") << u"0.00"_s << u" [0]"_s;
    QTest::newRow("punctuation goes around") << u"11"_s << u"[,]"_s;
}

void TstMultiTap::types()
{
    QFETCH(QString, keys);
    MultiTap method;
    QTEST(Script(method).play(keys), "out");
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
