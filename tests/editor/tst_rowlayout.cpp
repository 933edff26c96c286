// Rows without a widget: the table of widths against the toolkit's layout, and the rows after changes against those of
// a text that is laid out at once.
#include "editor/text/graphemes.h"
#include "editor/text/rowlayout.h"

#include <QFontDatabase>
#include <QRandomGenerator>
#include <QTest>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QString random(QRandomGenerator &dice, const QString &alphabet, int length)
{
    QString text;
    while (text.size() < length)
        text += alphabet[dice.bounded(int(alphabet.size()))];
    return text;
}

QList<int> ends(const ParagraphRows &rows)
{
    QList<int> ends;
    for (const RowEnd &row : rows)
        ends << row.end;
    return ends;
}

QList<int> ends(const QTextLayout &layout)
{
    QList<int> ends;
    for (int i = 0; i < layout.lineCount(); ++i)
        ends << layout.lineAt(i).textStart() + layout.lineAt(i).textLength();
    return ends;
}

// When the last glyph of a row reaches over the edge by less than a pixel, the toolkit may wrap the whole row once
// more, anywhere, and so break within a word that need not be broken.
bool isOverhangQuirk(const QString &text, const QList<int> &ours, const QList<int> &theirs)
{
    qsizetype i = 0;
    while (ours.value(i, -1) == theirs.value(i, -1))
        ++i;
    const int our = ours.value(i, int(text.size()));
    const int their = theirs.value(i, int(text.size()));
    return their < our && text[their - 1] != u' ' && text[their] != u' ';
}

}

class TstRowLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tableAgreesWithToolkit_data();
    void tableAgreesWithToolkit();
    void changesGiveTheRowsOfTheWholeText();
    void longParagraphsHaveTheRowsOfTheirWhole_data();
    void longParagraphsHaveTheRowsOfTheirWhole();
    void charactersAreNeverSplit();
};

void TstRowLayout::tableAgreesWithToolkit_data()
{
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("prose") << u"abcdefgh ijklmnopqrs tuvwxyz  ABCDEFG HIJWAVTof "_s;
    QTest::newRow("punctuation") << u"ab cd ef, . ; : ! ? - / ( ) [ ] { } \" ' $ % + = < > | \\ & @ # * ~ ^ ` _1 2 3"_s;
    QTest::newRow("numbers") << u"0123456789.,:/-+%$() a"_s;
    QTest::newRow("letters of other languages") << u"äöüßéèñçøåÆŁőαβγδέωабвгдежЩ «»§ ¡¿"_s;
    QTest::newRow("hardly a space") << u"abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzWWWWiiiiff- "_s;
}

void TstRowLayout::tableAgreesWithToolkit()
{
    QFETCH(QString, alphabet);
    QRandomGenerator dice(4711);
    int quirks = 0;
    QFont italic(u"DejaVu Sans"_s, 11);
    italic.setItalic(true);
    for (const QFont &font : {QFont(u"DejaVu Sans"_s, 9), QFont(u"DejaVu Serif"_s, 14), italic}) {
        for (const RowWrap wrap : {RowWrap::Pixels, RowWrap::Columns, RowWrap::None}) {
            for (int i = 0; i < 80; ++i) {
                const int limit = wrap == RowWrap::Columns ? dice.bounded(1, 40) : dice.bounded(25, 300);
                const RowBreaker breaker({font, wrap, limit, i % 4 == 3});
                const QString text = random(dice, alphabet, dice.bounded(1, 120));
                const ParagraphRows rows = breaker.rows(text);
                const auto layout = breaker.layOut(text);
                QVERIFY2(breaker.isPlain(text), qPrintable(text));
                if (wrap == RowWrap::Columns) { // the toolkit counts glyphs, and those that hang over too
                    int start = 0;
                    for (const RowEnd row : rows) {
                        const QString line = u'|' + text.mid(start, row.end - start);
                        QVERIFY2(line.trimmed().size() <= limit + 1 || (line.startsWith(u"| ") && row.end > start),
                            qPrintable(line));
                        QVERIFY(row.end > start);
                        start = row.end;
                    }
                    continue;
                }
                const QList<int> ours = ends(rows);
                const QList<int> theirs = ends(*layout);
                if (ours != theirs && isOverhangQuirk(text, ours, theirs)) {
                    ++quirks;
                    continue;
                }
                QVERIFY2(ours == theirs,
                    qPrintable(u"%1 limit %2 anywhere %3\n%4\n%5\n%6"_s.arg(font.toString())
                                   .arg(limit)
                                   .arg(i % 4 == 3)
                                   .arg(text, QDebug::toString(ours), QDebug::toString(theirs))));
                const QTextLine line = layout->lineAt(0);
                const int middle = line.textLength() / 2;
                const qreal x = breaker.plainWidth(QStringView(text).left(middle));
                QVERIFY(
                    x > limit || qAbs(x - line.cursorToX(middle)) < 0.1); // behind the edge it keeps the cursor there
            }
        }
    }
    QVERIFY2(quirks <= 12, qPrintable(QString::number(quirks))); // of 480
}

