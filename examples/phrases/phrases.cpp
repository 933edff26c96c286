// A whole input method: a pad with sentences that are typed with one tap. Copy the library into
// $TYX_LOCAL_DOWNLOAD_PATH/inputmethods/ and choose it in the menu of the keyboard's title strip.
#include <QGridLayout>
#include <QPushButton>
#include <ZInputMethodPlugin>

namespace {

class Pad : public QWidget {
public:
    explicit Pad(ZInputMethodSink &sink)
    {
        auto *grid = new QGridLayout(this);
        grid->setContentsMargins(3, 3, 3, 3);
        grid->setSpacing(3);
        const QStringList phrases{QStringLiteral("Yes."), QStringLiteral("No."), QStringLiteral("Thank you!"),
            QStringLiteral("I am late."), QStringLiteral("Call me back."), QStringLiteral("On my way.")};
        for (int i = 0; i < phrases.size(); ++i)
            connect(addKey(*grid, i / 2, i % 2, phrases.at(i)), &QPushButton::clicked, this,
                [&sink, text = phrases.at(i)] { sink.sendText(text + QStringLiteral(" ")); });
        connect(addKey(*grid, 3, 0, QStringLiteral("Delete")), &QPushButton::clicked, this,
            [&sink] { sink.sendKey(Qt::Key_Backspace); });
        connect(addKey(*grid, 3, 1, QStringLiteral("Enter")), &QPushButton::clicked, this,
            [&sink] { sink.sendKey(Qt::Key_Return); });
    }

private:
    QPushButton *addKey(QGridLayout &grid, int row, int column, const QString &text)
    {
        auto *key = new QPushButton(text, this);
        grid.addWidget(key, row, column);
        return key;
    }
};

}

class Phrases : public QObject, public ZInputMethodPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID ZInputMethodPlugin_iid FILE "phrases.json")
    Q_INTERFACES(ZInputMethodPlugin)

public:
    QWidget *createWidget(ZInputMethodSink &sink) override { return new Pad(sink); }
    void runCommand(const IMStateCmd & /*command*/) override { }
};

#include "phrases.moc"
