// Changes one value of a configuration and saves it: configwriter FILE VALUE. Prints what flush() answered.
#include "appbase/config/zconfig.h"

#include <unistd.h>

int main(int, char **argv)
{
    ZConfig config(QString::fromLocal8Bit(argv[1]), false);
    config.writeEntry(QStringLiteral("G"), QStringLiteral("k"), argv[2]);
    const bool saved = config.flush();
    // Without the destructor, which would try again.
    ::_exit(::write(STDOUT_FILENO, saved ? "true\n" : "false\n", saved ? 5 : 6) < 0);
}
