// Words by one press a letter: dictionaries, what is learnt, and what keys make of both.
#include "tests/support/keyscript.h"
#include "tests/support/testfiles.h"
#include "textinput/predictive/dictionaryformat.h"
#include "textinput/predictive/wordprediction.h"

#include <QFile>
#include <QProcess>
#include <QTest>

namespace {

const QString kFile = u"/tmp/en.dictionary"_s;

bool make(const QByteArray &list)
{
    fill(u"/tmp/list"_s, list);
    return QProcess::execute(
               QStringLiteral(TYX_BINARY_DIR "/bin/tyx-make-dictionary"), {u"en"_s, u"/tmp/list"_s, kFile})
        == 0;
}

QByteArray aFewWords()
{
    return "good\t4\nhome\t6\ngone\t9\nhoneymoon\t12\ngo\t1\nin\t3\nit\t1\nit's\t3\ndon't\t5\nhe\t2\nI\t1\n"
           "no word\t3\n\nx\ty\tz\n"; // the last lines are none
}

QStringList texts(const QList<RankedWord> &words)
{
    QStringList texts;
    for (const RankedWord &word : words)
        texts.append(word.text);
    texts.sort();
    return texts;
}

}

class TstPrediction : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDictionaryFindsWordsByTheirKeys();
    void manyWordsAreRepresentedByTheBest();
    void damagedDictionariesAreNone();
    void hostileUserWordsAreLeftOut_data();
    void hostileUserWordsAreLeftOut();
    void userWordsStayFew();
    void whatWasTypedComesFirst();
    void types_data();
    void types();
    void digitsEndTheWord();
    void lettersWorkWithoutWords();
    void secretsAreNotLearnt();
    void theEditorsTextDecidesCapitals();
};

void TstPrediction::aDictionaryFindsWordsByTheirKeys()
{
    QVERIFY(make(aFewWords()));
    const auto dictionary = Dictionary::open(kFile);
    QVERIFY(dictionary);
    QCOMPARE(texts(dictionary->exact("4663")), (QStringList{u"gone"_s, u"good"_s, u"home"_s}));
    QCOMPARE(texts(dictionary->longer("466")), (QStringList{u"gone"_s, u"good"_s, u"home"_s, u"honeymoon"_s}));
    QCOMPARE(dictionary->exact("36618"), (QList<RankedWord>{{u"don't"_s, 5}}));
    QVERIFY(dictionary->exact("466").isEmpty() && dictionary->begins("466") && !dictionary->begins("9"));
    QVERIFY(make("")); // a machine without word lists
    QVERIFY(!Dictionary::open(kFile));
}

void TstPrediction::manyWordsAreRepresentedByTheBest()
{
    QByteArray list;
    for (int i = 0; i < 1000; ++i) {
        QByteArray word = "aa";
        for (int rest = i; word.size() < 7; rest /= 3)
            word += char('a' + rest % 3);
        list += word + char('a' + i % 26) + '\t' + QByteArray::number(i == 700 ? 1 : 20) + '\n';
    }
    QVERIFY(make(list));
    const auto dictionary = Dictionary::open(kFile);
    const QList<RankedWord> best = dictionary->longer("22");
    QCOMPARE(best.size(), dictionaryformat::kBestWords);
    QCOMPARE(std::ranges::min(best, {}, &RankedWord::rank).rank, 1);
}

void TstPrediction::damagedDictionariesAreNone()
{
    QVERIFY(make(aFewWords()));
    QFile file(kFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    const auto opens = [](const QByteArray &bytes) {
        fill(kFile, bytes);
        return Dictionary::open(kFile) != nullptr;
    };
    QVERIFY(opens(whole));
    for (qsizetype size = 0; size < whole.size(); size += 7)
        QVERIFY(!opens(whole.first(size)));
    for (qsizetype at = 0; at < whole.size(); at += 5) {
        QByteArray bytes = whole;
        bytes[at] = char(bytes[at] ^ 0x55);
        const bool isUnused = at >= dictionaryformat::kMagicSize && at < dictionaryformat::kHashAt;
        QCOMPARE(opens(bytes), isUnused);
    }
    QVERIFY(!opens(whole + 'x'));
}

void TstPrediction::hostileUserWordsAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("in the order of their use")
        << QByteArray("b\t2\na\t9\na\tb\t3\n") << QByteArray("b\t2\na\t9\na\tb\t3\n");
    QTest::newRow("no words") << QByteArray("\n\t\n1\t2\na b\t3\n\xff\xfe\t4\n'a\t1\na\t1\t2\t3\n") << QByteArray();
    QTest::newRow("no uses") << QByteArray("a\nb\t\nc\t0\nd\t-5\ne\t99999999999999\nf\tx\n") << QByteArray();
    QTest::newRow("too long") << QByteArray(33, 'a') + "\t3\n" + QByteArray(32, 'b') + "\t3"
                              << QByteArray(32, 'b') + "\t3\n";
    QTest::newRow("uses have a limit") << QByteArray("a\t2000000000\na\t2000000000") << QByteArray("a\t1000000\n");
    QTest::newRow("a huge file") << QByteArray("a\t1\n") + QByteArray(UserDictionary::kLargestFile, 'x') + "\nb\t1\n"
                                 << QByteArray("a\t1\n");
}

