// Access to the fields of the system status table: the only functions that attach it, touch its bytes and detach it.
//
// Each call is one access with an attachment of its own, on purpose: a table that is made later is found at once, and
// any thread may call. Nothing is allocated. Without a table the readers answer the field's default and writers do
// nothing.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"
#include "settings/status/statuslayout.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <sys/types.h>
#include <utility>

namespace status {

// The table's key is ftok(kKeyFile, kTableProject).
inline constexpr char kKeyFile[] = "/tmp/key_testcommand";
inline constexpr char kTableProject = 'm';

// One attachment of the table; detached with the object.
class Attachment {
public:
    static platform::Result<Attachment> open();

    Attachment(Attachment &&other) noexcept : m_address(other.give()), m_key(other.m_key) { }
    Attachment &operator=(Attachment &&) = delete;
    ~Attachment();

    [[nodiscard]] std::span<quint8> bytes() const { return {m_address, kTableBytes}; } // valid while this lives
    [[nodiscard]] key_t key() const { return m_key; }
    [[nodiscard]] quint8 *give() { return std::exchange(m_address, nullptr); } // the caller detaches it

private:
    Attachment(quint8 *address, key_t key) : m_address(address), m_key(key) { }

    quint8 *m_address;
    key_t m_key;
};

template <typename T> T read(Scalar<T> field);
bool read(Flag field);
void read(Text field, char *buffer); // fills field.size bytes
template <typename T, std::size_t N> std::array<T, N> read(Array<T, N> field);
void read(ThemeInfo &info);

template <typename T> void write(Scalar<T> field, T value);
void write(Flag field, bool value);
void write(Text field, const char *text); // cut at field.size - 1; null clears
template <typename T, std::size_t N> void write(Array<T, N> field, const std::array<T, N> &values);
void write(const ThemeInfo &info);

// One element of an array.
void writeElement(Array<quint8, 5> field, std::size_t index, quint8 value);

// All bytes of a row at once. For tools; the error tells why there is no table.
TYX_EXPORT platform::Result<> writeBytes(const Row &row, std::span<const quint8> bytes);

}
