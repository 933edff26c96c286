// A text as paragraphs. Knows nothing of rows, fonts, cursors or undo.
#pragma once

#include "editor/text/measuredlist.h"

#include <QString>
#include <QStringList>

// Offsets count UTF-16 units from the start of the text; the break between two paragraphs counts as one. There is
// always one paragraph at least. insert(), remove() and setText() are the only ways to change anything.
class TextModel {
public:
    struct Place {
        int paragraph = 0;
        int column = 0; // 0 to the length of the paragraph
    };
    // The paragraphs that were there gave way to those that are.
    struct Change {
        int paragraph = 0;
        int removed = 0;
        int added = 0;
    };

    TextModel() { setText({}); }

    // All line breaks as "\n": what the functions below take. A text that has none but that is returned as it is.
    static QString normalized(const QString &text);

    [[nodiscard]] int length() const { return m_paragraphs.total() - 1; }
    [[nodiscard]] int paragraphs() const { return m_paragraphs.size(); }
    [[nodiscard]] const QString &paragraph(int index) const { return m_paragraphs.at(index).text; }
    [[nodiscard]] int start(int paragraph) const { return m_paragraphs.sumBefore(paragraph); }

    // Positions outside are taken to the nearest one inside.
    [[nodiscard]] Place place(int offset) const;
    [[nodiscard]] int offset(Place place) const { return start(place.paragraph) + place.column; }

    [[nodiscard]] QString text() const;
    [[nodiscard]] QString text(int from, int to) const;

    void setText(const QString &text);
    Change insert(int offset, const QString &text);
    Change remove(int from, int to); // from <= to

private:
    struct Paragraph {
        QString text;
        [[nodiscard]] int measure() const { return int(text.size()) + 1; }
        [[nodiscard]] static int peak() { return 0; }
    };

    MeasuredList<Paragraph> m_paragraphs;
};
