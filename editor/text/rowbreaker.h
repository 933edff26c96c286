// Breaks one paragraph into rows, and knows where in a row its characters are.
#pragma once

#include <QFont>
#include <QTextLayout>
#include <QVarLengthArray>
#include <array>
#include <memory>
#include <vector>

enum class RowWrap { None, Pixels, Columns };
enum class RowEcho { Plain, Masked, Hidden }; // masked: every unit is an asterisk; hidden: nothing is shown

struct RowRules {
    QFont font;
    RowWrap wrap = RowWrap::Pixels;
    int limit = 0; // of a row, in pixels or characters
    bool anywhere = false; // break within words too
    int tabStop = 80; // pixels
    RowEcho echo = RowEcho::Plain;
};

struct RowEnd {
    int end; // column in the paragraph
    int width; // pixels, rounded up
};
using ParagraphRows = QVarLengthArray<RowEnd, 3>;

// What the toolkit's text layout answers, without kerning and ligatures. Paragraphs of Latin, Greek and Cyrillic
// letters, which are nearly all, get the same answers from a table of the widths of their characters, a hundred times
// as fast; whatever has to be shaped, joined, reordered or taken from another font goes to the toolkit.
//
// Rows break after white space, which hangs over the edge, and where the Unicode line breaking algorithm allows it; a
// word that is longer than a row breaks where it is full, never within a character of several units. A row has one
// character at least, however narrow it is.
class RowBreaker {
public:
    explicit RowBreaker(const RowRules &rules) { setRules(rules); }
    void setRules(const RowRules &rules);
    static int limited(int limit); // to what can be laid out
    static QFont adapted(const QFont &font);

    [[nodiscard]] const RowRules &rules() const { return m_rules; }
    [[nodiscard]] int rowHeight() const { return m_rowHeight; }
    [[nodiscard]] int ascent() const { return m_ascent; }
    [[nodiscard]] const QFont &font() const { return m_rules.font; }

    [[nodiscard]] ParagraphRows rows(const QString &paragraph) const;
    [[nodiscard]] QString shown(const QString &text) const; // as the echo mode has it; of the same length

    [[nodiscard]] bool isPlain(QStringView text) const;

    // Of plain text that begins at the left edge of a row.
    [[nodiscard]] qreal plainWidth(QStringView text) const;
    [[nodiscard]] int plainColumn(QStringView text, qreal x) const; // the nearest border between two characters

    // Of any other text: all rows, each in the place where it would be if the text stood alone.
    [[nodiscard]] std::unique_ptr<QTextLayout> layOut(const QString &text) const;

    // A long paragraph of such text is laid out in stretches, when none of it runs from right to left: a row that
    // begins afresh does not depend on what stands before it, and so do those below.
    static constexpr int kStretch = 2048; // units: some 50 rows of a phone; what a key in a long paragraph costs
    static constexpr int kLong = 2 * kStretch; // shorter paragraphs are laid out as a whole
    [[nodiscard]] bool isInStretches(const QString &paragraph) const;
    static bool mayTurn(QStringView shown); // whether something may run from right to left
    static bool beginsAfresh(QStringView shown, int column);

    // What a change left alone: the units before it and those behind it.
    struct Kept {
        int before;
        int behind;
    };
    // The rows of a paragraph that had `old` rows: only those are laid out that the change can have moved. It is laid
    // out in stretches, before and now.
    [[nodiscard]] ParagraphRows rowsAgain(const QString &shown, const ParagraphRows &old, Kept kept) const;

private:
    struct Row;

    void measureCharacters();
    bool plainRows(QStringView text, ParagraphRows &rows) const;
    bool fillRow(QStringView text, Row &row) const;
    bool extend(Row &row, QStringView text, int end, int width) const;
    void breakWord(QStringView text, Row &row) const;
    [[nodiscard]] QStringView surroundings(QStringView text, int column, int room) const;
    int layStretch(const QString &text, int from, bool cut, ParagraphRows &rows) const;
    int ideographRows(QStringView text, int from, ParagraphRows &rows) const;
    [[nodiscard]] int ideographAdvance(QChar c) const; // in units of the table; negative: it is none, or no simple one
    void fillColumns(QTextLayout &layout, QTextLine &line) const;
    [[nodiscard]] int advance(QChar c) const; // in units of the table, or 1; negative: not plain
    [[nodiscard]] int overhang(QChar last) const;

    RowRules m_rules;
    int m_rowHeight = 0;
    int m_ascent = 0;
    int m_limit = 0; // in units of the table
    static constexpr int kTable = 0x500;
    std::array<qint16, kTable> m_advance; // 64ths of a pixel; negative: not plain
    std::array<qint16, kTable> m_overhang; // how far the glyph reaches beyond its advance
    mutable std::vector<qint16> m_ideographs; // advances of those that were met
};
