// Reads resources by their identifiers or file names, and pixmaps by their names.
#pragma once

#include "platform/tyxexport.h"

#include <QPixmap>
#include <QString>
#include <memory>

namespace res {
class ResReaderData;
}

// Where resources and pixmaps come from. The order of the virtual functions is fixed: destructor, exists, pixmapExists,
// getPixmap, get, getByFullFileName, getByFileName, getFirstID, getNextID.
class TYX_EXPORT UTIL_ResReader {
public:
    UTIL_ResReader() = default;
    virtual ~UTIL_ResReader();
    UTIL_ResReader(const UTIL_ResReader &) = delete;
    UTIL_ResReader &operator=(const UTIL_ResReader &) = delete;

    // Whether there is a resource of this identifier.
    virtual bool exists(const QString &id) = 0;
    // A pixmap's name is its identifier without ".g".
    virtual bool pixmapExists(const QString &name) = 0;
    virtual QPixmap getPixmap(const QString &name) = 0;
    // The bytes of a resource, where they are; the reader keeps them. False, null and 0 when there is none.
    virtual bool get(const QString &id, const char *&data, unsigned int &length) = 0;
    // The same by the name of the file that was packed; its folders do not matter.
    virtual bool getByFullFileName(const QString &fileName, const char *&data, unsigned int &length) = 0;
    virtual bool getByFileName(const QString &fileName, const char *&data, unsigned int &length) = 0;
    // All identifiers, in no particular order; a null string behind the last one.
    virtual QString getFirstID() = 0;
    virtual QString getNextID() = 0;
};

// A resource file, mapped into memory from load() to reset() or the end of this object: that long are the bytes valid
// that it hands out. What is said about ZResFileReader holds here too.
class TYX_EXPORT UTIL_ResFileReader : public UTIL_ResReader {
public:
    // Loads the file. When that failed nothing is in it: getFirstID() is null.
    explicit UTIL_ResFileReader(const QString &fileName);
    ~UTIL_ResFileReader() override;

    // Reads another file: reset(), setFileName(), load().
    bool init(const QString &fileName);

    void setFileName(const QString &fileName); // for the next load()
    // What was set last: another one than what is read, until load().
    [[nodiscard]] QString fileName() const;
    [[nodiscard]] QString getFileName() const { return fileName(); }

    bool load(); // false: it cannot be opened, or its header or tables are wrong
    void reset(); // no file and no name, as if nothing had been loaded

    bool exists(const QString &id) override;
    bool pixmapExists(const QString &name) override;
    // Decoded anew by every call; whatever format the bytes are in. An empty pixmap when there is none, when the bytes
    // are no image, or when the image is larger than 64 MiB. While the flex bit is set it carries `name`
    // (platform::pixmapName), the empty one too.
    QPixmap getPixmap(const QString &name) override;
    bool get(const QString &id, const char *&data, unsigned int &length) override;
    bool getByFullFileName(const QString &fileName, const char *&data, unsigned int &length) override;
    bool getByFileName(const QString &fileName, const char *&data, unsigned int &length) override;
    QString getFirstID() override;
    QString getNextID() override;

    // The identifier in a slot of the hash table, from 0 on; null when there is none.
    [[nodiscard]] QString getID(unsigned int slot) const;
    // The bytes of the data block at an offset from the first one.
    bool getDataAtOffset(unsigned int offset, const char *&data, unsigned int &length) const;

private:
    std::unique_ptr<res::ResReaderData> d;
};
