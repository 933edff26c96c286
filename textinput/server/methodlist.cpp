#include "textinput/server/methodlist.h"

#include <algorithm>

void MethodList::setLoaded(const QList<InputMethodInfo> &methods)
{
    const QList<InputMethodInfo> before =
        std::exchange(m_methods, methods.first(std::min<qsizetype>(methods.size(), kMost)));
    for (const InputMethodInfo &info : before) {
        if (info.external)
            addExternal(info.id, info.name);
    }
}

bool MethodList::addExternal(const QUuid &id, const QString &name)
{
    const auto known = std::ranges::find(m_methods, id, &InputMethodInfo::id);
    if (known != m_methods.end()) {
        if (known->external)
            known->name = name;
        return known->external;
    }
    if (m_methods.size() >= kMost || id.isNull() || name.isEmpty())
        return false;
    InputMethodInfo info;
    info.id = id;
    info.name = name;
    info.external = true;
    m_methods.append(info);
    return true;
}

QList<InputMethodInfo> MethodList::offered() const
{
    QList<InputMethodInfo> chosen;
    for (const QUuid &id : m_favourites) {
        if (const InputMethodInfo *info = find(id); info && !chosen.contains(*info))
            chosen.append(*info);
    }
    return chosen.isEmpty() ? m_methods : chosen;
}

const InputMethodInfo *MethodList::find(const QUuid &id) const
{
    const auto found = std::ranges::find(m_methods, id, &InputMethodInfo::id);
    return found == m_methods.end() ? nullptr : &*found;
}

const InputMethodInfo *MethodList::find(const QString &nameOrId) const
{
    const auto found = std::ranges::find(m_methods, nameOrId, &InputMethodInfo::name);
    return found == m_methods.end() ? find(QUuid(nameOrId)) : &*found;
}

QUuid MethodList::primary(const INPUT_SETTING_T &setting) const
{
    const QString language = settings::inputLanguageCode(int(setting.preferredInputLanguage));
    QUuid best;
    int most = -1;
    for (const InputMethodInfo &info : offered()) {
        const bool fits = info.type == setting.preferredInputMethodType;
        // A pad of another type that says nothing of languages is no keyboard for one.
        const bool speaks = info.speaks(language) && (fits || !info.languages.isEmpty());
        const int suits = (fits ? 2 : 0) + (speaks ? 1 : 0);
        if (isUsable(info.id) && !info.external && suits > most) {
            best = info.id;
            most = suits;
        }
    }
    return best;
}

bool MethodList::died(const QUuid &id) { return !id.isNull() && ++m_deaths[id] >= kMostDeaths; }
