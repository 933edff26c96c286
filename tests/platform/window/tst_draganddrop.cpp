// Text that the pen drags: moved within an application, copied to others.
#include "tests/platform/window/windowtest.h"

#include <QWidget>

namespace {

constexpr QPoint kText(8, kBarHeight + 10); // on the first row of an editor
constexpr QPoint kBelow(120, 200); // where a drop appends

void pen(QPoint place, bool down = true) { QWSServer::sendMouseEvent(place, down ? Qt::LeftButton : Qt::NoButton); }

QString textOf(Client &client)
{
    client.tell(u"text w"_qs);
    return client.says(u"text w"_qs) ? client.line().section(u' ', 2) : u"no answer"_qs;
}

// The icon that follows the pen, once the server knows that something is dragged.
bool isDragging()
{
    const QWidgetList children = server().screenWidget()->findChildren<QWidget *>();
    return std::any_of(children.begin(), children.end(),
        [](const QWidget *child) { return child->testAttribute(Qt::WA_TransparentForMouseEvents); });
}

// A widget of the server that wants to know what is dragged over it.
class Watcher : public QWidget {
public:
    Watcher() : QWidget(server().screenWidget())
    {
        setGeometry(0, 0, 50, kBarHeight);
        setAcceptDrops(true);
        show();
    }
    QByteArray seen;

protected:
    void dragEnterEvent(QDragEnterEvent *) override { seen += 'e'; }
    void dragLeaveEvent(QDragLeaveEvent *) override { seen += 'l'; }
};

bool takesHold()
{
    pen(kText);
    pen(kText + QPoint(15, 0));
    pen(kText + QPoint(30, 0));
    return QTest::qWaitFor(isDragging);
}

}

class TstDragAndDrop : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void withinAnEditorTextIsMoved();
    void toOthersTextIsCopied();
    void aClientThatDiesEndsItsDrag();
};

void TstDragAndDrop::init()
{
    pen({}, false);
    QTRY_VERIFY(server().clientWindows().isEmpty());
}

void TstDragAndDrop::withinAnEditorTextIsMoved()
{
    Client one;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs) && one.does(u"edit w 0 4 one two"_qs));
    QVERIFY(takesHold());
    pen(kBelow);
    pen(kBelow, false);
    QTRY_COMPARE(textOf(one), u"twoone"_qs);
    QVERIFY(!isDragging());
    QVERIFY(one.does(u"delete w"_qs) && one.shows(u"w"_qs, u"main"_qs)); // it is not waiting for an end of the drag
}

void TstDragAndDrop::toOthersTextIsCopied()
{
    constexpr QPoint kOnTwo(120, 170);
    const QString word = u"w\u00F6rd"_qs;
    Watcher watcher;
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"frameless"_qs) && two.does(u"edit w 0 0 x"_qs) && two.does(u"move w 100 150"_qs));
    Client one;
    QVERIFY(one.shows(u"w"_qs, u"main"_qs) && one.does(u"edit w 0 4 "_qs + word));
    QTRY_COMPARE(two.window(u"w"_qs)->geometry().topLeft(), QPoint(100, 150));

    QVERIFY(takesHold());
    pen({10, 5}); // the watcher
    one.window(u"w"_qs)->lower(); // the press brought it to the front
    pen(kOnTwo);
    QVERIFY(two.says(u"w dragged"_qs));
    pen({120, 5}); // beside all windows
    pen({120, 5}, false);
    QVERIFY(!isDragging());
    QCOMPARE(watcher.seen, "el");
    QCOMPARE(textOf(one), word);
    QCOMPARE(textOf(two), u"x"_qs);

    QVERIFY(takesHold());
    one.window(u"w"_qs)->lower();
    pen(kOnTwo);
    QVERIFY(two.says(u"w dragged"_qs)); // as soon as the text has come to the server
    pen(kOnTwo, false);
    QTRY_COMPARE(textOf(two), u"x"_qs + word);
    QCOMPARE(textOf(one), word);
    QVERIFY(two.does(u"title w still there"_qs)); // the protocol's server did not send it away

    QVERIFY(takesHold());
    QWSServer::setInputEnabled(false);
    QVERIFY(!isDragging());
    QWSServer::setInputEnabled(true);
}

void TstDragAndDrop::aClientThatDiesEndsItsDrag()
{
    auto one = std::make_unique<Client>();
    QVERIFY(one->shows(u"w"_qs, u"main"_qs) && one->does(u"edit w 0 4 word"_qs));
    QVERIFY(takesHold());
    pen(kBelow);
    one.reset();
    QTRY_VERIFY(!isDragging());
    pen(kBelow);
    pen(kBelow, false);
    Client two;
    QVERIFY(two.shows(u"w"_qs, u"main"_qs) && two.does(u"edit w 0 4 one two"_qs));
    QVERIFY(takesHold());
}

int main(int argc, char **argv) { return runOnServer<TstDragAndDrop>(argc, argv); }
#include "tst_draganddrop.moc"
