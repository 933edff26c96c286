// The translated texts of the phone: which file speaks which language, and what one needs to be to be trusted.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTranslator>

// The folder of the language folders with a slash at its end, from TYX_RES_STRING_PATH; empty when there is none.
QString stringDirectory();

struct StringFiles {
    QString application; // empty, both: there are no translations
    QString library;
};

// The files of a language. When it has no folder the first folder by name is taken in its place, with its language, and
// "en-us" when there is none at all. A code that would lead out of the directory has no folder.
StringFiles stringFiles(const QString &directory, const QString &language, const QString &application);

// True for a file of compiled translations that the toolkit can search without leaving it. (It believes the lengths
// inside; a damaged file would take the application down with the first text.) Files that name others, and those with
// a table of contexts (lrelease -compress), are not.
bool areSoundStrings(const QByteArray &file);

// One file of translations, installed while it is loaded. GUI thread only.
class LoadedStrings {
public:
    LoadedStrings() = default;
    ~LoadedStrings();
    LoadedStrings(const LoadedStrings &) = delete;
    LoadedStrings &operator=(const LoadedStrings &) = delete;

    // Removes what was loaded before. False, and nothing is installed, when there is no such file or it cannot be used;
    // the latter is told on standard error.
    bool load(const QString &path);

private:
    void remove();

    QByteArray m_file; // the translator looks into it
    QTranslator m_translator;
    bool m_installed = false;
};
