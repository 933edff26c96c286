// How both kinds of files get onto the disk.
#pragma once

#include "res/format/resbuilder.h"

#include <QString>
#include <span>

namespace res {

enum class Notes { Print, Leave }; // what happens on the way, on standard error

// Replaces the file by `head` and a data block for each of `data`. What went wrong, or a null string. Then nothing has
// changed, except that a power cut can undo a replacement whose folder could not be synchronised.
QString writeFile(const QString &fileName, const Head &head, std::span<const QByteArrayView> data);

// What the classes have always said: of a full table with the name of the public class.
QString describe(BuildFault fault, const char *className);
void noteAlignment(const Head &head, Notes notes);
void note(const QString &line, Notes notes);

}
