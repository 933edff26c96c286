// A pad for numbers as an input method: the keys of a telephone, and what sums and dates need.
#include "textinput/keyboard/keypanel.h"
#include "textinput/plugin/zinputmethodplugin.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

class NumberPad : public KeyPanel {
public:
    using KeyPanel::KeyPanel;

protected:
    void addKeys() override
    {
        const QString rows[] = {u"123"_s, u"456-"_s, u"789."_s, u"*0#"_s};
        for (int row = 0; row < 4; ++row) {
            QList<KeyboardKey> keys = typing(rows[row]);
            if (row == 0)
                keys.append({KeyboardKey::Backspace, {}, {}});
            else if (row == 3)
                keys.append({KeyboardKey::Enter, {}, {}});
            addRow(keys, {2.7, 2.7, 2.7, 1.9}, row);
        }
    }

    [[nodiscard]] QString offeredBy(const KeyboardKey &key) const override
    {
        const QHash<QString, QString> offers{
            {u"0"_s, u"+"_s}, // before the number of a country
            {u"*"_s, u"pw"_s}, // a pause while it is dialled; a wait
            {u"#"_s, u" "_s},
            {u"-"_s, u"()/=%"_s},
            {u"."_s, u",:;"_s},
        };
        return offers.value(key.text);
    }
};

}

class NumberPadPlugin : public QObject, public ZInputMethodPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "numberpad.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    QWidget *createWidget(ZInputMethodSink &sink) override { return new NumberPad(sink); }
    void runCommand(const IMStateCmd & /*command*/) override { } // it is the same for every text
};

#include "numberpadplugin.moc"
