// Which language the phone speaks.
#pragma once

#include <QString>

// The language code of the phone's settings ("de-de"), read afresh at each call; "en-us" when nothing is set.
QString currentLanguage();
