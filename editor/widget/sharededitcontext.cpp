#include "editor/widget/sharededitcontext.h"

#include <algorithm>

bool SharedEditContext::isWanted()
{
    if (!m_state) {
        m_state.emplace();
        m_connected = m_state->isConnected();
    }
    return m_connected;
}

void SharedEditContext::publish(const Context &context)
{
    m_state->setEditContext(context.lines, context.line, context.column);
    m_published = m_state->getEditContext();
    m_state->setEditCursor(context.cursor);
}

void SharedEditContext::withdraw()
{
    if (m_state && m_connected && std::ranges::equal(m_state->getEditContext().bytes(), m_published.bytes()))
        m_state->setEditContext({}, 0, 0);
    m_state.reset();
}
