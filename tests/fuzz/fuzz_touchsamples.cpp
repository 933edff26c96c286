// Any bytes as samples of the touch panel.
#include "input/logic/touchfilter.h"
#include "tests/fuzz/require.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using touch::PenMove;
    touch::TouchFilter filter;
    bool down = false;
    for (size_t i = 0; i + touch::Sample::kSize <= size; i += touch::Sample::kSize) {
        const auto bytes = std::as_bytes(std::span(data + i, touch::Sample::kSize)).first<touch::Sample::kSize>();
        const auto move = filter.feed(touch::Sample::decode(bytes));
        if (!move)
            continue;
        require(move->place.x() >= 0 && move->place.x() <= 0xFFFF && move->place.y() >= 0);
        require((move->kind == PenMove::Down) != down); // it comes first, and once
        down = move->kind != PenMove::Up;
    }
    return 0;
}
