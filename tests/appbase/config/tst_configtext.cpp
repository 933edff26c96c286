// The text form of a configuration: how lines are read, in which order they are written.
#include "appbase/config/configtext.h"

#include <QTest>

using config::ConfigText;

class TstConfigText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void canonical_data();
    void canonical();
    void bytesBecomeCharacters_data();
    void bytesBecomeCharacters();
    void changesKeepTheOrder();
};

// The whole of the format is: what is a text when it has been read and written again?
void TstConfigText::canonical_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char *name, const char16_t *text, const char *written) {
        QTest::newRow(name) << QString::fromUtf16(text) << QByteArray(written);
    };
    row("nothing", u"", "");
    row("sorted, one blank around the sign", u"[b]\ny=2\nx   =1\n[a]\n", "[a]\n[b]\nx = 1\ny = 2\n");
    row("sorted by code units: a surrogate is before U+E000",
        u"[\uFF21]\n[\U0001F600]\n\uE000=1\n\U00010000=2\nz=3\nZ=4\n",
        "[\U0001F600]\nZ = 4\nz = 3\n\U00010000 = 2\n\uE000 = 1\n[\uFF21]\n");
    row("no line feed at the end", u"[G]\na=1", "[G]\na = 1\n");
    row("blank lines and carriage returns", u"\n \t\n[G]\r\n\r\na = 1\r\n", "[G]\na = 1\n");
    row("an entry before any header", u"k=v\n[G]\na=1\n", "");
    row("a stray line ends reading", u"[G]\na=1\njunk\nb=2\n[H]\n", "[G]\na = 1\n");
    row("no comments: without a sign it is stray", u"[G]\n#note\na=1\n", "[G]\n");
    row("no comments: with a sign it is an entry", u"[G]\n# x = 1\n", "[G]\n# x = 1\n");
    row("a second header drops the first one's entries", u"[G]\na=1\n[H]\n[G]\nb=2\n", "[G]\nb = 2\n[H]\n");
    row("even when nothing follows it", u"[G]\na=1\n[G]\n", "[G]\n");
    row("the last of equal keys stays", u"[G]\nb=0\na=1\na=3\na=2\n", "[G]\na = 2\nb = 0\n");
    row("the first sign splits", u"[G]\n  key   =   va=lue  \n", "[G]\nkey = va=lue\n");
    row("no key, no value", u"[G]\n=\n", "[G]\n = \n");
    row("blanks inside brackets are the name's", u"  [ G ]\nk=v\n", "[ G ]\nk = v\n");
    row("no closing bracket", u"[ G\nk=v\n", "[ G]\nk = v\n");
    row("something behind the bracket", u"[G] x\n[H]]\n", "[G] x]\n[H]]\n");
    row("nothing between the brackets", u"[]\nk=v\n[\nl=w\n", "[]\nl = w\n");
    row("any white space is stripped", u"[G]\n\u3000k\u00A0=\v\u2029v\u0085\f\n", "[G]\nk = v\n");
    row("what only looks like it is not", u"[G]\n\u200Bk=v\uFEFF\n", "[G]\n\xE2\x80\x8Bk = v\xEF\xBB\xBF\n");
}

void TstConfigText::canonical()
{
    QFETCH(QString, text);
    QTEST(ConfigText(text).format(), "written");
}

void TstConfigText::bytesBecomeCharacters_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("value"); // of k in G
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF[G]\nk=v\n") << QStringLiteral("v");
    QTest::newRow("a mark elsewhere is a character")
        << QByteArray("[G]\nk=\xEF\xBB\xBFv\n") << QStringLiteral("\uFEFFv");
    QTest::newRow("no UTF-8") << QByteArray("[G]\nk=a\xE4\xF6z\n") << QStringLiteral("a\uFFFD\uFFFDz");
    QTest::newRow("cut off by the line's end")
        << QByteArray("[G]\nk=a\xE2\x82\nl=2\n") << QStringLiteral("a\uFFFD\uFFFD");
    QTest::newRow("a surrogate in UTF-8")
        << QByteArray("[G]\nk=\xED\xA0\x80\n") << QStringLiteral("\uFFFD\uFFFD\uFFFD");
    QTest::newRow("NUL") << QByteArray("[G]\nk=a\0b\n", 10) << QString::fromLatin1("a\0b", 3);
}

void TstConfigText::bytesBecomeCharacters()
{
    QFETCH(QByteArray, bytes);
    QTEST(config::lookUp(config::decoded(bytes), u"G", u"k").value.toString(), "value");
}

void TstConfigText::changesKeepTheOrder()
{
    ConfigText whole(QStringLiteral("[m]\nm=0\n"));
    for (const char16_t *name : {u"z", u"a", u"m", u"q"}) {
        const QString text = QString::fromUtf16(name);
        whole.ensure(text).set(text, text);
        whole.find(u"m")->set(text, text);
    }
    whole.find(u"m")->remove(u"q");
    whole.find(u"m")->remove(u"none");
    whole.remove(u"z");
    whole.remove(u"none");
    QCOMPARE(whole.format(), QByteArray("[a]\na = a\n[m]\na = a\nm = m\nz = z\n[q]\nq = q\n"));
}

QTEST_APPLESS_MAIN(TstConfigText)
#include "tst_configtext.moc"
