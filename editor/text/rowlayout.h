// The rows of a text, each known exactly: how many there are, where each begins, where in it a character stands.
#pragma once

#include "editor/text/rowbreaker.h"
#include "editor/text/textmodel.h"

#include <QCache>

struct Cell {
    int row = 0;
    int column = 0; // in the row
    bool operator==(const Cell &) const = default;
};

// Breaks anew what changed, a paragraph at a time. Rows are those of the text as it is shown: a composition that an
// input method has not confirmed takes part in breaking and in places, but columns and offsets do not count it.
class RowLayout {
public:
    struct Row {
        int paragraph = 0;
        int index = 0; // in the paragraph
        int start = 0; // columns of the paragraph
        int end = 0;
        int width = 0; // pixels
        bool last = false; // of the paragraph
    };
    struct Composition {
        int offset = 0;
        QString text;
        int cursor = 0; // in the text
        bool operator==(const Composition &) const = default;
    };

    RowLayout(const TextModel &model, const RowRules &rules);

    [[nodiscard]] const RowBreaker &breaker() const { return m_breaker; }
    bool setRules(const RowRules &rules); // false: they are the same

    void reset(); // the whole text is another one
    // Answers the rows that look different now; to the end of the text when all below have moved.
    struct Damage {
        int first;
        int last;
    };
    Damage update(const TextModel::Change &change, int column); // where the first paragraph begins to differ
    void rebreak(int paragraph); // breaks it anew; changes nothing unless something is wrong

    bool setComposition(const Composition &composition); // an empty text takes it away; false: it is the same
    [[nodiscard]] const Composition &composition() const { return m_composition; }

    [[nodiscard]] int rows() const { return m_rows.total(); }
    [[nodiscard]] int widest() const { return m_rows.largest(); }
    [[nodiscard]] int firstRow(int paragraph) const { return m_rows.sumBefore(paragraph); }
    [[nodiscard]] Row row(int row) const; // the nearest one when there is none
    [[nodiscard]] QString text(const Row &row) const;

    // A place where the text wraps is the end of one row and the beginning of the next; `before` asks for the former.
    [[nodiscard]] Cell cell(int offset, bool before = false) const;
    [[nodiscard]] int offset(Cell cell) const; // cells outside are taken to the nearest one inside
    [[nodiscard]] int startOffset(const Row &row) const { return m_model.start(row.paragraph) + row.start; }

    // Pixels from the left edge of the row's text.
    [[nodiscard]] qreal x(Cell cell) const;
    [[nodiscard]] qreal compositionX(int column, int &row) const; // of a column of the composition, and in which row
    [[nodiscard]] int columnAt(int row, qreal x) const;
    [[nodiscard]] bool isRightToLeft(int paragraph) const;

    // For drawing: what is shown of a row, or a layout with it among others when its text is not plain (valid until the
    // next call of anything here). Columns are those of the paragraph as it is shown.
    struct Drawing {
        QString plain;
        const QTextLayout *layout = nullptr;
        int start = 0; // of the row, or of the layout
        int line = 0; // in the layout
    };
    [[nodiscard]] Drawing drawing(int row) const;
    // Columns of the paragraph as the layout of the drawing counts them.
    [[nodiscard]] int shownColumn(int paragraph, int column, bool afterComposition) const;

private:
    struct Rows {
        ParagraphRows ends;
        bool inStretches = false; // the text is long, and its rows were not laid out all at once

        Rows() = default;
        Rows(ParagraphRows &&rows, bool cut) noexcept : ends(std::move(rows)), inStretches(cut) { }
        Rows(const Rows &) = default;
        Rows(Rows &&) noexcept = default;
        ~Rows() = default;
        Rows &operator=(const Rows &) = default;
        // The toolkit's array forgets to free what it has when another one is moved into it.
        Rows &operator=(Rows &&other) noexcept
        {
            std::swap(ends, other.ends);
            inStretches = other.inStretches;
            return *this;
        }

        [[nodiscard]] int measure() const { return int(ends.size()); }
        [[nodiscard]] int peak() const
        {
            return std::max_element(ends.begin(), ends.end(), [](RowEnd a, RowEnd b) {
                return a.width < b.width;
            })->width;
        }
    };

    static Damage differing(const ParagraphRows &old, const ParagraphRows &now, int column, int first);
    [[nodiscard]] Rows broken(int paragraph) const;
    [[nodiscard]] QString shownText(int paragraph) const;
    [[nodiscard]] bool isComposing(int paragraph) const;
    [[nodiscard]] int textColumn(int paragraph, int shown) const;
    struct Stretch { // of a paragraph: a few rows that were laid out together
        std::unique_ptr<QTextLayout> layout;
        int start; // column
        int row; // in the paragraph
    };
    using StretchKey = std::pair<int, int>; // paragraph; which of its stretches
    [[nodiscard]] const Stretch &stretchOf(const Row &row) const;
    bool forgetStretches(int paragraph); // whether there were any
    void rebreak(int paragraph, RowBreaker::Kept kept);
    void recompose(int paragraph, int from, int to);
    [[nodiscard]] int shownStart(const Row &row) const;
    [[nodiscard]] qreal shownX(const Row &row, int column) const;

    const TextModel &m_model;
    RowBreaker m_breaker;
    MeasuredList<Rows> m_rows; // one element a paragraph
    Composition m_composition;
    int m_composing = -1; // its paragraph
    mutable QCache<StretchKey, Stretch> m_stretches{16}; // of paragraphs that are not plain
};
