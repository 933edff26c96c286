// What this model of the phone has, bit by bit. The bits belong to the modem; the flex-bit file is their copy.
#include "platform/system/fd.h"
#include "settings/files/settingaccess.h"
#include "settings/files/settingkeys.h"
#include "settings/files/setup_utility.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace keys = settings::keys;

namespace {

// The modem's driver hands out 32 bytes at this device: bit n is bit n % 8 (the least significant is 0) of byte n / 8.
constexpr const char *kDevice = "/dev/tyx_flexbits";
constexpr int kBits = 256;
using FlexTable = std::array<unsigned char, kBits / 8>;

platform::Result<FlexTable> readTable()
{
    const auto device = platform::Fd::open(kDevice, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!device)
        return tl::make_unexpected(device.error());
    FlexTable table{};
    const ssize_t size = ::read(device->get(), table.data(), table.size());
    if (size < 0)
        return platform::failed("read");
    if (size_t(size) < table.size())
        return platform::failed("read", EIO); // half a table is none
    return table;
}

bool storeTable(FlexTable table)
{
    const QString path = SETUP_Utility::getFlexBitFileName();
    if (!settings::isChangeable(path))
        return false;
    SETUP_SET_Manager file(path, false);
    for (int id = 0; id < kBits; ++id) {
        unsigned char bit = 0;
        SETUP_Utility::getFlexBitFromBP(table.data(), static_cast<unsigned char>(id), &bit);
        file.setSettingInfo(settings::literal(keys::flex.group), QString::number(id), unsigned(bit));
    }
    return file.flush();
}

}

bool SETUP_Utility::getFlexBit(SETUP_FLEX_ID_T id, bool &set)
{
    SETUP_SET_Manager file(getFlexBitFileName(), false);
    unsigned bit = 0;
    file.getSettingInfo(settings::literal(keys::flex.group), QString::number(int(id)), bit, 0U);
    set = bit != 0;
    return true;
}

bool SETUP_Utility::isFeatureAvailable(SETUP_FLEX_ID_T id)
{
    bool set = false;
    return getFlexBit(id, set) && set;
}

bool SETUP_Utility::getFlexBitFromBP(void *table, unsigned char id, unsigned char *bit)
{
    if (table == nullptr || bit == nullptr)
        return false;
    *bit = (static_cast<const unsigned char *>(table)[id / 8] >> (id % 8)) & 1;
    return true;
}

bool SETUP_Utility::initFlexbitFromBP()
{
    const auto table = readTable();
    if (!table) {
        std::fprintf(stderr, "%s: cannot read the flex bits: %s\n", kDevice, qPrintable(table.error().text()));
        return false;
    }
    const bool stored = storeTable(*table);
    if (!stored)
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(getFlexBitFileName()));
    return stored;
}