void TstPrediction::hostileUserWordsAreLeftOut()
{
    QFETCH(QByteArray, text);
    UserDictionary words(keyletters::of(u"en"_s));
    words.read(text);
    QTEST(words.write(), "kept");
}

void TstPrediction::userWordsStayFew()
{
    UserDictionary words(keyletters::of(u"en"_s));
    const auto nth = [](int n) {
        QString word;
        for (; word.size() < 4; n /= 26)
            word += QChar(u'a' + n % 26);
        return word;
    };
    for (int i = 0; i < 9000; ++i) {
        words.learn(nth(i + 1), nth(i));
        words.learn({}, u"often"_s);
    }
    QVERIFY(words.beginning("").size() <= UserDictionary::kMostWords);
    QVERIFY(words.write().count('\n') <= UserDictionary::kMostWords + UserDictionary::kMostPairs);
    QVERIFY(words.write().size() < UserDictionary::kLargestFile);
    QVERIFY(words.following(nth(9000)).contains(nth(8999)) && words.following(nth(1)).isEmpty());
    QCOMPARE(words.beginning("63836").size(), 1); // the one that is used
}

void TstPrediction::whatWasTypedComesFirst()
{
    QVERIFY(make(aFewWords()));
    Predictor predictor(keyletters::of(u"en"_s), Dictionary::open(kFile));
    const auto first = [&](const QString &before) { return predictor.candidates("4663", before).exact.join(u' '); };
    QCOMPARE(first({}), u"good home gone"_s);
    predictor.user().learn(u"At"_s, u"home"_s);
    QCOMPARE(first({}), u"home good gone"_s);
    predictor.user().learn({}, u"hood"_s);
    predictor.user().learn({}, u"gone"_s);
    predictor.user().learn({}, u"gone"_s);
    QCOMPARE(first({}), u"gone home good hood"_s);
    QCOMPARE(first(u"at"_s), u"home gone good hood"_s);
    QCOMPARE(predictor.following(u"at"_s), QStringList{u"home"_s});
    QVERIFY(predictor.candidates("", {}).longer.isEmpty());
}

void TstPrediction::types_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("out");
    QTest::newRow("the likeliest word") << u"46630"_s << u"good "_s;
    QTest::newRow("asterisk and up choose another") << u"4663**^0"_s << u"home "_s;
    QTest::newRow("around") << u"4663*****0"_s << u"home "_s; // three words, and the one they begin
    QTest::newRow("a beginning is shown as far as it is typed") << u"466"_s << u"[goo]"_s;
    QTest::newRow("and completed") << u"46639*#"_s << u"honeymoon"_s;
    QTest::newRow("Backspace takes a key back") << u"466<"_s << u"[go]"_s;
    QTest::newRow("and what was before when no word is left") << u"46<<<"_s << u"<"_s;
    QTest::newRow("right and Return end the word") << u"46>48/"_s << u"goit/"_s;
    QTest::newRow("one is an apostrophe within a word") << u"36618"_s << u"[don't]"_s;
    QTest::newRow("or the end, when what follows it is taken back") << u"36618<"_s << u"[don.]"_s;
    QTest::newRow("or ends the sentence") << u"481046"_s << u"it. [Go]"_s;
    QTest::newRow("whatever follows") << u"48146"_s << u"it.[go]"_s;
    QTest::newRow("behind a word that needs none, punctuation as with letters") << u"461146"_s << u"go,[go]"_s;
    QTest::newRow("held: its digit") << u"465!"_s << u"go5"_s;
    QTest::newRow("held zero and asterisk") << u"460!*!"_s << u"go0*"_s;
    QTest::newRow("a capital for one word") << u"*46048"_s << u"Go [it]"_s;
    QTest::newRow("capitals, for another choice too") << u"**4663*"_s << u"[HOME]"_s;
    QTest::newRow("unknown: letters as they come, then by letter") << u"4699"_s << u"[goww]"_s;
    QTest::newRow("which number sign starts") << u"4699#999#"_s << u"y"_s;
    QTest::newRow("letters and back") << u"#44##46"_s << u"h[go]"_s;
    QTest::newRow("words that followed before are offered") << u"480460480*0"_s << u"it go it go "_s;
    QTest::newRow("and a space is put before what follows them") << u"480460480*46"_s << u"it go it go [go]"_s;
    QTest::newRow("digits") << u"***460"_s << u"460"_s;
}

