// The folder that resources are unpacked into.
#pragma once

#include "platform/system/fd.h"

#include <QByteArrayView>
#include <QString>

namespace tyx {

// The name that a resource gets as a file: its own, or with the extension that its bytes ask for where packing the file
// gives the same identifier again. Null when no file of a folder can have that name.
QString fileNameOf(const QString &id, QByteArrayView data);

// Writes only into this one folder, whatever the names are and whatever stands there: a name with a slash is refused,
// and a link is never followed.
class TargetFolder {
public:
    // The folder is made when it is missing.
    static platform::Result<TargetFolder> open(const QString &path);

    // EEXIST for a file that is there already, unless `replace` is set.
    [[nodiscard]] platform::Result<> write(const QString &name, QByteArrayView data, bool replace) const;

    // Writes a resource under the name that it gets as a file. Why not, for people, or null.
    [[nodiscard]] QString extract(const QString &id, QByteArrayView data, bool replace) const;

private:
    explicit TargetFolder(platform::Fd folder) : m_folder(std::move(folder)) { }

    platform::Fd m_folder;
};

}
