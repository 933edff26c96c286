#include "appbase/application/zglobal.h"

#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"

void ZGlobal::hideInputWidgetAux(int /*editor*/, int /*window*/, bool automatically)
{
    if (const ZApplication *application = ZApplication::instance())
        application->d->inputClient.endTyping(automatically);
}
