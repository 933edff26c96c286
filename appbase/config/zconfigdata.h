// The data of one ZConfig: the file's text, what has changed in it, and which group is current.
#pragma once

#include "appbase/config/configtext.h"

#include <QMap>
#include <QString>
#include <QStringView>
#include <map>
#include <optional>

// A text is asked once, in most objects: the language at start-up, one setting. So the first question is answered from
// the text as it was read, and only a second one, or a change, builds the sorted store.
class ZConfigData {
public:
    ZConfigData(const QString &file, bool writeThrough) : m_fileName(file), m_writeThrough(writeThrough) { read(); }

    void setGroup(const QString &group);
    bool enterForChange(const QString &group); // whether there is a current group now
    std::optional<QStringView> value(const QString &group, const QString &key);
    void store(const QString &key, const QString &value);
    void remove(const QString &key);
    void clearCurrentGroup();
    const QMap<QString, QString> *listing(const QString &group);
    bool saved() { return !m_writeThrough || save(); } // ends every modifying operation
    bool save();
    void rename(const QString &file) { m_fileName = file; }
    [[nodiscard]] bool isDirty() const { return m_dirty; }

private:
    struct Listing {
        QMap<QString, QString> map;
        int asOf = -1; // m_changes when it was made
    };

    void read();
    std::optional<QStringView> firstAnswer(const QString &group, const QString &key);
    config::ConfigText &whole();
    config::Group *currentGroup();
    void enter(const QString &group, config::Group *found);
    void leave();
    bool isOther(const QString &group) const { return !group.isEmpty() && group != m_groupName; }
    void changed();
    void openToEveryone() const;

    QString m_fileName;
    QString m_text; // of the file; the answers of a first question point into it
    std::optional<config::ConfigText> m_whole;
    QString m_groupName; // the last one that was named, even if there is no current group
    config::Group *m_current = nullptr; // the current group once it has been looked for
    // Handed out. They are valid until the next change, but live on: a caller may well change what he walks through.
    std::map<QString, Listing> m_listings;
    int m_changes = 0; // ever made
    bool m_hasGroup = false; // whether m_groupName is current, and then it exists
    bool m_asked = false;
    bool m_dirty = false;
    bool m_writeThrough;
};
