#include "res/skin/skinshare.h"

#include "res/share/util_shareimage.h"
#include "res/skin/util_skinfilereader.h"

#include <cstdio>

namespace res {

namespace {

void say(const char *line) { std::fprintf(stderr, "%s\n", line); }

UTIL_ShareImage &sharedImage()
{
    UTIL_ShareImage *&shared = UTIL_SkinFileReader::pSkinImage;
    if (!shared)
        shared = new UTIL_ShareImage(QStringLiteral("SkinImage"));
    return *shared;
}

}

void shareImageOf(const SkinFile &skin, bool reload)
{
    UTIL_ShareImage &shared = sharedImage();
    const QByteArrayView image = skin.image();
    const auto length = static_cast<unsigned int>(image.size());
    if (reload)
        say("shared image should be reload, create new one");
    if (!shared.exists()) {
        say("creating new share image");
        shared.create(image.data(), length);
        say("create new share image done");
    } else if (reload) {
        say("setting image data");
        shared.set(image.data(), length);
        say("set image data done");
    }
}

bool shareSkin(const QString &fileName)
{
    UTIL_SkinFileReader::curFileName = fileName;
    const auto skin = SkinFile::load(fileName);
    if (skin)
        shareImageOf(*skin, true);
    return skin.has_value();
}

}
