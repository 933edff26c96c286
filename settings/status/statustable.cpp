#include "settings/status/statustable.h"

#include "platform/system/sysv.h"
#include "settings/status/statusboard.h"

#include <algorithm>
#include <cstring>
#include <sys/shm.h>
#include <tuple>

namespace status {

namespace {

// Stores bytes into the table one by one, and knows whether that made a difference.
class Cells {
public:
    explicit Cells(std::span<quint8> table) : m_table(table) { }

    void put(std::size_t offset, quint8 value)
    {
        m_changed |= m_table[offset] != value;
        m_table[offset] = value;
    }
    template <typename T> void putLe(std::size_t offset, T value)
    {
        for (std::size_t i = 0; i < sizeof(T); ++i)
            put(offset + i, quint8(value >> (8 * i)));
    }
    void putText(Text field, const char *text, std::size_t length)
    {
        for (std::size_t i = 0; i < field.size; ++i)
            put(field.offset + i, i < length ? quint8(text[i]) : 0);
    }
    [[nodiscard]] bool changed() const { return m_changed; }

private:
    std::span<quint8> m_table;
    bool m_changed = false;
};

// One write access: `store` gets the cells, and who watches is told.
template <typename Store> platform::Result<> change(Store store)
{
    const auto table = Attachment::open();
    if (!table)
        return tl::make_unexpected(table.error());
    Cells cells(table->bytes());
    store(cells);
    if (cells.changed())
        Board::announce(table->key());
    return {};
}

// Without its NUL; a field that has none holds no text.
std::size_t themeTextLength(const char *text, std::size_t size)
{
    const std::size_t length = ::strnlen(text, size);
    return length < size ? length : 0;
}

std::size_t textLength(std::span<const quint8> table, Text field)
{
    const auto characters = table.subspan(field.offset, field.size - 1U);
    return std::size_t(std::find(characters.begin(), characters.end(), 0) - characters.begin());
}

}

platform::Result<Attachment> Attachment::open()
{
    const auto key = platform::ipcKey(kKeyFile, kTableProject);
    if (!key)
        return tl::make_unexpected(key.error());
    const auto id = platform::ShmAttachment::segment({*key, 0666}, kTableBytes);
    if (!id)
        return tl::make_unexpected(id.error());
    const auto address = platform::attachRaw(*id, platform::ShmAttachment::Access::ReadWrite);
    if (!address)
        return tl::make_unexpected(address.error());
    return Attachment(static_cast<quint8 *>(*address), *key);
}

Attachment::~Attachment()
{
    if (m_address)
        ::shmdt(m_address);
}

template <typename T> T read(Scalar<T> field)
{
    const auto table = Attachment::open();
    return table ? loadLe<T>(table->bytes(), field.offset) : field.absent;
}
template quint8 read(Scalar<quint8>);
template quint16 read(Scalar<quint16>);
template quint32 read(Scalar<quint32>);

bool read(Flag field)
{
    const auto table = Attachment::open();
    return table && isTrue(table->bytes()[field.offset], field);
}

void read(Text field, char *buffer)
{
    std::memset(buffer, 0, field.size);
    if (const auto table = Attachment::open())
        std::memcpy(buffer, table->bytes().data() + field.offset, textLength(table->bytes(), field));
}

template <typename T, std::size_t N> std::array<T, N> read(Array<T, N> field)
{
    std::array<T, N> values = {};
    if (const auto table = Attachment::open()) {
        for (std::size_t i = 0; i < N; ++i)
            values[i] = loadLe<T>(table->bytes(), field.offset + i * sizeof(T));
    }
    return values;
}
template std::array<quint8, 2> read(Array<quint8, 2>);
template std::array<quint8, 5> read(Array<quint8, 5>);
template std::array<quint8, 6> read(Array<quint8, 6>);
template std::array<quint32, 2> read(Array<quint32, 2>);
template std::array<quint32, 3> read(Array<quint32, 3>);

void read(ThemeInfo &info)
{
    info = {};
    const auto table = Attachment::open();
    if (!table)
        return;
    for (std::size_t i = 0; i < std::size(info.numbers); ++i)
        info.numbers[i] = loadLe<quint32>(table->bytes(), themeNumbers.offset + i * sizeof(quint32));
    for (std::size_t i = 0; i < std::size(info.texts); ++i) {
        std::memcpy(info.texts[i], table->bytes().data() + themeTexts[i].offset, themeTexts[i].size);
        const std::size_t length = themeTextLength(info.texts[i], themeTexts[i].size);
        std::memset(info.texts[i] + length, 0, themeTexts[i].size - length);
    }
}

template <typename T> void write(Scalar<T> field, T value)
{
    std::ignore = change([&](Cells &cells) { cells.putLe(field.offset, value); });
}
template void write(Scalar<quint8>, quint8);
template void write(Scalar<quint16>, quint16);
template void write(Scalar<quint32>, quint32);

void write(Flag field, bool value)
{
    std::ignore = change([&](Cells &cells) { cells.put(field.offset, value ? 1 : 0); });
}

void write(Text field, const char *text)
{
    const std::size_t length = text ? ::strnlen(text, field.size - 1U) : 0;
    std::ignore = change([&](Cells &cells) { cells.putText(field, text, length); });
}

template <typename T, std::size_t N> void write(Array<T, N> field, const std::array<T, N> &values)
{
    std::ignore = change([&](Cells &cells) {
        for (std::size_t i = 0; i < N; ++i)
            cells.putLe(field.offset + i * sizeof(T), values[i]);
    });
}
template void write(Array<quint8, 2>, const std::array<quint8, 2> &);
template void write(Array<quint8, 6>, const std::array<quint8, 6> &);
template void write(Array<quint32, 2>, const std::array<quint32, 2> &);
template void write(Array<quint32, 3>, const std::array<quint32, 3> &);

void write(const ThemeInfo &info)
{
    std::ignore = change([&](Cells &cells) {
        for (std::size_t i = 0; i < std::size(info.numbers); ++i)
            cells.putLe(themeNumbers.offset + i * sizeof(quint32), info.numbers[i]);
        for (std::size_t i = 0; i < std::size(info.texts); ++i)
            cells.putText(themeTexts[i], info.texts[i], themeTextLength(info.texts[i], themeTexts[i].size));
    });
}

void writeElement(Array<quint8, 5> field, std::size_t index, quint8 value)
{
    std::ignore = change([&](Cells &cells) { cells.put(field.offset + index, value); });
}

platform::Result<> writeBytes(const Row &row, std::span<const quint8> bytes)
{
    return change([&](Cells &cells) {
        for (std::size_t i = 0; i < std::min(row.size(), bytes.size()); ++i)
            cells.put(row.offset + i, bytes[i]);
    });
}

}

bool UTIL_CopySystemTable(SystemTableCopy *copy)
{
    using namespace status;
    if (!copy)
        return false;
    if (const auto table = Attachment::open()) {
        std::memcpy(copy->bytes, table->bytes().data(), kUsedBytes);
        return true;
    }
    *copy = {};
    for (const Row &row : rows)
        copy->bytes[row.offset] = quint8(row.absent); // only fields of one byte have a default other than zero
    return false;
}

void *UTIL_GetTableAddress()
{
    auto table = status::Attachment::open();
    return table ? table->give() : nullptr;
}
