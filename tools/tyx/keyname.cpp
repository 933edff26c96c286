#include "tools/tyx/keyname.h"

#include <QMetaEnum>
#include <algorithm>
#include <utility>

namespace tyx {

namespace {

constexpr std::pair<const char *, Qt::KeyboardModifier> kModifiers[] = {
    {"ctrl", Qt::ControlModifier},
    {"shift", Qt::ShiftModifier},
    {"alt", Qt::AltModifier},
    {"meta", Qt::MetaModifier},
    {"num", Qt::KeypadModifier},
};

constexpr std::pair<const char *, Qt::Key> kShortNames[] = {
    {"esc", Qt::Key_Escape},
    {"pgup", Qt::Key_PageUp},
    {"pgdown", Qt::Key_PageDown},
    {"ins", Qt::Key_Insert},
    {"del", Qt::Key_Delete},
};

template <typename Table> auto find(const Table &table, const QString &name)
{
    return std::ranges::find_if(table, [&](const auto &row) { return name == QLatin1String(row.first); });
}

std::optional<Qt::Key> key(const QString &name)
{
    if (name.size() == 1)
        return Qt::Key(name.front().toUpper().unicode());
    const QString lower = name.toLower();
    if (const auto shortName = find(kShortNames, lower); shortName != std::end(kShortNames))
        return shortName->second;
    const QMetaEnum keys = QMetaEnum::fromType<Qt::Key>();
    for (int i = 0; i < keys.keyCount(); ++i) {
        if (QLatin1String(keys.key(i)).mid(4).compare(lower, Qt::CaseInsensitive) == 0
            && keys.value(i) != Qt::Key_unknown)
            return Qt::Key(keys.value(i)); // behind "Key_"
    }
    return std::nullopt;
}

}

// The gui library's parser of key sequences would load that library into a tool that only sends messages.
std::optional<QKeyCombination> keyFromName(const QString &name)
{
    qsizetype begin = 0;
    Qt::KeyboardModifiers modifiers;
    for (qsizetype plus = name.indexOf(u'+', 1); plus > begin && plus + 1 < name.size();
         plus = name.indexOf(u'+', begin + 1)) {
        const auto modifier = find(kModifiers, name.sliced(begin, plus - begin).toLower());
        if (modifier == std::end(kModifiers))
            return std::nullopt;
        modifiers |= modifier->second;
        begin = plus + 1;
    }
    const auto found = key(name.sliced(begin));
    return found ? std::optional(modifiers | *found) : std::nullopt;
}

}
