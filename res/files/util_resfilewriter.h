// Writes resource files.
#pragma once

#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <memory>

namespace res {
class ResWriterData;
}

// Collects resources and writes them into one file, sorted by their identifiers: the same resources give the same
// bytes. The file is replaced as a whole, so that those who have it mapped keep the old one; it is readable for
// everybody (0644) afterwards.
//
// Identifiers are written as Latin-1, "?" for what lies outside. One with a line feed, an empty one, or one whose
// hash is 0x00FFFFFF is not found again; of equal ones the one that was added last is.
class TYX_EXPORT UTIL_ResFileWriter {
public:
    UTIL_ResFileWriter();
    explicit UTIL_ResFileWriter(const QString &fileName); // of the file that write() replaces, not touched before
    ~UTIL_ResFileWriter();
    UTIL_ResFileWriter(const UTIL_ResFileWriter &) = delete;
    UTIL_ResFileWriter &operator=(const UTIL_ResFileWriter &) = delete;

    void init(const QString &fileName); // reset(), setFileName()

    // The file that write() replaces.
    void setFileName(const QString &fileName);
    [[nodiscard]] QString fileName() const;
    [[nodiscard]] QString getFileName() const { return fileName(); }

    void add(const QString &id, const QByteArray &data); // UTIL_Res::createID() makes the identifier of a file
    void reset(); // without resources again; the file name stays

    // Promised: true, whether the file was written or not. Notes on the alignment go to standard error.
    bool write();

    // The same without notes, but false when the file was not written, with the reason in `error`. It is as it was
    // then.
    [[nodiscard]] bool save(QString *error = nullptr);

private:
    std::unique_ptr<res::ResWriterData> d;
};
