// Writes to the phone's input devices, as long as FIFOs stand in their places or the phone is under test.
#pragma once

#include "input/logic/recording.h"
#include "platform/system/fd.h"

#include <QString>
#include <chrono>
#include <tl/expected.hpp>

namespace tyx {

// Each device is opened when it is first written to. Errors are complete texts.
class InputWriter {
public:
    using Done = tl::expected<void, QString>;

    Done write(const recording::Key &key);
    Done write(const recording::Touch &touch);

    // Returns when the GUI server took everything, and the application with the focus what came of it.
    Done settle();

private:
    Done send(platform::Fd &fd, const char *path, std::span<const std::byte> bytes);

    platform::Fd m_keypad;
    platform::Fd m_button;
    platform::Fd m_touch;
};

void pause(std::chrono::milliseconds time);

}
