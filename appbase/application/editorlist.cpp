#include "appbase/application/editorlist.h"

#include "platform/bus/qcopchannel.h"

bool EditorList::append(int id, const QCString &channel)
{
    if (!QCopChannel::isRegistered(channel))
        return false;
    Editor *known = find(id);
    if (known && known->channel == channel)
        return true;
    dropDead();
    if (!known && m_editors.size() >= kMax)
        return false;
    m_editors.insert(id, {channel});
    return true;
}

Editor *EditorList::find(int id)
{
    const auto entry = m_editors.find(id);
    if (entry == m_editors.end())
        return nullptr;
    if (QCopChannel::isRegistered(entry->channel))
        return &*entry;
    m_editors.erase(entry);
    return nullptr;
}

void EditorList::dropDead()
{
    QHash<QCString, bool> alive; // many editors, few applications
    m_editors.removeIf([&alive](QHash<int, Editor>::iterator entry) {
        if (!alive.contains(entry->channel))
            alive.insert(entry->channel, QCopChannel::isRegistered(entry->channel));
        return !alive.value(entry->channel);
    });
}
