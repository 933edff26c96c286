// Plays sound files on the audio device.
#pragma once

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

namespace audio {

struct Failure {
    enum What { File, Device } what;
    QString why;
};

// Returns when the sound was heard. At most ten seconds of it: whatever comes next waits.
tl::expected<void, Failure> play(const QByteArray &device, const QByteArray &path, double gain);

}
