// Recordings of what happens to a phone (docs/formats/recording.md), made and played.
#pragma once

#include <string>

namespace tyx {

struct RecordingOptions {
    std::string file;
    bool fast = false;
    double seconds = 0; // 0: until it is interrupted
};

// The exit status, after errors were told.
int record(const RecordingOptions &options);
int replay(const RecordingOptions &options);

}
