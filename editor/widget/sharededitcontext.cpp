#include "editor/widget/sharededitcontext.h"

#include <algorithm>

void SharedEditContext::publish(const Context &context)
{
    if (!m_state)
        m_state.emplace();
    m_state->setEditContext(context.lines, context.line, context.column);
    m_published = m_state->getEditContext();
    m_state->setEditCursor(context.cursor);
}

void SharedEditContext::withdraw()
{
    if (m_state && std::ranges::equal(m_state->getEditContext().bytes(), m_published.bytes()))
        m_state->setEditContext({}, 0, 0);
    m_state.reset();
}
