// Orders about an application's windows, on a phone with real ones; where its editors are.
#include "appbase/messaging/wire.h"
#include "tests/platform/window/windowtest.h"

#include <QCopChannel>
#include <ZApplication>

using namespace Qt::StringLiterals;

namespace {

QString visible() // front first; the active one is marked
{
    QStringList names;
    for (const QWSWindow *window : server().clientWindows()) {
        if (window->isVisible())
            names.append(window->name() + (window->isActive() ? u"*"_s : QString()));
    }
    return names.join(u' ');
}

void order(int operation, const QString &application = u"windowpeer"_s)
{
    ZApplication::manipulateAppWindows(operation, application);
}

}

class TstWindowOrders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void areCarriedOut();
};

void TstWindowOrders::areCarriedOut()
{
    Client app(QStringLiteral(TYX_BINARY_DIR "/tests/windowpeer"), {u"application"_s});
    Client other;
    const QCopChannel toServer("TYX/QtServer");
    QList<int> registeredIn; // windows; an editor is registered before its window is shown, and again when it is
    connect(&toServer, &QCopChannel::received, this, [&](const QCString &message, const QByteArray &arguments) {
        QCString channel;
        int window = -1;
        if (message.startsWith("registerEditor") && wire::unpack(arguments, channel, window))
            registeredIn.append(window);
    });
    QVERIFY(app.shows(u"one"_s, u"main"_s) && app.shows(u"two"_s, u"main"_s));
    QTRY_COMPARE(registeredIn, (QList<int>{0, app.window(u"one"_s)->winId(), 0, app.window(u"two"_s)->winId()}));
    QVERIFY(other.shows(u"other"_s, u"main"_s));
    QTRY_COMPARE(visible(), u"other* two one"_s);
    order(ZApplication::RaiseWindows);
    QTRY_COMPARE(visible(), u"two* one other"_s);
    order(ZApplication::LowerWindows);
    QTRY_COMPARE(visible(), u"other* two one"_s);
    order(ZApplication::FocusWindows);
    QTRY_COMPARE(visible(), u"other two* one"_s);
    for (const int unknown : {0, 7, -1})
        order(unknown);
    order(ZApplication::CloseWindows, u"no such"_s);
    order(ZApplication::CloseWindows, QString());
    QCopChannel::send("TYX/QtServer", "setFocusToLatestWindow(int)", wire::pack(app.window(u"two"_s)->winId()));
    QTRY_COMPARE(visible(), u"other* two one"_s);

    QVERIFY(app.does(u"ask two"_s));
    QTRY_COMPARE(visible(), u"other* question two one"_s);
    QVERIFY(app.does(u"hide one"_s)); // by the application itself: nobody else shows it again
    order(ZApplication::HideWindows);
    QTRY_COMPARE(visible(), u"other*"_s);
    order(ZApplication::ShowWindows);
    QTRY_VERIFY(visible().startsWith(u"question*"_s) && visible().contains(u" two"));
    QVERIFY(!visible().contains(u"one"));
    app.window(u"question"_s)->close();
    QVERIFY(app.says(u"answered"_s)); // it has waited all the time
    order(ZApplication::CloseWindows);
    QVERIFY(app.says(u"two closed"_s));
    QTRY_COMPARE(visible(), u"other*"_s);
}

int main(int argc, char **argv) { return runOnServer<TstWindowOrders, ZApplication>(argc, argv); }

#include "tst_windoworders.moc"
