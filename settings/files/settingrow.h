// What a setting of the system is: a row of the table in settingkeys.h. Not installed.
#pragma once

#include <QStringView>
#include <QtGlobal>
#include <algorithm>
#include <limits>
#include <span>
#include <type_traits>

namespace settings {

enum class File : quint8 { System, Theme, AlertStyle, Sms, Browser, FixedDialing, FlexBits };

// The copy under /tmp that a running phone works with. Whoever sets writes both files; a get reads the copy or not.
enum class Copy : quint8 { None, Written, Read };

struct Place {
    File file;
    Copy copy;
    QStringView group;
};

struct Choice {
    qint64 value;
    const char *name;
};

// What a person may set. Programs may set any number.
struct Values {
    qint64 lowest = std::numeric_limits<qint32>::min();
    qint64 highest = std::numeric_limits<quint32>::max();
    std::span<const Choice> choices{}; // when there are any, these alone
};

// What follows when a setting was set.
enum class Effect : quint8 {
    None,
    TellInputMethods, // the input method server gets the input settings
    FollowLanguage, // the preferred input language becomes the one of the language
    TellSystem, // the system file gets the type of the touch screen's sounds
    TellServer, // the GUI server puts the theme on
};

enum class Type : quint8 { Text, Bool, Int, Unsigned, Bytes };

struct Bytes { }; // stored as hexadecimal digits; nothing is stored: no bytes

// T is QStringView, bool, int, unsigned or Bytes.
template <typename T> struct Setting {
    const char *name; // in `tyx settings`
    Place place;
    QStringView key;
    T absent; // what a get answers when nothing is stored
    const char *meaning;
    Values values{};
    Effect effect = Effect::None;
    bool isSecret = false; // not for a list that others may see
};

// The same for whoever walks all of them.
struct Row {
    const char *name;
    Place place;
    QStringView key;
    Type type;
    QStringView absentText; // of a text
    qint64 absentNumber; // of everything else
    const char *meaning;
    Values values;
    Effect effect;
    bool isSecret;
};

template <typename T> constexpr Type typeOf()
{
    if constexpr (std::is_same_v<T, QStringView>)
        return Type::Text;
    else if constexpr (std::is_same_v<T, bool>)
        return Type::Bool;
    else if constexpr (std::is_same_v<T, int>)
        return Type::Int;
    else if constexpr (std::is_same_v<T, unsigned>)
        return Type::Unsigned;
    else {
        static_assert(std::is_same_v<T, Bytes>);
        return Type::Bytes;
    }
}

template <typename T> constexpr Row row(const Setting<T> &setting)
{
    Row row{setting.name, setting.place, setting.key, typeOf<T>(), {}, 0, setting.meaning, setting.values,
        setting.effect, setting.isSecret};
    if constexpr (std::is_same_v<T, QStringView>)
        row.absentText = setting.absent;
    else if constexpr (std::is_arithmetic_v<T>) {
        using Limits = std::numeric_limits<T>;
        row.absentNumber = setting.absent;
        row.values.lowest = std::max(row.values.lowest, qint64(Limits::min()));
        row.values.highest = std::min(row.values.highest, qint64(Limits::max()));
    }
    return row;
}

}
