// What both families of readers do.
#pragma once

#include "res/files/mappedfile.h"

#include <optional>

namespace res {

// The default icon file; "/iconres.tyx" when TYX_RES_ICON_PATH is unset.
QString defaultIconFile();

class ResReaderData {
public:
    bool init(const QString &fileName);
    bool load();
    void reset();

    [[nodiscard]] bool exists(const QString &id) const;
    bool get(const QString &id, const char *&data, unsigned int &length) const;
    bool getDataAtOffset(quint32 offset, const char *&data, unsigned int &length) const;

    [[nodiscard]] QString getID(quint32 slot) const;
    QString getFirstID();
    QString getNextID();

    QString fileName;

private:
    std::optional<MappedFile> m_file; // empty: no load() has succeeded since the last reset() or failure
    quint32 m_next = 0; // the slot that getNextID() looks at first
};

}