void TstPrediction::types()
{
    QFETCH(QString, keys);
    QVERIFY(make(aFewWords()));
    Predictor predictor(keyletters::of(u"en"_s), Dictionary::open(kFile));
    WordPrediction method;
    method.setPredictor(&predictor);
    QTEST(Script(method).play(keys), "out");
}

void TstPrediction::digitsEndTheWord()
{
    QVERIFY(make(aFewWords()));
    Predictor predictor(keyletters::of(u"en"_s), Dictionary::open(kFile));
    WordPrediction method;
    method.setPredictor(&predictor);
    QCOMPARE(Script(method).play(u"46"_s), u"[go]"_s);
    for (int i = 0; i < 3; ++i)
        method.nextShift(); // on the title strip
    QCOMPARE(Script(method).play(u"5"_s), u"go5"_s);
}

void TstPrediction::lettersWorkWithoutWords()
{
    Predictor predictor(keyletters::of(u"de"_s), nullptr);
    WordPrediction method;
    method.setLanguage(u"de"_s);
    method.setPredictor(&predictor);
    QCOMPARE(Script(method).play(u"222.2222.0."_s), u"cä "_s);
    QCOMPARE(method.mode(), u"abc+"_s); // it knows a word now
    QCOMPARE(Script(method).play(u"22"_s), u"[cä]"_s);
}

void TstPrediction::secretsAreNotLearnt()
{
    QVERIFY(make(aFewWords()));
    Predictor predictor(keyletters::of(u"en"_s), Dictionary::open(kFile));
    WordPrediction method;
    method.setPredictor(&predictor);
    method.setSecret(true);
    QCOMPARE(Script(method).play(u"4.6.0."_s), u"gm "_s);
    method.setSecret(false);
    method.setOptions({.learning = false});
    QCOMPARE(Script(method).play(u"460"_s), u"go "_s);
    QCOMPARE(predictor.user().write(), QByteArray());
    method.setOptions({});
    QCOMPARE(Script(method).play(u"460"_s), u"go "_s);
    QCOMPARE(predictor.user().write(), QByteArray("go\t1\ngo\tgo\t1\n"));
}

void TstPrediction::theEditorsTextDecidesCapitals()
{
    QVERIFY(make(aFewWords()));
    Predictor predictor(keyletters::of(u"en"_s), Dictionary::open(kFile));
    WordPrediction method;
    method.setPredictor(&predictor);
    method.setTextBefore(u""_s);
    QCOMPARE(Script(method).play(u"460"_s), u"Go "_s);
    method.setTextBefore(u"Go "_s);
    method.setTextBefore(u""_s); // the application has sent the text and cleared its field
    QCOMPARE(Script(method).play(u"460"_s), u"Go "_s);
    method.setTextBefore(u""_s); // comes late: it is known better
    QCOMPARE(Script(method).play(u"46>^"_s), u"go^"_s);
    method.setTextBefore(u"Oh! "_s);
    QCOMPARE(Script(method).play(u"46>/"_s), u"Go/"_s);
    method.setTextBefore(u"Oh, "_s);
    QCOMPARE(method.mode(), u"abc+"_s);
    method.setTextBefore(QString(9000, u'x'));
    QCOMPARE(Script(method).play(u"46#"_s), u"go"_s);
}

QTEST_GUILESS_MAIN(TstPrediction)
#include "tst_prediction.moc"
