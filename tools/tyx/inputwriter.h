// Writes to the phone's input devices, as long as FIFOs stand in their places or the phone is under test.
#pragma once

#include "input/logic/recording.h"
#include "platform/system/fd.h"

#include <QString>
#include <chrono>
#include <map>
#include <tl/expected.hpp>

namespace tyx {

// Each device is opened when it is first written to. Errors are complete texts.
class InputWriter {
public:
    using Done = tl::expected<void, QString>;

    Done write(const recording::Key &key);
    Done write(const recording::Touch &touch);

    // Releases the keys that are down by what was written here, and lifts the pen. What cannot be written is forgotten.
    // A flip or a headset stays as it was put.
    void letGo();

    // Returns when the GUI server took everything, and the application with the focus what came of it.
    Done settle();

private:
    Done send(platform::Fd &fd, const char *path, std::span<const std::byte> bytes);
    void remember(const recording::Key &key);

    platform::Fd m_keypad;
    platform::Fd m_button;
    platform::Fd m_touch;
    // What the phone has been told, which is not what was tried.
    std::map<quint16, keypad::Device> m_down; // by number
    touch::Sample m_pen;
};

void pause(std::chrono::milliseconds time);

}
