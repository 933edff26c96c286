// The file of what the user typed in one language.
#pragma once

#include "textinput/predictive/userdictionary.h"

class UserWordsFile {
public:
    // Reads what is there into `words`, which outlives it. A file that is there and cannot be read is left alone for
    // good: saving would put the few words of today in the place of all.
    UserWordsFile(QString path, UserDictionary &words);

    // Writes the words when some are new; when that fails it is told, and they are new the next time too.
    void save();
    // The same once so many are new that it would be a pity to lose them.
    void saveMany();

private:
    QString m_path;
    UserDictionary &m_words;
    bool m_left = false; // alone
    quint64 m_tried = 0; // changes of the words when they were last written, or should have been
    quint64 m_saved = 0; // that are in the file
};
