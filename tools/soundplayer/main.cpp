// The phone's sound player: takes sounds from the queue of keys and pen, and plays them one after the other. Where
// there is no audio device it prints what it would play, so that a phone without ears can be tested too.
#include "appbase/messaging/soundqueue.h"
#include "platform/system/commandline.h"
#include "tools/soundplayer/audiooutput.h"
#include "tools/soundplayer/soundrequest.h"

#include <cstdio>
#include <string>

namespace {

constexpr int kFailed = 3;

struct Options {
    std::string device = "default";
    std::string folder = "/usr/SYSqtapp/setup/soundfile";
    int count = 0;
};

void say(const char *what, const QByteArray &sound, const QString &why = {})
{
    std::printf("%s %s%s%s\n", what, sound.constData(), why.isEmpty() ? "" : ": ", qPrintable(why));
    std::fflush(stdout);
}

void play(std::span<const std::byte> message, const Options &options)
{
    const auto request = soundRequest(message, options.folder);
    if (!request)
        return;
    const auto played = audio::play(QByteArray::fromStdString(options.device), request->path, request->gain);
    if (played)
        say("played", request->path);
    else if (played.error().what == audio::Failure::Device)
        say("would play", request->path, played.error().why);
    else
        say("cannot play", request->path, played.error().why);
}

int run(const Options &options)
{
    SoundQueue queue;
    for (int taken = 0; options.count == 0 || taken < options.count;) {
        const auto message = queue.take();
        if (message) {
            play(*message, options);
            ++taken;
        } else if (message.error().number != EIDRM) { // which means: look for another one
            std::fprintf(stderr,
                "tyx-soundplayer: the sound queue of %s cannot be used: %s; start tyx-guiserver first\n",
                SoundQueue::kKeyFile, qPrintable(message.error().text()));
            return kFailed;
        }
    }
    return 0;
}

}

int main(int argc, char **argv)
{
    Options options;
    CLI::App program("Plays the sounds of keys and pen.", "tyx-soundplayer");
    program.add_option("--device", options.device, "ALSA's name of the audio device (default: \"default\")");
    program.add_option(
        "--folder", options.folder, "Where sounds without a folder are (default: " + options.folder + ")");
    program.add_option("--count", options.count, "End after so many messages")->check(CLI::PositiveNumber);
    if (const auto status = platform::parse(program, argc, argv))
        return *status;
    return run(options);
}
