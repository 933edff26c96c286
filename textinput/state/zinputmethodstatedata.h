// The attachment of a process to the input method state.
#pragma once

#include "platform/system/sysv.h"

#include <optional>
#include <span>

class ZInputMethodStateData {
public:
    ZInputMethodStateData() = default;
    ~ZInputMethodStateData() { disconnectIMServer(); }
    Q_DISABLE_COPY_MOVE(ZInputMethodStateData)

    // True when connected. In the GUI server the first object makes file and segment; what a dead server left is
    // removed.
    bool connectIMServer();
    // The server's object removes segment and file.
    void disconnectIMServer();

    [[nodiscard]] bool isServer() const { return m_server; }
    // As many as the layout has. Empty without a connection.
    [[nodiscard]] std::span<std::byte> bytes() const { return m_bytes; }
    // The same, after connecting where there is no connection: what each question begins with, so it is inline.
    [[nodiscard]] std::span<std::byte> connected()
    {
        if (m_bytes.empty()) [[unlikely]]
            connectIMServer();
        return m_bytes;
    }

private:
    bool becomeServer();
    bool attach(int flags);

    std::optional<platform::ShmAttachment> m_segment;
    std::span<std::byte> m_bytes; // of it
    int m_id = -1;
    bool m_server = false;
};
