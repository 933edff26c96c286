#include "tools/tyx/savefile.h"

#include <QSaveFile>

namespace tyx {

tl::expected<void, QString> saveFile(const QString &name, const QByteArray &bytes)
{
    QSaveFile out(name);
    // commit() does not see that what was buffered found no room: it would put a half file in place of the old one.
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.flush() || !out.commit())
        return tl::make_unexpected(out.errorString());
    return {};
}

}
