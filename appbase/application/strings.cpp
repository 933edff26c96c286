#include "appbase/application/strings.h"

#include "appbase/config/configfile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QtEndian>
#include <cerrno>
#include <cstdio>
#include <optional>

namespace {

constexpr qint64 kMaxBytes = 4 << 20; // ten times the texts of a large application
constexpr QLatin1String kDefaultLanguage("en-us");

bool staysInFolder(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") && !name.contains(u'/')
        && !name.contains(QChar::Null);
}

QString languageWithFolder(const QString &directory, const QString &language)
{
    if (staysInFolder(language) && QFileInfo(directory + language).isDir())
        return language;
    const QStringList others = QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    return others.isEmpty() ? QString(kDefaultLanguage) : others.constFirst();
}

// Compiled translations: a magic word and blocks, each a tag, a length (32 bits, big-endian) and as many bytes.
// "Hashes" are pairs of a hash and the place of a message in the block "messages"; a message is a row of tagged texts.
constexpr QByteArrayView kMagic("\x3c\xb8\x64\x18\xca\xef\x9c\x95\xcd\x21\x1c\xbf\x60\xa1\xbd\xdd", 16);
enum BlockTag : quint8 { Hashes = 0x42, Messages = 0x69, NumerusRules = 0x88, Language = 0xa7 };
enum MessageTag : quint8 { End = 1, Translation = 3, SourceText = 6, Context = 7, Comment = 8 };
constexpr qsizetype kHashSize = 4 + 4;
constexpr quint32 kNullText = 0xFFFFFFFF; // instead of a length: an empty translation, of which no bytes follow

std::optional<quint32> takeNumber(QByteArrayView &bytes)
{
    if (bytes.size() < 4)
        return std::nullopt;
    const auto number = qFromBigEndian<quint32>(bytes.data());
    bytes = bytes.sliced(4);
    return number;
}

std::optional<QByteArrayView> takeCounted(QByteArrayView &bytes)
{
    const auto length = takeNumber(bytes);
    if (!length || *length > size_t(bytes.size()))
        return std::nullopt;
    const QByteArrayView taken = bytes.first(qsizetype(*length));
    bytes = bytes.sliced(taken.size());
    return taken;
}

bool takeText(QByteArrayView &message, quint8 tag)
{
    QByteArrayView rest = message;
    if (tag == Translation && takeNumber(rest) == kNullText) {
        message = rest;
        return true;
    }
    const auto text = takeCounted(message);
    return text && (tag != Translation || text->size() % 2 == 0);
}

// Walks one message. `steps` is what may still be walked in all: messages that overlap would take for ever.
bool isSoundMessage(QByteArrayView message, qsizetype &steps)
{
    while (!message.isEmpty() && steps-- > 0) {
        const auto tag = static_cast<quint8>(message.front());
        message = message.sliced(1);
        if (tag == End)
            return true;
        if (tag != Translation && tag != SourceText && tag != Context && tag != Comment)
            return false;
        if (!takeText(message, tag))
            return false;
    }
    return false;
}

bool areSoundMessages(QByteArrayView hashes, QByteArrayView messages)
{
    if (hashes.size() % kHashSize != 0)
        return false;
    qsizetype steps = messages.size();
    for (; !hashes.isEmpty(); hashes = hashes.sliced(kHashSize)) {
        const auto place = qFromBigEndian<quint32>(hashes.data() + 4);
        if (place >= size_t(messages.size()) || !isSoundMessage(messages.sliced(place), steps))
            return false;
    }
    return true;
}

}

QString stringDirectory()
{
    const QString directory = QFile::decodeName(qgetenv("TYX_RES_STRING_PATH"));
    return directory.isEmpty() || directory.endsWith(u'/') ? directory : directory + u'/';
}

StringFiles stringFiles(const QString &directory, const QString &language, const QString &application)
{
    if (directory.isEmpty())
        return {};
    const QString code = languageWithFolder(directory, language);
    const auto file = [&](const QString &name) -> QString {
        return directory + code + u'/' + name + u'_' + code + QStringLiteral(".qm");
    };
    return {staysInFolder(application) ? file(application) : QString(), file(QStringLiteral("lib"))};
}

bool areSoundStrings(const QByteArray &file)
{
    QByteArrayView rest(file);
    if (!rest.startsWith(kMagic))
        return false;
    rest = rest.sliced(kMagic.size());
    QByteArrayView hashes;
    QByteArrayView messages;
    while (!rest.isEmpty()) {
        const auto tag = static_cast<quint8>(rest.front());
        rest = rest.sliced(1);
        const auto block = takeCounted(rest);
        if (!block)
            return false;
        if (tag == Hashes)
            hashes = *block;
        else if (tag == Messages)
            messages = *block;
        else if (tag != NumerusRules && tag != Language) // the toolkit checks the rules itself
            return false;
    }
    return areSoundMessages(hashes, messages);
}

LoadedStrings::~LoadedStrings() { remove(); }

void LoadedStrings::remove()
{
    if (m_installed)
        QCoreApplication::removeTranslator(&m_translator);
    m_installed = false;
}

bool LoadedStrings::load(const QString &path)
{
    remove();
    if (path.isEmpty())
        return false;
    const auto file = config::readFile(path, kMaxBytes);
    if (!file && file.error().number == ENOENT)
        return false;
    const bool sound = file && areSoundStrings(*file);
    if (!sound) {
        const QString why = file ? QStringLiteral("no compiled translations, or damaged") : file.error().text();
        std::fprintf(stderr, "strings: %s: %s\n", qUtf8Printable(path), qUtf8Printable(why));
        return false;
    }
    m_file = *file;
    // False also for a file without any translation: there is nothing to install then.
    m_installed = m_translator.load(reinterpret_cast<const uchar *>(m_file.constData()), int(m_file.size()))
        && QCoreApplication::installTranslator(&m_translator);
    return m_installed;
}
