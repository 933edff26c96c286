#include "textinput/keyboard/keyboardview.h"

#include "textinput/keyboard/keyboardlayout.h"

#include <algorithm>

void KeyboardView::setLanguage(const QString &language)
{
    const auto &layouts = keyboardlayout::all();
    const auto found = std::ranges::find(layouts, language, &KeyboardLayout::language);
    m_layout = found == layouts.end() ? 0 : int(found - layouts.begin());
    arrange();
}

void KeyboardView::showNumbers(bool numbers)
{
    m_symbols = numbers ? 0 : -1;
    arrange();
}

void KeyboardView::nextShift()
{
    m_shift = m_shift == Shift::Off ? Shift::Once : m_shift == Shift::Once ? Shift::Locked : Shift::Off;
    update();
}

void KeyboardView::addKeys()
{
    const bool letters = m_symbols < 0;
    const KeyboardLayout &layout = keyboardlayout::all().at(m_layout);
    const KeyRows &rows = letters ? layout.rows : keyboardlayout::symbols(m_symbols);
    addRow(typing(rows.top), QList<double>(rows.top.size(), 1), 0);
    addRow(typing(rows.middle), QList<double>(rows.middle.size(), 1), 1);
    QList<KeyboardKey> bottom = typing(rows.bottom);
    QList<double> weights(bottom.size(), 1);
    bottom.prepend(letters ? KeyboardKey{KeyboardKey::Shift, {}, {}}
                           : KeyboardKey{KeyboardKey::OtherSymbols,
                               m_symbols == 0 ? QStringLiteral("=\\<") : QStringLiteral("123"), {}});
    bottom.append({KeyboardKey::Backspace, {}, {}});
    weights.prepend(1.3);
    weights.append(1.3);
    addRow(bottom, weights, 2);
    addRow(
        {letters ? KeyboardKey{KeyboardKey::Symbols, QStringLiteral("?123"), {}}
                 : KeyboardKey{KeyboardKey::Letters, QStringLiteral("ABC"), {}},
            {KeyboardKey::Language, layout.label, {}}, {KeyboardKey::Type, QStringLiteral(","), {}},
            {KeyboardKey::Space, {}, {}}, {KeyboardKey::Type, QStringLiteral("."), {}}, {KeyboardKey::Enter, {}, {}}},
        {1.6, 1.2, 1, 3.8, 1, 1.6}, 3);
}

QString KeyboardView::offeredBy(const KeyboardKey &key) const { return keyboardlayout::accents(key.text.front()); }

QString KeyboardView::shifted(const QString &text) const
{
    return m_shift == Shift::Off || m_symbols >= 0 || text == QStringLiteral("ß") ? text : text.toUpper();
}

void KeyboardView::type(const QString &text)
{
    KeyPanel::type(text);
    if (m_shift == Shift::Once)
        m_shift = Shift::Off;
}

void KeyboardView::press(const KeyboardKey &key)
{
    switch (key.action) {
    case KeyboardKey::Shift:
        nextShift();
        break;
    case KeyboardKey::Language:
        m_layout = (m_layout + 1) % int(keyboardlayout::all().size());
        m_symbols = -1;
        arrange();
        break;
    case KeyboardKey::Symbols:
        showNumbers(true);
        break;
    case KeyboardKey::Letters:
        showNumbers(false);
        break;
    case KeyboardKey::OtherSymbols:
        m_symbols = 1 - m_symbols;
        arrange();
        break;
    default:
        KeyPanel::press(key);
    }
}