void TstRowLayout::changesGiveTheRowsOfTheWholeText()
{
    QRandomGenerator dice(1);
    const QString alphabet =
        u"abc def ghi\n\nä\u0301\u05d0\u05d1 \u0627\u0628\t\U0001F600x"_s + QChar(0xD800) + QChar(0);
    TextModel model;
    RowLayout layout(model, {QFont(u"DejaVu Sans"_s, 9), RowWrap::Pixels, 60});
    QString text;
    for (int i = 0; i < 3000; ++i) {
        const int from = dice.bounded(int(text.size()) + 1);
        const int to = dice.bounded(3) ? from : std::min(int(text.size()), from + dice.bounded(80));
        const QString added = random(dice, alphabet, dice.bounded(60));
        text.replace(from, to - from, added);
        const int column = model.place(from).column;
        layout.update(model.remove(from, to), column);
        layout.update(model.insert(from, added), column);
        QCOMPARE(model.text(), text);
        if (i % 100 != 0)
            continue;
        TextModel whole;
        whole.setText(text);
        const RowLayout fresh(whole, layout.breaker().rules());
        QCOMPARE(layout.rows(), fresh.rows());
        for (int row = 0; row < layout.rows(); ++row) {
            const RowLayout::Row at = layout.row(row);
            QCOMPARE(at.end, fresh.row(row).end);
            const int offset = layout.startOffset(at);
            QCOMPARE(layout.cell(offset), (Cell{row, 0}));
            QCOMPARE(layout.offset({row, at.end - at.start}), offset + at.end - at.start);
            QCOMPARE(layout.cell(offset + at.end - at.start, true), (Cell{row, at.end - at.start}));
            QCOMPARE(model.text(offset, offset + at.end - at.start), layout.text(at));
            if (layout.breaker().isPlain(model.paragraph(at.paragraph)))
                QCOMPARE(layout.columnAt(row, layout.x({row, 0})), 0);
        }
    }
}

void TstRowLayout::longParagraphsHaveTheRowsOfTheirWhole_data()
{
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("accents") << u"abc de\u0301f ghi\t, jkl\U0001F600 1-2 "_s;
    QTest::newRow("both directions") << u"abc \u05D0\u05D1\u05D2 12, (def) \u05D3 "_s;
    QTest::newRow("from right to left") << u"\u0627\u0644\u0628 \u062C 12, (de) "_s;
    QTest::newRow("ideographs") << u"\u65E5\u672C\u8A9E\u3002\u6F22\u5B57 a1"_s;
    QTest::newRow("ideographs alone") << u"\u65E5\u672C\u8A9E\u6F22\u5B57"_s;
    QTest::newRow("kana") << u"\u65E5\u672C\u3042\u308A\u304C\u3068\u3046\u30AB\u30BF"_s.repeated(20)
            + u"\u30AB\u309A\u3063\u30FC"_s;
    QTest::newRow("hardly a space") << u"\u0E01\u0E02\u0E04abc\u0301"_s.repeated(20) + u' ';
    QTest::newRow("embedded directions") << u"abc d\u0301 \u05D0\u05D1 12 "_s.repeated(50) + u"\u202B\u202C"_s;
}

void TstRowLayout::longParagraphsHaveTheRowsOfTheirWhole()
{
    QFETCH(QString, alphabet);
    QRandomGenerator dice(7);
    for (const auto &[wrap, limit, anywhere] :
        {std::tuple(RowWrap::Pixels, 200, false), {RowWrap::Pixels, 200, true}, {RowWrap::Columns, 30, false}}) {
        QString text = alphabet.first(3) + random(dice, alphabet, 3 * RowBreaker::kStretch);
        TextModel model;
        model.setText(text);
        RowLayout layout(model, {QFont(u"DejaVu Sans"_s, 9), wrap, limit, anywhere});
        for (int i = 0; i < 12; ++i) {
            const auto whole = layout.breaker().layOut(text);
            QCOMPARE(layout.rows(), whole->lineCount());
            for (int row = 0; row < layout.rows(); ++row) {
                const RowLayout::Row at = layout.row(row);
                const QTextLine line = whole->lineAt(row);
                QCOMPARE(at.end, line.textStart() + line.textLength());
                QCOMPARE(at.width, int(std::ceil(line.naturalTextWidth())));
                const int middle = (at.end - at.start) / 2;
                QCOMPARE(layout.x({row, middle}), line.cursorToX(at.start + middle));
                QCOMPARE(layout.columnAt(row, 33), line.xToCursor(33) - at.start);
            }
            const int column = dice.bounded(int(text.size()));
            const int to = dice.bounded(2) ? column : std::min(int(text.size()), column + dice.bounded(90));
            const QString added = random(dice, alphabet, dice.bounded(60));
            text.replace(column, to - column, added);
            layout.update(model.remove(column, to), column);
            layout.update(model.insert(column, added), column);
            layout.setComposition({dice.bounded(int(text.size())), added, 0});
            layout.setComposition({});
        }
    }
}

void TstRowLayout::charactersAreNeverSplit()
{
    const QString text = u"e\u0301\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F600\U0001F600 \u0915\u094D\u0937"_s;
    for (int limit = 1; limit < 60; ++limit) {
        for (const RowEnd row : RowBreaker({QFont(u"DejaVu Sans"_s, 9), RowWrap::Pixels, limit}).rows(text))
            QCOMPARE(graphemes::snapped(text, row.end), row.end);
    }
    QCOMPARE(graphemes::next(text, 0), 2);
    QCOMPARE(graphemes::next(text, 2), 10);
    QCOMPARE(graphemes::previous(text, 10), 2);
}

QTEST_MAIN(TstRowLayout)
#include "tst_rowlayout.moc"
