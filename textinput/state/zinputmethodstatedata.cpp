#include "textinput/state/zinputmethodstatedata.h"

#include "platform/system/keyfile.h"
#include "platform/window/qwsapplication.h"
#include "textinput/state/inputmethodsegment.h"

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

using platform::ShmAttachment;

namespace {

// There is one in a process, and others in it are guests of that one.
const ZInputMethodStateData *servingObject = nullptr;

// Of a server that died without removing them. Its clients keep what they have attached.
void removeLeftovers()
{
    if (const auto key = platform::keyOfFile(imsegment::kFile, imsegment::kProject)) {
        if (const auto id = ShmAttachment::segment({*key, 0}, imsegment::kSize))
            std::ignore = ShmAttachment::remove(*id);
    }
    std::remove(imsegment::kFile);
}

}

bool ZInputMethodStateData::connectIMServer()
{
    if (m_segment)
        return true;
    if (QWSApplication::type() == QWSApplication::GuiServer && !servingObject)
        return becomeServer();
    return attach(0);
}

bool ZInputMethodStateData::becomeServer()
{
    removeLeftovers();
    const mode_t mask = ::umask(0);
    const auto made = platform::makeKeyFile(imsegment::kFile);
    ::umask(mask);
    if (!made || !attach(IPC_CREAT | 0666))
        return false;
    m_server = true;
    servingObject = this;
    const auto segment = bytes();
    std::fill(segment.begin(), segment.end(), std::byte{0});
    std::fill_n(segment.begin() + imsegment::kChecked, 2, std::byte{0xFF}); // none
    segment[imsegment::kKeyboardFilter] = std::byte{1};
    return true;
}

// The key is made of the file: no file, no connection.
bool ZInputMethodStateData::attach(int flags)
{
    const auto key = platform::keyOfFile(imsegment::kFile, imsegment::kProject);
    if (!key)
        return false;
    const auto id = ShmAttachment::segment({*key, flags}, imsegment::kSize);
    if (!id)
        return false;
    auto segment = ShmAttachment::attach(*id, ShmAttachment::Access::ReadWrite);
    if (!segment || segment->bytes().size() < imsegment::kSize)
        return false;
    m_segment.emplace(std::move(*segment));
    m_bytes = m_segment->bytes().first(imsegment::kSize);
    m_id = *id;
    return true;
}

void ZInputMethodStateData::disconnectIMServer()
{
    m_bytes = {};
    m_segment.reset();
    if (m_server) {
        std::ignore = ShmAttachment::remove(m_id);
        std::remove(imsegment::kFile);
        servingObject = nullptr;
    }
    m_id = -1;
    m_server = false;
}
