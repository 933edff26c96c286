#include "res/share/util_shareimage.h"

#include "platform/system/fd.h"
#include "platform/system/filelock.h"
#include "platform/system/keyfile.h"
#include "res/share/sharedimages.h"
#include "res/share/sharedpixels.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/shm.h>
#include <sys/stat.h>

using platform::ShmAttachment;

namespace {

void say(const char *line) { std::fprintf(stderr, "%s\n", line); }
void say(const char *line, const platform::SysError &error)
{
    std::fprintf(stderr, "%s: %s\n", line, std::strerror(error.number));
}

platform::Result<platform::Fd> openLockFile(const QByteArray &path)
{
    const mode_t mask = ::umask(0); // nobody ever sees the file with a narrower mode
    const auto made = platform::makeKeyFile(path.constData());
    ::umask(mask);
    if (!made)
        return tl::make_unexpected(made.error());
    return platform::Fd::open(path.constData(), O_RDWR | O_NOFOLLOW);
}

}

struct res::ShareImageData {
    platform::Fd lockFile;
    int lockDepth = 0;
    platform::Result<key_t> key;
    std::shared_ptr<ShmAttachment> attachment; // pixmaps share it
    std::optional<std::size_t> size; // of the segment, as the system says

    [[nodiscard]] platform::Result<int> findSegment(int flags, std::size_t bytes) const
    {
        if (!key)
            return tl::make_unexpected(key.error());
        return ShmAttachment::segment({*key, flags}, bytes);
    }
    void attachIfThere();
    void store(const SharedPixels &pixels) const;
};

void res::ShareImageData::attachIfThere()
{
    const auto segment = findSegment(0666, 1);
    if (!segment)
        return say("UTIL_ShareImage::constructor error: shmget failed", segment.error());
    const auto status = ShmAttachment::status(*segment);
    if (!status)
        return say("UTIL_ShareImage::constructor error: shmctl failed");
    size = status->shm_segsz;
    if (*size < 1)
        return say("UTIL_ShareImage::Shared memory is empty");
    auto attached = ShmAttachment::attach(*segment, ShmAttachment::Access::ReadWrite);
    if (!attached)
        return say("UTIL_ShareImage::Could not obtain the shared memory address");
    attachment = std::make_shared<ShmAttachment>(std::move(*attached));
}

void res::ShareImageData::store(const SharedPixels &pixels) const
{
    pixels.store(attachment->bytes());
    say("UTIL_ShareImage::setData() reset the new skin contents");
}

UTIL_ShareImage::UTIL_ShareImage(const QString &name) : d(std::make_unique<res::ShareImageData>())
{
    const QByteArray path = res::lockFileOf(name);
    if (auto file = openLockFile(path))
        d->lockFile = std::move(*file);
    else
        say("UTIL_ShareImage::UTIL_ShareImage() error opening image file");
    d->key = res::keyOfSharedImage(name);
    d->attachIfThere();
}

UTIL_ShareImage::~UTIL_ShareImage()
{
    destroy();
    if (d->lockFile.get() == 0) // Promised: a lock file that took the place of standard input stays open.
        std::ignore = d->lockFile.give();
}

bool UTIL_ShareImage::lock()
{
    if (d->lockDepth != 0) {
        ++d->lockDepth;
        return true;
    }
    if (!d->lockFile) {
        say("UTIL_ShareImage::unlock() error: fd not valid"); // Promised: both have the same text.
        return false;
    }
    // Promised: a shared lock for writers too, so that two of them do not exclude each other.
    if (!platform::lockRecordShared(d->lockFile.get())) {
        say("UTIL_ShareImage::lock() failed");
        return false;
    }
    d->lockDepth = 1;
    return true;
}

bool UTIL_ShareImage::unlock()
{
    if (d->lockDepth > 1) {
        --d->lockDepth;
        return true;
    }
    if (d->lockDepth == 0) {
        say("UTIL_ShareImage::unlock() error: not holding lock");
        return false;
    }
    if (!d->lockFile) {
        say("UTIL_ShareImage::unlock() error: fd not valid");
        return false;
    }
    if (!platform::unlockRecord(d->lockFile.get())) {
        say("UTIL_ShareImage::unlock() failed");
        return false;
    }
    d->lockDepth = 0;
    return true;
}

