// The text of a font definition file, taken apart.
#pragma once

#include <QByteArrayView>
#include <QFont>
#include <QList>
#include <QString>

// One line: a font that the phone has.
struct FontDefinition {
    QString family; // underscores of the file are blanks here
    QString file; // as written: absolute, or below the folder of the definition file
    QString renderer;
    bool italic = false;
    int weight = 50; // 1 to 99; 50 is normal, 75 bold
    int decipoints = 0; // tenths of a point; 0: any size
    QString flags;

    bool operator==(const FontDefinition &) const = default;
};

struct FontComplaint {
    int line = 0; // from 1
    QString why;

    bool operator==(const FontComplaint &) const = default;
};

struct FontDefinitions {
    QList<FontDefinition> fonts; // in the order of the file
    QList<FontComplaint> complaints; // one a line that is no definition; the first kMaxComplaints
};

inline constexpr int kMaxComplaints = 10; // a foreign file has thousands of such lines

// Reads lines of seven fields with white space between them: family, file, renderer, y or n for italic, weight, size,
// flags. What follows the seventh field, empty lines and lines that begin with '#' are skipped.
FontDefinitions parseFontDefinitions(QByteArrayView text);

// The weight of today's toolkit for one of a definition.
QFont::Weight fontWeight(int definitionWeight);
