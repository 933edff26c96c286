// Any bytes as a file of waiting messages.
#include "appbase/messaging/queuefile.h"
#include "tests/fuzz/require.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const queue::Contents contents = queue::decode(input);
    QByteArray written;
    for (const queue::Record &record : contents.records)
        written += queue::encode(record);
    // What has been read once comes back the same for ever.
    const queue::Contents again = queue::decode(written);
    require(!again.damaged && again.records == contents.records);
    return 0;
}
