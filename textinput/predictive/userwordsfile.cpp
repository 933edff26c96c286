#include "textinput/predictive/userwordsfile.h"

#include "platform/system/filecontent.h"
#include "platform/system/filereplace.h"

#include <cstdio>

namespace {

constexpr quint64 kSaveEvery = 20; // words: so many are lost at most when the power goes
constexpr mode_t kMode = 0600; // what the user writes is nobody else's

}

UserWordsFile::UserWordsFile(QString path, UserDictionary &words) : m_path(std::move(path)), m_words(words)
{
    const auto text = platform::fileContent(m_path, UserDictionary::kLargestFile);
    if (text)
        m_words.read(*text);
    else
        m_left = text.error().number != ENOENT;
    if (m_left)
        std::fprintf(stderr, "tyx-imhost: %s: %s; it is left as it is, and new words are not kept\n",
            qUtf8Printable(m_path), qUtf8Printable(text.error().text()));
    m_tried = m_saved = m_words.changes();
}

void UserWordsFile::save()
{
    m_tried = m_words.changes();
    if (m_left || m_saved == m_tried)
        return;
    const QByteArray text = m_words.write();
    if (const auto done = platform::replaceFile(m_path, std::as_bytes(std::span(text)), kMode); !done)
        std::fprintf(stderr, "tyx-imhost: %s: %s; the words are kept for the next time\n", qUtf8Printable(m_path),
            qUtf8Printable(done.error().text()));
    else
        m_saved = m_tried;
}

void UserWordsFile::saveMany()
{
    if (m_words.changes() >= m_tried + kSaveEvery)
        save();
}
