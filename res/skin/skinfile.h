// A skin file in memory.
#pragma once

#include "platform/system/mapping.h"
#include "res/format/resindex.h"

#include <QByteArrayView>
#include <QString>
#include <memory>
#include <optional>

namespace res {

// Mapped read-only for as long as this object lives. The tables are a copy: a file that somebody cuts short in place
// does not kill who looks up a name, only who reads its image again.
class SkinFile {
public:
    // What is wrong with the file is told on standard error, as programs have always told it.
    static std::optional<SkinFile> load(const QString &path);

    [[nodiscard]] const ResIndex &index() const { return m_index; }
    [[nodiscard]] QByteArrayView image() const { return m_image; } // an image file, or what stands in its place

private:
    SkinFile(platform::Mapping mapping, std::unique_ptr<std::byte[]> front, ResIndex index, QByteArrayView image)
        : m_mapping(std::move(mapping)), m_front(std::move(front)), m_index(std::move(index)), m_image(image)
    {
    }

    platform::Mapping m_mapping;
    std::unique_ptr<std::byte[]> m_front; // of the file; the index looks there
    ResIndex m_index;
    QByteArrayView m_image;
};

// The same of bytes at hand, with the message, as far as there is one, in place of the index.
tl::expected<ResIndex, QByteArray> parseSkin(Bytes file);
tl::expected<QByteArrayView, QByteArray> imageBlock(Bytes file, const ResIndex &index);
bool isMisaligned(Bytes file); // the start block, when it lies in the file

}
