// Which input methods there are, in what order, and which of them cannot be used now. No messages, no widgets.
#pragma once

#include "settings/files/inputsetting.h"
#include "textinput/plugin/inputmethodinfo.h"

#include <QHash>
#include <QList>

class MethodList {
public:
    static constexpr int kMost = 12; // as the shared state has room for
    static constexpr int kMostDeaths = 3; // in a row, until a method is set aside

    void setLoaded(const QList<InputMethodInfo> &methods); // the external ones stay
    // False when there is no room, and for the identifier of a method that was loaded. A known one gets the new name.
    bool addExternal(const QUuid &id, const QString &name);
    void setFavourites(const QList<QUuid> &favourites) { m_favourites = favourites; }

    [[nodiscard]] const QList<InputMethodInfo> &all() const { return m_methods; }
    [[nodiscard]] QList<InputMethodInfo> offered() const; // the favourites in their order; without any of them all
    [[nodiscard]] const InputMethodInfo *find(const QUuid &id) const; // null when there is none; until the next change
    [[nodiscard]] const InputMethodInfo *find(const QString &nameOrId) const;

    // The one that suits the settings best: by type and language, by type, or the first one. Null when none can be
    // used.
    [[nodiscard]] QUuid primary(const INPUT_SETTING_T &setting) const;

    // A method whose process died three times in a row is not chosen by itself until it is trusted again.
    bool died(const QUuid &id); // true when it is set aside now
    void setAside(const QUuid &id) { m_deaths[id] = kMostDeaths; }
    void trust(const QUuid &id) { m_deaths.remove(id); }
    [[nodiscard]] bool isUsable(const QUuid &id) const { return find(id) && m_deaths.value(id) < kMostDeaths; }

private:
    QList<InputMethodInfo> m_methods;
    QList<QUuid> m_favourites;
    QHash<QUuid, int> m_deaths;
};
