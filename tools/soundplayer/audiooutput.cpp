#include "tools/soundplayer/audiooutput.h"

#include "platform/system/fd.h"

#include <alsa/asoundlib.h>
#include <fcntl.h>
#include <memory>
#include <sndfile.h>
#include <sys/stat.h>
#include <vector>

namespace audio {

namespace {

constexpr int kLongest = 10; // seconds
constexpr unsigned kLatency = 50'000; // microseconds of sound that the device may hold
constexpr int kMostChannels = 2;
constexpr int kHighestRate = 192'000; // the header of a file may say anything, and sizes the buffer

struct Sound {
    unsigned rate = 0;
    unsigned channels = 0;
    std::vector<short> samples; // of all channels, one after the other
};

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE *)>;
using Pcm = std::unique_ptr<snd_pcm_t, int (*)(snd_pcm_t *)>;

tl::unexpected<Failure> noFile(const QString &why) { return tl::make_unexpected(Failure{Failure::File, why}); }

tl::unexpected<Failure> noDevice(int error)
{
    return tl::make_unexpected(Failure{Failure::Device, QString::fromUtf8(snd_strerror(error))});
}

tl::expected<Sound, Failure> load(const QByteArray &path, double gain)
{
    // Anybody may name a file: a pipe must not make the player wait.
    auto fd = platform::Fd::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (!fd)
        return noFile(fd.error().text());
    struct stat status = {};
    if (::fstat(fd->get(), &status) != 0 || !S_ISREG(status.st_mode))
        return noFile(QStringLiteral("it is no ordinary file"));
    SF_INFO info = {};
    const File file(sf_open_fd(fd->get(), SFM_READ, &info, SF_FALSE), &sf_close);
    if (!file)
        return noFile(QString::fromUtf8(sf_strerror(nullptr)));
    const bool isUsable = info.channels >= 1 && info.channels <= kMostChannels && info.samplerate >= 1
        && info.samplerate <= kHighestRate && info.frames >= 0;
    if (!isUsable)
        return noFile(QStringLiteral("it has %1 channels of %2 Hz").arg(info.channels).arg(info.samplerate));
    const auto frames = std::min<sf_count_t>(info.frames, sf_count_t(info.samplerate) * kLongest);
    Sound sound{unsigned(info.samplerate), unsigned(info.channels), std::vector<short>(size_t(frames * info.channels))};
    const sf_count_t read = sf_readf_short(file.get(), sound.samples.data(), frames);
    sound.samples.resize(size_t(std::max<sf_count_t>(read, 0) * info.channels));
    for (short &sample : sound.samples)
        sample = short(sample * gain);
    return sound;
}

tl::expected<void, Failure> write(snd_pcm_t *pcm, const Sound &sound)
{
    const short *at = sound.samples.data();
    size_t left = sound.samples.size() / sound.channels;
    while (left > 0) {
        const snd_pcm_sframes_t written = snd_pcm_writei(pcm, at, left);
        if (written < 0) {
            if (const int error = snd_pcm_recover(pcm, int(written), 1); error < 0)
                return noDevice(error);
            continue;
        }
        at += written * snd_pcm_sframes_t(sound.channels);
        left -= size_t(written);
    }
    snd_pcm_drain(pcm);
    return {};
}

void tellNobody(const char * /*file*/, int /*line*/, const char * /*function*/, int /*error*/, const char * /*text*/,
    ...) // NOLINT(cert-dcl50-cpp): the type is the library's
{
}

}

tl::expected<void, Failure> play(const QByteArray &device, const QByteArray &path, double gain)
{
    const auto sound = load(path, gain);
    if (!sound)
        return tl::make_unexpected(sound.error());
    snd_lib_error_set_handler(&tellNobody); // what fails is told once, by the caller
    snd_pcm_t *opened = nullptr;
    if (const int error = snd_pcm_open(&opened, device.constData(), SND_PCM_STREAM_PLAYBACK, 0); error < 0)
        return noDevice(error);
    const Pcm pcm(opened, &snd_pcm_close);
    constexpr int kResample = 1;
    if (const int error = snd_pcm_set_params(opened, SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED, sound->channels,
            sound->rate, kResample, kLatency);
        error < 0)
        return noDevice(error);
    return write(opened, *sound);
}

}
