// Which images this machine shares; for those who look at them from outside. Nothing here makes a file or a segment.
#pragma once

#include "platform/system/sysv.h"
#include "res/share/sharedheader.h"

#include <QByteArray>
#include <QStringList>
#include <memory>
#include <sys/shm.h>

namespace res {

inline constexpr char kLockFilePrefix[] = "/tmp/UTIL_ShareImage_";

// Of an image by name; the file may be missing.
QByteArray lockFileOf(const QString &name);
platform::Result<key_t> keyOfSharedImage(const QString &name);

// Names for which there is a lock file, in their order; a segment may be missing.
QStringList sharedImageNames();

// What lies under the key of an image at this moment.
struct SharedImageView {
    key_t key;
    int id;
    shmid_ds status;
    std::shared_ptr<const platform::ShmAttachment> segment; // attached for reading
    tl::expected<SharedHeader, SharedImageFault> header;

    // ENOENT when there is no such image, EINVAL when its lock file is none.
    static platform::Result<SharedImageView> open(const QString &name);
};

}
