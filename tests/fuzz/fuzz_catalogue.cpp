// Any bytes as the arguments of any known message: the first byte chooses the row.
#include "tests/fuzz/require.h"
#include "tools/tyx/catalogue.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto rows = tyx::knownMessages();
    const tyx::KnownMessage &row = rows[(input.isEmpty() ? 0 : uchar(input[0])) % rows.size()];
    const QByteArray bytes = input.mid(1);
    const tyx::Decoded decoded = tyx::decode(row, bytes);
    require(bytes.endsWith(decoded.rest) && decoded.values.size() <= tyx::argumentsOf(row).size());
    QJsonObject object;
    tyx::describeArguments(object, row.channel, row.name, bytes);
    std::ignore = tyx::argumentsText(row.channel, row.name, bytes);
    return 0;
}
