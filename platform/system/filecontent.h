// Files that are read as a whole.
#pragma once

#include "platform/system/result.h"
#include "platform/tyxexport.h"

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

namespace platform {

// The bytes of a regular file. EISDIR for a folder and EINVAL for anything else that is none, without waiting for a
// FIFO; EFBIG for more than `maxBytes`, ENOMEM where there is no memory for them. Exported for the tools.
TYX_EXPORT Result<QByteArray> fileContent(const QString &path, qint64 maxBytes);

// The same of many files: small ones share large pieces of memory, which the system gives as huge pages where it can. A
// page fault costs nearly as much as reading a small file.
class TYX_EXPORT FileContents {
public:
    // What is handed out points into this object, and is valid as long as it lives.
    Result<QByteArray> read(const QString &path, qint64 maxBytes);

private:
    struct Release {
        void operator()(std::byte *piece) const { std::free(piece); }
    };
    [[nodiscard]] std::span<std::byte> room(std::size_t size); // empty where there is no memory

    std::vector<std::unique_ptr<std::byte[], Release>> m_pieces;
    std::span<std::byte> m_free; // of the last one
};

}
