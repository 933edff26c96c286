// Any bytes as a configuration file. The first line of the input is the question: group, a tab, key.
#include "appbase/config/configcheck.h"
#include "appbase/config/configtext.h"
#include "tests/fuzz/require.h"

#include <QList>
#include <algorithm>
#include <cstdint>

namespace {

bool sameAnswer(const config::Answer &answer, const config::Group *group, QStringView key)
{
    const config::Entry *entry = group ? group->find(key) : nullptr;
    return answer.groupExists == (group != nullptr) && answer.value.isNull() == (entry == nullptr)
        && (!entry || answer.value == entry->value);
}

template <typename Item> bool ordered(const std::vector<Item> &items, QString Item::*name)
{
    for (size_t i = 1; i < items.size(); ++i) {
        if (QStringView(items[i - 1].*name).compare(items[i].*name) >= 0)
            return false;
    }
    return true;
}

void tryText(const QString &text, const QString &group, const QString &key)
{
    config::ConfigText whole(text);
    require(ordered(whole.groups(), &config::Group::name));
    require(sameAnswer(config::lookUp(text, group, key), whole.find(group), key));
    for (const config::Group &found : whole.groups()) {
        require(ordered(found.entries, &config::Entry::key));
        require(sameAnswer(config::lookUp(text, found.name, key), &found, key));
        for (const config::Entry &entry : found.entries)
            require(!entry.value.isNull() && entry.key.trimmed() == entry.key && entry.value.trimmed() == entry.value);
    }
    // What has been read once comes back the same for ever.
    const QByteArray written = whole.format();
    require(config::ConfigText(config::decoded(written)).format() == written);
}

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype end = input.indexOf('\n');
    const QList<QByteArray> question = input.left(end).split('\t');
    const QByteArray file = input.mid(end + 1);
    tryText(config::decoded(file), config::decoded(question.value(0)), config::decoded(question.value(1)));

    int line = 1;
    for (const config::Remark &remark : config::check(file)) {
        require(remark.line >= line && remark.line <= file.count('\n') + 1);
        line = remark.line;
    }
    return 0;
}
