// Counts in a settings file: settingswriter FILE KEY TIMES. Prints how many of the transactions failed.
#include "settings/files/settingstransaction.h"

#include <QString>
#include <cstdio>
#include <cstdlib>

int main(int, char **argv)
{
    const QString file = QString::fromLocal8Bit(argv[1]);
    const QString group = QStringLiteral("G");
    int failed = 0;
    for (int left = std::atoi(argv[3]); left > 0; --left) {
        SettingsTransaction change(file);
        for (const QString &key : {QStringLiteral("all"), QString::fromLocal8Bit(argv[2])})
            change.set(group, key, change.number(group, key, 0) + 1);
        failed += change.commit() ? 0 : 1;
    }
    std::printf("%d\n", failed);
}
