// Writes a file of the user's, who chose its name.
#pragma once

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

namespace tyx {

// What stands there stays until all of the new bytes are on the disk. Its permissions stay, and a link leads to what is
// replaced, as one expects of one's own files; platform::replaceFile() is for those of the phone. The error is a text
// for people.
tl::expected<void, QString> saveFile(const QString &name, const QByteArray &bytes);

// For people: that the file could not be saved, why, and what to do about it. That is told by `number`, an errno; where
// whoever saved it gave none (0), by what its folder would say to a new file.
QString notSaved(const QString &name, const QString &why, int number);

}
