// Reads resources by their identifiers.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <memory>

namespace res {
class ResReaderData;
}

// Where resources come from. The order of the virtual functions is fixed: destructor, exists, get, getFirstID,
// getNextID.
class TYX_EXPORT ZResReader {
public:
    ZResReader() = default;
    virtual ~ZResReader();
    ZResReader(const ZResReader &) = delete;
    ZResReader &operator=(const ZResReader &) = delete;

    // Whether there is a resource of this identifier.
    virtual bool exists(const QString &id) = 0;
    // The bytes of a resource, where they are; the reader keeps them. False, null and 0 when there is none.
    virtual bool get(const QString &id, const char *&data, unsigned int &length) = 0;
    // All identifiers, in no particular order; a null string behind the last one.
    virtual QString getFirstID() = 0;
    virtual QString getNextID() = 0;
};

// A resource file, mapped into memory from load() to reset() or the end of this object: that long are the bytes valid
// that it hands out. Nothing is copied, and processes that read the same file share its memory. A file that is replaced
// meanwhile is seen after the next load().
//
//     ZResFileReader icons;
//     const char *data = nullptr;
//     unsigned int length = 0;
//     if (icons.get(ZRes::createID("phone.png"), data, length))
//         ...
//
// A file that is missing, or is none of this format, prints nothing: the reader then answers every question
// negatively. `tyx pack verify` names what is wrong with it. docs/formats/resource.md describes the format.
//
// A reader belongs to its creator and is used from one thread.
class TYX_EXPORT ZResFileReader : public ZResReader {
public:
    ZResFileReader(); // the icons of the phone: $TYX_RES_ICON_PATH/iconres.tyx
    // Loads the file. When that failed nothing is in it: getFirstID() is null.
    explicit ZResFileReader(const QString &fileName);
    ~ZResFileReader() override;

    // Reads another file: reset(), setFileName(), load().
    bool init(const QString &fileName);

    void setFileName(const QString &fileName); // for the next load()
    // What was set last: another one than what is read, until load().
    [[nodiscard]] QString fileName() const;
    [[nodiscard]] QString getFileName() const { return fileName(); }

    bool load(); // false: it cannot be opened, or its header or tables are wrong
    void reset(); // no file and no name, as if nothing had been loaded

    bool exists(const QString &id) override;
    bool get(const QString &id, const char *&data, unsigned int &length) override;
    QString getFirstID() override;
    QString getNextID() override;

    // The identifier in a slot of the hash table, from 0 on; null when there is none.
    [[nodiscard]] QString getID(unsigned int slot) const;
    // The bytes of the data block at an offset from the first one.
    bool getDataAtOffset(unsigned int offset, const char *&data, unsigned int &length) const;

private:
    std::unique_ptr<res::ResReaderData> d;
};
