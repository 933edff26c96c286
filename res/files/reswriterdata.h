// What both families of writers do.
#pragma once

#include "res/files/filewriter.h"

#include <QByteArray>
#include <QString>
#include <vector>

namespace res {

class ResWriterData {
public:
    // `className` is the public class, for messages.
    explicit ResWriterData(const char *className) : m_className(className) { }

    void add(const QString &id, const QByteArray &data) { m_resources.push_back({id.toLatin1(), data}); }
    void clear() { m_resources.clear(); }

    // What went wrong, or a null string. Then nothing has changed, except that a power cut can undo a replacement whose
    // folder could not be synchronised.
    QString save(Notes notes);

    QString fileName;

private:
    struct Resource {
        QByteArray id;
        QByteArray data;
    };
    struct Tables {
        std::vector<const Resource *> sorted;
        Head head;
    };
    [[nodiscard]] tl::expected<Tables, BuildFault> createTables() const;

    const char *m_className;
    std::vector<Resource> m_resources; // in the order of add()
};

}
