// Any bytes as the segment of a shared image.
#include "res/share/sharedheader.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <vector>

namespace {

// Touches all, for the sanitizer.
std::uint64_t sum(std::span<const std::byte> bytes)
{
    std::uint64_t sum = 0;
    for (const std::byte each : bytes)
        sum += std::uint64_t(each);
    return sum;
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace res;
    const std::vector<uint8_t> copy(data, data + size); // with an end that the sanitizer knows
    const auto segment = std::as_bytes(std::span(copy));
    const auto header = SharedHeader::parse(segment);
    if (!header)
        return 0;
    const auto image = header->imageRows(segment);
    const auto mask = header->maskRows(segment);
    require(image.size() >= std::size_t(header->width) * std::size_t(header->height) * std::size_t(header->depth / 8));
    require(mask.empty() || mask.data() >= image.data() + image.size());
    require(mask.empty() || mask.size() * 8 >= std::size_t(header->width) * std::size_t(header->height));
    volatile std::uint64_t seen = sum(image) + sum(mask);
    std::ignore = seen;

    // What is read is written the same.
    std::vector<std::byte> again(segment.begin(), segment.end());
    std::fill_n(again.begin(), sharedimage::rows, std::byte{});
    header->store(again);
    require(!SharedHeader::parse(again));
    SharedHeader::storeMagic(again);
    require(SharedHeader::parse(again).has_value() && std::equal(segment.begin(), segment.end(), again.begin()));
    return 0;
}
