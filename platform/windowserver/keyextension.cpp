#include "platform/windowserver/keyextension.h"

#include <QWaylandCompositor>
#include <QWaylandSurface>

KeyExtension::KeyExtension(QWaylandCompositor *compositor)
    : QWaylandCompositorExtensionTemplate<KeyExtension>(compositor)
{
}

void KeyExtension::initialize()
{
    QWaylandCompositorExtensionTemplate<KeyExtension>::initialize();
    init(static_cast<QWaylandCompositor *>(extensionContainer())->display(), 1);
}

bool KeyExtension::send(QWaylandSurface *surface, const QKeyEvent &event)
{
    const auto time = surface->compositor()->currentTimeMsecs();
    const QList<Resource *> resources = resourceMap().values(surface->waylandClient());
    for (const Resource *resource : resources) {
        send_key(resource->handle, surface->resource(), time, event.type(), static_cast<uint32_t>(event.key()),
            static_cast<uint32_t>(event.modifiers().toInt()), 0, 0, 0, event.text(), event.isAutoRepeat() ? 1 : 0, 1);
    }
    return !resources.isEmpty();
}
