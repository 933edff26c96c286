// Writes skin files.
#pragma once

#include "platform/tyxexport.h"

#include <QRect>
#include <QString>
#include <memory>

namespace res {
class SkinWriterData;
}

// Collects the rectangles of a skin's pictures and writes them, with the image that holds them, into one file. The
// image file becomes part of it byte by byte; nothing compares the rectangles with it (`tyx skin verify` does).
//
//     UTIL_SkinFileWriter writer;
//     writer.init("night.skn", "night.png");
//     writer.add("titlebar.g", QRect(0, 0, 240, 24));
//     writer.write();
//
// The identifier of a picture is its name with ".g" behind it. What is said about identifiers and about the file at
// UTIL_ResFileWriter holds here too.
class TYX_EXPORT UTIL_SkinFileWriter {
public:
    UTIL_SkinFileWriter();
    UTIL_SkinFileWriter(const QString &fileName, const QString &imageFileName); // init(); neither file is touched yet
    ~UTIL_SkinFileWriter();
    UTIL_SkinFileWriter(const UTIL_SkinFileWriter &) = delete;
    UTIL_SkinFileWriter &operator=(const UTIL_SkinFileWriter &) = delete;

    void init(const QString &fileName, const QString &imageFileName); // reset(), setFileName()

    // The file that write() replaces, and the image that it is made of.
    void setFileName(const QString &fileName, const QString &imageFileName);
    [[nodiscard]] QString fileName() const;
    [[nodiscard]] QString getFileName() const { return fileName(); }
    [[nodiscard]] QString imageFileName() const;

    void add(const QString &id, const QRect &rect); // in pixels of the image
    void reset(); // without pictures again; the file names stay

    // Promised: true, whether the file was written or not. What happens on the way goes to standard error.
    bool write();

    // The same without notes, but false when the file was not written, with the reason in `error`. It is as it was
    // then.
    [[nodiscard]] bool save(QString *error = nullptr);

private:
    std::unique_ptr<res::SkinWriterData> d;
};
