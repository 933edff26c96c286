#include "appbase/look/textsize.h"

#include "appbase/config/zconfig.h"

TextSize currentTextSize()
{
    ZConfig system(QStringLiteral("/tmp/tyx_system.cfg"), false);
    const QString value = system.readEntry(QStringLiteral("SYS_SYSTEM_SET"), QStringLiteral("TextSize"));
    if (value == QLatin1String("0"))
        return TextSize::Small;
    return value == QLatin1String("2") ? TextSize::Large : TextSize::Normal;
}

int decipointsOf(TextSize size)
{
    switch (size) {
    case TextSize::Small:
        return 75; // 10 pixels: small letters are still told apart
    case TextSize::Large:
        return 120; // 16 pixels
    case TextSize::Normal:
        break;
    }
    return 90; // 12 pixels
}
