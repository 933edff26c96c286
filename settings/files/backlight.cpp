// The light behind the screen and under the keys.
#include "platform/system/fd.h"
#include "settings/files/setup_utility.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>

namespace {

// Both drivers take the brightness in percent from an int.
struct Light {
    const char *device;
    unsigned long setBrightness;
};
constexpr Light kLights[] = {
    {"/dev/fb0", _IOW('F', 0x30, int)},
    {"/dev/keylight", _IOW('K', 0x30, int)},
};

platform::Result<> setBrightness(const Light &light, int percent)
{
    const auto device = platform::Fd::open(light.device, O_RDWR | O_NONBLOCK | O_NOCTTY);
    if (!device)
        return tl::make_unexpected(device.error());
    if (::ioctl(device->get(), light.setBrightness, &percent) != 0)
        return platform::failed("ioctl");
    return {};
}

}

bool SETUP_Utility::setBacklightValue()
{
    int percent = 0;
    getBackLightValue(percent);
    bool all = true;
    for (const Light &light : kLights) {
        const auto done = setBrightness(light, std::clamp(percent, 0, 100));
        if (!done)
            std::fprintf(stderr, "%s: cannot set the brightness: %s\n", light.device, qPrintable(done.error().text()));
        all = all && done;
    }
    return all;
}
