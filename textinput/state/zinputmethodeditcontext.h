// The text around the cursor of the editor that is typed into.
#pragma once

#include "platform/tyxexport.h"

#include <QStringList>
#include <array>
#include <cstddef>
#include <span>

// What a predictive input method looks at: lines of text, and where in them the cursor is. It has room for 1000 bytes,
// about 490 characters; docs/formats/input-method-state.md tells how they are laid out. A copy is a copy.
class TYX_EXPORT ZInputMethodEditContext {
public:
    static constexpr std::size_t kSize = 1000; // bytes

    ZInputMethodEditContext() { reset(); }
    // Takes any bytes: what is wrong in them reads as no text.
    explicit ZInputMethodEditContext(std::span<const std::byte, kSize> bytes);

    // `cursorLine` is an index into `lines`, `cursorPosition` counts UTF-16 units in that line; both are brought into
    // their ranges. Of a text that is too long, what is nearest to the cursor is kept, and both count in that.
    void setEditContext(const QStringList &lines, int cursorLine, int cursorPosition);

    [[nodiscard]] QStringList lines() const; // empty when there are none, and when the bytes make no sense
    [[nodiscard]] QString line(int index) const; // null outside
    [[nodiscard]] int cursorLine() const; // 0 without lines
    [[nodiscard]] int cursorPosition() const; // at most the length of that line
    void reset(); // no lines

    // As they stand in the shared state. Valid as long as this object, and changed by it.
    [[nodiscard]] std::span<const std::byte, kSize> bytes() const { return m_bytes; }

private:
    std::array<std::byte, kSize> m_bytes;
};
