#include "textinput/keyboard/keyboardlayout.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace keyboardlayout {

const QList<KeyboardLayout> &all()
{
    static const QList<KeyboardLayout> layouts{
        {u"en"_s, u"EN"_s, {u"qwertyuiop"_s, u"asdfghjkl"_s, u"zxcvbnm"_s}},
        {u"de"_s, u"DE"_s, {u"qwertzuiopü"_s, u"asdfghjklöä"_s, u"yxcvbnmß"_s}},
        {u"fr"_s, u"FR"_s, {u"azertyuiop"_s, u"qsdfghjklm"_s, u"wxcvbn'é"_s}},
        {u"ru"_s, u"РУ"_s, {u"йцукенгшщзх"_s, u"фывапролджэ"_s, u"ячсмитьбю"_s}},
    };
    return layouts;
}

const KeyRows &symbols(int page)
{
    static const KeyRows pages[] = {
        {u"1234567890"_s, u"@#€%&-+()/"_s, u"*\"':;!?_"_s},
        {u"~`|•√π÷×¶∆"_s, u"£¢$¥^°={}\\"_s, u"[]<>«»¡¿"_s},
    };
    return pages[page == 0 ? 0 : 1];
}

QString accents(QChar letter)
{
    static const QHash<QChar, QString> table{
        {u'a', u"àáâäæãå"_s},
        {u'c', u"çćč"_s},
        {u'e', u"éèêëę"_s},
        {u'i', u"îïíì"_s},
        {u'l', u"ł"_s},
        {u'n', u"ñń"_s},
        {u'o', u"ôöòóœøõ"_s},
        {u's', u"ßśš"_s},
        {u'u', u"üùûú"_s},
        {u'y', u"ÿý"_s},
        {u'z', u"žźż"_s},
        {u'е', u"ё"_s},
        {u'ь', u"ъ"_s},
        {u'.', u",?!:;"_s},
        {u'-', u"–—_"_s},
        {u'"', u"„“”«»"_s},
        {u'\'', u"‘’‚"_s},
        {u'?', u"¿"_s},
        {u'!', u"¡"_s},
        {u'€', u"$£¥"_s},
    };
    return table.value(letter);
}

}
