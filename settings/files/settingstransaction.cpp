#include "settings/files/settingstransaction.h"

#include "appbase/config/configcheck.h"
#include "appbase/config/configfile.h"
#include "appbase/config/configtext.h"
#include "platform/system/filereplace.h"
#include "settings/files/settingaccess.h"

#include <chrono>
#include <optional>
#include <utility>

using namespace std::chrono_literals;
using platform::FileReplacement;
using platform::Result;

namespace {

constexpr auto kPatience = 5s;

// The lock is the one that every save takes, on the file's temporary. A save asks for it for a third of a second; who
// is to lose nothing has more patience.
Result<FileReplacement> hold(const QString &file)
{
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        auto replacement = FileReplacement::begin(file, config::kFileMode);
        if (replacement || replacement.error().number != EWOULDBLOCK || std::chrono::steady_clock::now() > deadline)
            return replacement;
    }
}

Result<config::ConfigText> readAll(const QString &file)
{
    const auto bytes = config::readFile(file);
    if (!bytes && bytes.error().number != ENOENT)
        return tl::make_unexpected(bytes.error());
    if (bytes && config::whereReadingStops(*bytes))
        return platform::failed("read", EBADMSG);
    return config::ConfigText(config::decoded(bytes.value_or(QByteArray())));
}

}

class SettingsTransactionData {
public:
    void open(const QString &file)
    {
        auto held = hold(file);
        if (!held)
            return fail(held.error());
        auto read = readAll(file);
        if (!read)
            return fail(read.error());
        replacement.emplace(std::move(*held));
        text = std::move(*read);
    }

    void fail(const platform::SysError &failure)
    {
        if (error.number == 0) // the first one is the cause
            error = failure;
        replacement.reset();
    }

    std::optional<FileReplacement> replacement; // as long as the file is held
    config::ConfigText text;
    platform::SysError error; // number 0: none
};

SettingsTransaction::SettingsTransaction(const QString &file) : d(std::make_unique<SettingsTransactionData>())
{
    d->open(file);
}

SettingsTransaction::~SettingsTransaction() = default;

bool SettingsTransaction::isOpen() const { return d->replacement.has_value(); }

QString SettingsTransaction::errorText() const { return d->error.number != 0 ? d->error.text() : QString(); }

QString SettingsTransaction::text(const QString &group, const QString &key, const QString &absent) const
{
    const config::Group *found = d->text.find(group);
    const config::Entry *entry = found ? found->find(key) : nullptr;
    return entry ? config::copied(entry->value) : absent;
}

int SettingsTransaction::number(const QString &group, const QString &key, int absent) const
{
    const QString value = text(group, key);
    return value.isEmpty() ? absent : value.toInt();
}

void SettingsTransaction::set(const QString &group, const QString &key, const QString &value)
{
    const bool isKey = settings::isStorable(key) && !key.contains(u'=') && !key.startsWith(u'[');
    if (!isKey || !settings::isStorable(value) || group.contains(u'\n'))
        return d->fail({"write", EINVAL});
    d->text.ensure(group).set(key, value.isNull() ? QStringLiteral("") : value);
}

void SettingsTransaction::set(const QString &group, const QString &key, int value)
{
    set(group, key, QString::number(value));
}

void SettingsTransaction::remove(const QString &group, const QString &key)
{
    if (config::Group *found = d->text.find(group))
        found->remove(key);
}

bool SettingsTransaction::commit()
{
    auto held = std::exchange(d->replacement, std::nullopt);
    if (!held)
        return false;
    const QByteArray bytes = d->text.format();
    const auto saved =
        held->write(std::as_bytes(std::span(bytes))).and_then([&] { return held->sync(); }).and_then([&] {
            return held->publish();
        });
    if (!saved)
        d->fail(saved.error());
    return saved.has_value();
}
