#include "textinput/plugin/inputmethodinfo.h"

#include "appbase/messaging/wire.h"
#include "textinput/plugin/zinputmethodplugin.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>
#include <algorithm>

namespace {

constexpr qsizetype kLongestName = 40; // characters; more do not fit a menu
constexpr qsizetype kLongestLanguages = 200;

// One line, whatever a file says.
QString oneLine(const QString &text, qsizetype longest)
{
    QString line = text.left(longest * 4);
    for (QChar &c : line) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            c = u' ';
    }
    return line.simplified().left(longest).trimmed();
}

bool offersPrediction(const QJsonArray &interfaces)
{
    return std::ranges::any_of(
        interfaces, [](const auto &entry) { return QUuid(entry.toString()) == InputMethodInfo::kPredictive; });
}

// The wire order, for both directions.
template <typename Visitor, typename Info> void infoFields(Visitor visit, Info &info)
{
    visit(info.id);
    visit(info.name);
    visit(info.languages);
    visit(info.type);
    visit(info.predictive);
    visit(info.keys);
    visit(info.system);
}

}

bool InputMethodInfo::speaks(const QString &language) const
{
    const QStringList codes = languages.split(u' ', Qt::SkipEmptyParts);
    return codes.isEmpty() || codes.contains(language.section(u'-', 0, 0));
}

std::optional<InputMethodInfo> readMethodInfo(const QJsonObject &metaData)
{
    if (metaData.value(QStringLiteral("IID")).toString() != QStringLiteral(ZInputMethodPlugin_iid))
        return std::nullopt;
    const QJsonObject said = metaData.value(QStringLiteral("MetaData")).toObject();
    InputMethodInfo info;
    info.id = QUuid(said.value(QStringLiteral("id")).toString());
    info.name = oneLine(said.value(QStringLiteral("name")).toString(), kLongestName);
    QStringList codes;
    for (const auto &code : said.value(QStringLiteral("languages")).toArray())
        codes.append(code.toString());
    info.languages = oneLine(codes.join(u' '), kLongestLanguages);
    info.type = quint32(std::clamp(said.value(QStringLiteral("type")).toInt(0), 0, 255));
    info.predictive = offersPrediction(said.value(QStringLiteral("interfaces")).toArray());
    info.keys = said.value(QStringLiteral("keys")).toBool(false);
    if (info.id.isNull() || info.name.isEmpty())
        return std::nullopt;
    return info;
}

QByteArray packMethods(const QList<InputMethodInfo> &methods)
{
    wire::Writer writer;
    writer.u32(quint32(methods.size()));
    for (const InputMethodInfo &info : methods)
        infoFields([&writer](const auto &field) { writer.value(field); }, info);
    return writer.result();
}

QList<InputMethodInfo> unpackMethods(const QByteArray &bytes)
{
    wire::Reader reader(bytes);
    quint32 count = 0;
    reader.u32(count);
    QList<InputMethodInfo> methods;
    QSet<QUuid> seen;
    for (; count > 0; --count) {
        InputMethodInfo info;
        infoFields([&reader](auto &field) { reader.value(field); }, info);
        if (!reader.ok())
            return {};
        info.name = oneLine(info.name, kLongestName);
        if (info.id.isNull() || info.name.isEmpty() || seen.contains(info.id))
            continue;
        seen.insert(info.id);
        methods.append(info);
    }
    return methods;
}