bool UTIL_ShareImage::exists()
{
    lock();
    const bool found = d->findSegment(0666, 1) && d->size;
    if (!found)
        say("UTIL_ShareImage::shared memory does not exist");
    unlock();
    return found;
}

bool UTIL_ShareImage::create(const char *data, unsigned int length)
{
    if (!lock()) {
        say("UTIL_ShareImage::create() error: lock failed");
        return false;
    }
    const auto pixels = res::SharedPixels::decode({data, qsizetype(length)});
    if (pixels.image.isNull()) {
        unlock();
        return false;
    }
    const auto segment = d->findSegment(IPC_CREAT | 0666, pixels.segmentSize());
    say("Create new shared memory");
    if (!segment) {
        say("UTIL_ShareImage::create() error: shmget failed", segment.error());
        unlock();
        return false;
    }
    auto attached = ShmAttachment::attach(*segment, ShmAttachment::Access::ReadWrite);
    if (!attached) {
        say("UTIL_ShareImage::create() error: shmat failed");
        unlock();
        return false;
    }
    d->size = attached->bytes().size();
    d->attachment = std::make_shared<ShmAttachment>(std::move(*attached));
    d->store(pixels);
    if (!unlock()) {
        say("UTIL_ShareImage::pixmapToMem() error: unlock failed");
        return false;
    }
    return true;
}

bool UTIL_ShareImage::set(const char *data, unsigned int length)
{
    if (!lock()) {
        say("UTIL_ShareImage::set() error: lock failed");
        return false;
    }
    if (!d->attachment) {
        say("UTIL_ShareImage::set() error: not attached to a pixmap");
        return false; // Promised: the lock stays taken.
    }
    const auto pixels = res::SharedPixels::decode({data, qsizetype(length)});
    if (pixels.image.isNull()) {
        unlock();
        return false;
    }
    d->store(pixels);
    if (!unlock()) {
        say("UTIL_ShareImage::set() error: unlock failed");
        return false;
    }
    return true;
}

void UTIL_ShareImage::setData(const QPixmap &pixmap, const QBitmap &mask)
{
    const auto pixels = res::SharedPixels::of(pixmap, mask);
    if (!d->attachment || pixels.image.isNull())
        return;
    d->store(pixels);
}

bool UTIL_ShareImage::getImage(QPixmap &pixmap)
{
    if (!lock()) {
        say("UTIL_ShareImage::attach() error: lock failed");
        unlock();
        return false;
    }
    if (d->attachment) {
        const QImage image = res::sharedImage(d->attachment);
        if (image.isNull()) {
            say("UTIL_ShareImage::attach() error: check failed");
            unlock();
            return false;
        }
        pixmap = QPixmap::fromImage(image, Qt::NoFormatConversion);
    }
    if (!unlock()) {
        say("UTIL_ShareImage::attach() error: unlock failed");
        return false;
    }
    return true;
}

bool UTIL_ShareImage::getMask(QBitmap &bitmap)
{
    if (!lock())
        return false;
    if (d->attachment && res::SharedHeader::parse(d->attachment->bytes()))
        bitmap = QBitmap::fromImage(res::sharedMask(d->attachment));
    unlock();
    return true;
}

bool UTIL_ShareImage::destroy()
{
    lock();
    say("UTIL_ShareImage::destroy()");
    if (d->attachment) {
        // Pixmaps that use the segment keep it; the last of them detaches.
        const bool last = d->attachment.use_count() == 1;
        const bool failed = last && !d->attachment->detach();
        say(failed ? "UTIL_ShareImage::destroy() error: shmdt failed" : "UTIL_ShareImage::destroy() : data detched");
        d->attachment.reset();
    }
    d->size.reset();
    unlock();
    return true;
}
