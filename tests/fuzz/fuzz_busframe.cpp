// Any bytes, cut into pieces as the first byte says, must make frames or be refused; what a frame says is read as both
// ends read it, and a message that is understood is written the same again.
#include "platform/bus/busframe.h"
#include "tests/fuzz/require.h"

#include <algorithm>

using namespace platform::bus;

namespace {

void readEverything(const Frame &frame)
{
    readHello(frame.payload);
    readChannel(frame.payload);
    readQuery(frame.payload);
    readAnswer(frame.payload);
    readToken(frame.payload);
    readEntry(frame.payload);
    readSeen(frame.payload);
    const auto message = readMessage(frame.payload);
    if (!message || frame.type != FrameType::Message)
        return;
    require(fitsFrame(*message));
    QByteArray again;
    putMessage(again, *message);
    require(again == frame.bytes);
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    if (size == 0)
        return 0;
    const qsizetype piece = bytes[0] + 1;
    const QByteArrayView stream(bytes + 1, qsizetype(size) - 1);
    FrameReader reader;
    qsizetype framed = 0;
    for (qsizetype at = 0; at < stream.size(); at += piece) {
        const auto handle = [&](const Frame &frame) {
            require(frame.bytes == stream.sliced(framed, frame.bytes.size()));
            framed += frame.bytes.size();
            readEverything(frame);
            return true;
        };
        if (!reader.feed(stream.sliced(at, std::min(piece, stream.size() - at)), handle))
            break;
    }
    return 0;
}
