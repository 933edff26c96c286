#include "input/devices/storedcalibration.h"

#include "appbase/config/zconfig.h"
#include "platform/system/fd.h"
#include "platform/system/filereplace.h"

#include <QDir>
#include <QFile>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

platform::Result<platform::Fd> openStored()
{
    constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY; // a pipe in its place must not make the server wait
    auto file = platform::Fd::open(QFile::encodeName(calibrationFile()).constData(), kFlags);
    if (!file && file.error().number == ENOENT)
        return platform::Fd::open("/etc/pointercal", kFlags);
    return file;
}

}

QString calibrationFile() { return ZConfig::getSettingDirectory() + QLatin1String("pointercal"); }

std::optional<TP_Calibration_Parameter_T> storedCalibration()
{
    std::array<char, 4096> bytes; // seven numbers take 83 at most, and white space may be around them
    const auto file = openStored();
    struct stat status = {};
    if (!file || ::fstat(file->get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    ssize_t size = -1;
    do
        size = ::read(file->get(), bytes.data(), bytes.size());
    while (size < 0 && errno == EINTR);
    return size > 0 ? calibration::parse({bytes.data(), size}) : std::nullopt;
}

platform::Result<> storeCalibration(const TP_Calibration_Parameter_T &parameters)
{
    constexpr mode_t kMode = 0644;
    if (parameters.a == 0 || parameters.e == 0 || parameters.s == 0)
        return platform::failed("storeCalibration", EINVAL);
    if (!QDir().mkpath(ZConfig::getSettingDirectory()))
        return platform::failed("mkdir");
    const QByteArray text = calibration::format(parameters);
    return platform::replaceFile(
        calibrationFile(), std::as_bytes(std::span(text.constData(), size_t(text.size()))), kMode);
}
