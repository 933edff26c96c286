#include "appbase/look/phonefonts.h"

#include "appbase/config/configfile.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFontDatabase>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr qint64 kMaxBytes = 64 << 10; // a phone has a dozen fonts, a line each
constexpr qsizetype kMaxFiles = 64; // as every file costs time, also a small one

void tell(const QString &path, const QString &what)
{
    std::fprintf(stderr, "fonts: %s: %s\n", qUtf8Printable(path), qUtf8Printable(what));
}

QList<FontDefinition> definitionsOf(const QString &path, const QByteArray &text)
{
    const FontDefinitions definitions = parseFontDefinitions(text);
    for (const FontComplaint &complaint : definitions.complaints)
        tell(path, QStringLiteral("line %1: %2").arg(complaint.line).arg(complaint.why));
    return definitions.fonts;
}

QList<FontDefinition> readDefinitions(const QString &path)
{
    bool found = false;
    for (const QString &candidate : QStringList{path, path + QStringLiteral(".bak")}) {
        const auto text = config::readFile(candidate, kMaxBytes);
        const bool missing = !text && (text.error().number == ENOENT || text.error().number == ENOTDIR);
        found = found || !missing;
        if (!text && !missing)
            tell(candidate, text.error().text());
        if (!text)
            continue;
        QList<FontDefinition> fonts = definitionsOf(candidate, *text);
        if (!fonts.isEmpty())
            return fonts;
    }
    if (!found)
        std::fprintf(stderr, "Cannot find font definition file %s - is TYX_RES_FONT_PATH set correctly?\n",
            qUtf8Printable(path));
    return {};
}

}

void PhoneFonts::read()
{
    m_directory = QString::fromLocal8Bit(qgetenv("TYX_RES_FONT_PATH"));
    if (!m_directory.endsWith(u'/'))
        m_directory += u'/';
    m_definitions = readDefinitions(m_directory + QStringLiteral("fontdef.cfg"));
    if (!m_definitions.isEmpty())
        qApp->installEventFilter(this);
}

bool PhoneFonts::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (event->type() == QEvent::Polish) { // the first widget wants to know how large its text is
        qApp->removeEventFilter(this); // before all else: loading has events of its own
        load();
    }
    return false;
}

void PhoneFonts::load()
{
    for (const FontDefinition &font : m_definitions) {
        const QString path = QDir::cleanPath(QDir(m_directory).absoluteFilePath(font.file));
        if (m_files.contains(path) || m_files.size() == kMaxFiles)
            continue;
        m_files.insert(path);
        // Not a FIFO or a device: the toolkit would wait for it.
        if (!QFileInfo(path).isFile() || QFontDatabase::addApplicationFont(path) < 0)
            tell(path, QStringLiteral("is no font that can be loaded"));
    }
}

QFont PhoneFonts::font(TextSize size) const
{
    QFont font;
    int decipoints = decipointsOf(size);
    if (!m_definitions.isEmpty()) {
        const FontDefinition &first = m_definitions.constFirst();
        font = QFont(first.family);
        font.setWeight(fontWeight(first.weight));
        font.setItalic(first.italic);
        const auto distance = [&first, wanted = decipoints](const FontDefinition &definition) {
            const bool same = definition.family == first.family && definition.weight == first.weight
                && definition.italic == first.italic;
            return !same ? INT_MAX : definition.decipoints == 0 ? 0 : std::abs(definition.decipoints - wanted);
        };
        const auto nearest = std::min_element(m_definitions.begin(), m_definitions.end(),
            [&](const FontDefinition &a, const FontDefinition &b) { return distance(a) < distance(b); });
        if (nearest->decipoints != 0)
            decipoints = nearest->decipoints;
    }
    font.setPointSizeF(decipoints / 10.0);
    return font;
}
