// Words by one press a letter: dictionaries, what is learnt, and what keys make of both.
#include "tests/support/keyscript.h"
#include "tests/support/testfiles.h"
#include "textinput/predictive/dictionaryformat.h"
#include "textinput/predictive/userwordsfile.h"
#include "textinput/predictive/wordprediction.h"

#include <QDir>
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

auto aFewWords()
{
    const bool isMade =
        make("good\t4\nhome\t6\ngone\t9\nhoneymoon\t12\ngo\t1\nin\t3\nit\t1\nit's\t3\ndon't\t5\nhe\t2\nI\t1\n"
             "no word\t3\n\nx\ty\tz\n"); // the last lines are none
    return isMade ? Dictionary::open(kFile) : nullptr;
}

// A method that knows them.
struct Words {
    Words() { method.setPredictor(&predictor); }
    Predictor predictor{keyletters::of(u"en"_s), aFewWords()};
    WordPrediction method;
};

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
    void hostileUserWordsAreLeftOut();
    void userWordsStayFew();
    void unreadableUserWordsAreLeftAlone();
    void unsavedUserWordsAreTriedAgain();
    void whatWasTypedComesFirst();
    void types();
    void digitsEndTheWord();
    void lettersWorkWithoutWords();
    void secretsAreNotLearnt();
    void theEditorsTextDecidesCapitals();
};

void TstPrediction::aDictionaryFindsWordsByTheirKeys()
{
    const auto dictionary = aFewWords();
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
    QVERIFY(aFewWords());
    const QByteArray whole = content(kFile);
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

void TstPrediction::hostileUserWordsAreLeftOut()
{
    const auto kept = [](const QByteArray &text) {
        UserDictionary words(keyletters::of(u"en"_s));
        words.read(text);
        return words.write();
    };
    QCOMPARE(kept("b\t2\na\t9\na\tb\t3\n"), "b\t2\na\t9\na\tb\t3\n"); // in the order of their use
    QCOMPARE(kept("\n\t\n1\t2\na b\t3\n\xff\xfe\t4\n'a\t1\na\t1\t2\t3\n"), ""); // no words
    QCOMPARE(kept("a\nb\t\nc\t0\nd\t-5\ne\t99999999999999\nf\tx\n"), ""); // no uses
    QCOMPARE(kept(QByteArray(33, 'a') + "\t3\n" + QByteArray(32, 'b') + "\t3"), QByteArray(32, 'b') + "\t3\n");
    QCOMPARE(kept("a\t2000000000\na\t2000000000"), "a\t1000000\n");
    QCOMPARE(kept("a\t1\n" + QByteArray(UserDictionary::kLargestFile, 'x') + "\nb\t1\n"), "a\t1\n");
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

void TstPrediction::unreadableUserWordsAreLeftAlone()
{
    const QString path = u"/tmp/words-en.txt"_s;
    const QByteArray huge(UserDictionary::kLargestFile + 1, 'x');
    fill(path, huge);
    UserDictionary words(keyletters::of(u"en"_s));
    UserWordsFile file(path, words);
    words.learn({}, u"go"_s);
    file.save();
    QVERIFY(content(path) == huge);
    QVERIFY(QFile::remove(path));
}

void TstPrediction::unsavedUserWordsAreTriedAgain()
{
    const QString path = u"/tmp/later/words-en.txt"_s;
    UserDictionary words(keyletters::of(u"en"_s));
    UserWordsFile file(path, words);
    words.learn({}, u"go"_s);
    file.save(); // there is no such folder
    QVERIFY(QDir().mkdir(u"/tmp/later"_s));
    file.saveMany();
    QCOMPARE(content(path), QByteArray("(no file)")); // one word is not many
    file.save();
    QCOMPARE(content(path), QByteArray("go\t1\n"));
    QFile::remove(path);
    file.save(); // nothing is new
    QCOMPARE(content(path), QByteArray("(no file)"));
}

void TstPrediction::whatWasTypedComesFirst()
{
    Predictor predictor(keyletters::of(u"en"_s), aFewWords());
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

void TstPrediction::types()
{
    const auto typed = [](const QString &keys) {
        Words words;
        return Script(words.method).play(keys);
    };
    QCOMPARE(typed(u"46630"_s), u"good "_s); // the likeliest word
    QCOMPARE(typed(u"4663**^0"_s), u"home "_s); // asterisk and up choose another
    QCOMPARE(typed(u"4663*****0"_s), u"home "_s); // around three words, and the one they begin
    QCOMPARE(typed(u"466"_s), u"[goo]"_s); // a beginning is shown as far as it is typed
    QCOMPARE(typed(u"46639*#"_s), u"honeymoon"_s); // and completed
    QCOMPARE(typed(u"466<"_s), u"[go]"_s); // Backspace takes a key back
    QCOMPARE(typed(u"46<<<"_s), u"<"_s); // and what was before when no word is left
    QCOMPARE(typed(u"46>48/"_s), u"goit/"_s); // right and Return end the word
    QCOMPARE(typed(u"36618"_s), u"[don't]"_s); // one is an apostrophe within a word
    QCOMPARE(typed(u"36618<"_s), u"[don.]"_s); // or the end, when what follows it is taken back
    QCOMPARE(typed(u"481046"_s), u"it. [Go]"_s); // or ends the sentence
    QCOMPARE(typed(u"48146"_s), u"it.[go]"_s); // whatever follows
    QCOMPARE(typed(u"461146"_s), u"go,[go]"_s); // behind a word that needs none, punctuation as with letters
    QCOMPARE(typed(u"465!"_s), u"go5"_s); // held: its digit
    QCOMPARE(typed(u"460!*!"_s), u"go0*"_s); // held zero and asterisk
    QCOMPARE(typed(u"*46048"_s), u"Go [it]"_s); // a capital for one word
    QCOMPARE(typed(u"**4663*"_s), u"[HOME]"_s); // capitals, for another choice too
    QCOMPARE(typed(u"4699"_s), u"[goww]"_s); // unknown: letters as they come, then by letter
    QCOMPARE(typed(u"4699#999#"_s), u"y"_s); // which number sign starts
    QCOMPARE(typed(u"#44##46"_s), u"h[go]"_s); // letters and back
    QCOMPARE(typed(u"480460480*0"_s), u"it go it go "_s); // words that followed before are offered
    QCOMPARE(typed(u"480460480*46"_s), u"it go it go [go]"_s); // and a space is put before what follows them
    QCOMPARE(typed(u"***460"_s), u"460"_s); // digits
}

void TstPrediction::digitsEndTheWord()
{
    Words words;
    WordPrediction &method = words.method;
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
    Words words;
    WordPrediction &method = words.method;
    method.setSecret(true);
    QCOMPARE(Script(method).play(u"4.6.0."_s), u"gm "_s);
    method.setSecret(false);
    method.setOptions({.learning = false});
    QCOMPARE(Script(method).play(u"460"_s), u"go "_s);
    QCOMPARE(words.predictor.user().write(), QByteArray());
    method.setOptions({});
    QCOMPARE(Script(method).play(u"460"_s), u"go "_s);
    QCOMPARE(words.predictor.user().write(), QByteArray("go\t1\ngo\tgo\t1\n"));
}

void TstPrediction::theEditorsTextDecidesCapitals()
{
    Words words;
    WordPrediction &method = words.method;
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
