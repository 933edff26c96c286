#include "appbase/application/language.h"

#include "appbase/config/zconfig.h"

QString currentLanguage()
{
    ZConfig system(QStringLiteral("/tmp/tyx_system.cfg"), false);
    return system.readEntry(QStringLiteral("SYS_SYSTEM_SET"), QStringLiteral("LanguageType"), QStringLiteral("en-us"));
}
