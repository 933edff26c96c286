// The fonts of the phone: those that its definition file names, and the one that applications write with.
#pragma once

#include "appbase/look/fontdefinition.h"
#include "appbase/look/textsize.h"

#include <QFont>
#include <QObject>
#include <QSet>

// Belongs to the application object. GUI thread only.
class PhoneFonts : public QObject {
    Q_OBJECT

public:
    // Reads "fontdef.cfg" of the folder in TYX_RES_FONT_PATH, or its backup "fontdef.cfg.bak" when that has no usable
    // line. What is wrong is told on standard error, and without a definition the toolkit's fonts stay. The font files
    // themselves are loaded when the first widget is about to show: the toolkit then looks for all fonts of the system,
    // which takes longer than everything else at the start, and a process that shows nothing need not.
    void read();

    // The first font that is defined, as large as the user wants it; of a font that has fixed sizes the nearest one.
    [[nodiscard]] QFont font(TextSize size) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void load();

    QString m_directory; // with a slash at its end
    QList<FontDefinition> m_definitions;
    QSet<QString> m_files; // loaded, or tried: a file may stand in many lines, one a size
};
