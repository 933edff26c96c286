// What both families of readers do.
#pragma once

#include "res/files/resourcefile.h"

#include <optional>

namespace res {

// The default icon file; "/iconres.tyx" when TYX_RES_ICON_PATH is unset.
QString defaultIconFile();
// The one that overrides it; "/iconres.tyx" when TYX_DOWNLOAD_RES_ICON_PATH is unset.
QString downloadedIconFile();

// The identifier in a slot, null when there is none; the next one from a slot on, which is moved behind it.
QString idAt(const ResIndex &index, quint32 slot);
QString nextId(const ResIndex &index, quint32 &slot);

class ResReaderData {
public:
    bool init(const QString &fileName);
    bool load();
    void reset();

    [[nodiscard]] bool exists(const QString &id);
    bool get(const QString &id, const char *&data, unsigned int &length);
    bool getDataAtOffset(quint32 offset, const char *&data, unsigned int &length);

    [[nodiscard]] QString getID(quint32 slot);
    QString getFirstID();
    QString getNextID();

    QString fileName;

private:
    [[nodiscard]] const ResIndex *index(); // null when nothing can be looked up

    std::optional<ResourceFile> m_file; // empty: no load() has succeeded since the last reset() or failure
    quint32 m_next = 0; // the slot that getNextID() looks at first
};

}
