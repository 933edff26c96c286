// An application on the phone's screen, led by a test: a command a line on standard input, and one line for each answer
// and each event on standard output.
//
//   make NAME KIND WIDTH HEIGHT COLOUR   KIND: main dialog modal popup frameless nofocus -> "made NAME"
//   show|hide|delete|raise|activate|full|normal|menu NAME                                       -> "done NAME"
//   move NAME X Y     title NAME TEXT     colour NAME COLOUR                                           -> "done NAME"
//   id NAME           -> "id NAME NUMBER"
//   ask NAME          runs a dialog -> "done NAME", and "answered" when it ends
//   edit NAME FROM TO TEXT   fills the window with an editor, with a part of its text marked          -> "done NAME"
//   text NAME         -> "text NAME TEXT"
//   exit STATUS       ends the event loop
// Events: "NAME press KEY TEXT-IN-HEX MODIFIERS REPEAT", "NAME release KEY", "NAME down|up|move X Y", "NAME wheel
// DELTA", "NAME dragged" (over its editor), "NAME active", "NAME inactive", "NAME closed", "NAME shown WIDTH HEIGHT"
// after each new size. With the argument "application" it also has the channels of an application, and its windows are
// editors.
#include "appbase/application/zapplication.h"

#include <QDialog>
#include <QHash>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <ZMultiLineEdit>
#include <cstdio>
#include <unistd.h>

namespace {

void answer(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class PeerWindow : public QWidget {
public:
    PeerWindow(const QString &name, Qt::WindowFlags flags, const QColor &colour)
        : QWidget(nullptr, flags), m_colour(colour)
    {
        setObjectName(name);
        setMouseTracking(true);
        setFocusPolicy(Qt::StrongFocus);
    }

    void setColour(const QColor &colour)
    {
        m_colour = colour;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), m_colour); }
    void keyPressEvent(QKeyEvent *event) override
    {
        say(QStringLiteral("press %1 %2 %3 %4")
                .arg(event->key())
                .arg(QLatin1String(event->text().toUtf8().toHex()))
                .arg(event->modifiers().toInt())
                .arg(event->isAutoRepeat()));
    }
    void keyReleaseEvent(QKeyEvent *event) override { say(QStringLiteral("release %1").arg(event->key())); }
    void mousePressEvent(QMouseEvent *event) override { say(QStringLiteral("down"), *event); }
    void mouseReleaseEvent(QMouseEvent *event) override { say(QStringLiteral("up"), *event); }
    void mouseMoveEvent(QMouseEvent *event) override { say(QStringLiteral("move"), *event); }
    void wheelEvent(QWheelEvent *event) override { say(QStringLiteral("wheel %1").arg(event->angleDelta().y())); }
    void resizeEvent(QResizeEvent *) override { say(QStringLiteral("shown %1 %2").arg(width()).arg(height())); }
    void closeEvent(QCloseEvent *) override { say(QStringLiteral("closed")); }
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::ActivationChange)
            say(isActiveWindow() ? QStringLiteral("active") : QStringLiteral("inactive"));
    }
    bool eventFilter(QObject *, QEvent *event) override // of its editor
    {
        if (event->type() == QEvent::DragEnter)
            say(QStringLiteral("dragged"));
        return false;
    }

private:
    void say(const QString &what) const { answer(objectName() + u' ' + what); }
    void say(const QString &what, const QMouseEvent &event) const
    {
        say(what + QStringLiteral(" %1 %2").arg(event.position().toPoint().x()).arg(event.position().toPoint().y()));
    }

    QColor m_colour;
};

QHash<QString, QPointer<PeerWindow>> windows;

Qt::WindowFlags flagsOf(const QString &kind)
{
    static const QHash<QString, Qt::WindowFlags> flags{
        {QStringLiteral("main"), Qt::Window},
        {QStringLiteral("dialog"), Qt::Dialog},
        {QStringLiteral("modal"), Qt::Dialog},
        {QStringLiteral("popup"), Qt::Popup},
        {QStringLiteral("frameless"), Qt::Window | Qt::FramelessWindowHint},
        {QStringLiteral("nofocus"), Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus},
    };
    return flags.value(kind);
}

void make(const QStringList &words)
{
    auto *window = new PeerWindow(words.value(1), flagsOf(words.value(2)), QColor(words.value(5)));
    window->resize(words.value(3).toInt(), words.value(4).toInt());
    if (words.value(2) == QLatin1String("modal"))
        window->setWindowModality(Qt::ApplicationModal);
    windows[words.value(1)] = window;
    if (auto *application = ZApplication::instance())
        application->registerEditor(window);
}

void menu(PeerWindow &window)
{
    auto *menu = new QMenu(&window);
    menu->addAction(QStringLiteral("first entry"));
    menu->addAction(QStringLiteral("second entry"));
    QObject::connect(menu, &QMenu::aboutToHide, [] { answer(QStringLiteral("menu closed")); });
    menu->popup(window.mapToGlobal(QPoint(30, 40)));
}

void ask(PeerWindow &window)
{
    QDialog dialog(&window);
    dialog.setObjectName(QStringLiteral("question"));
    dialog.exec();
    answer(QStringLiteral("answered"));
}

void edit(PeerWindow &window, const QStringList &words)
{
    auto *editor = new ZMultiLineEdit(&window);
    editor->setGeometry(window.rect());
    editor->viewport()->installEventFilter(&window);
    editor->setText(words.mid(4).join(u' '));
    editor->setSelection(0, words.value(2).toInt(), 0, words.value(3).toInt());
    editor->show();
}

using Action = void (*)(PeerWindow &, const QStringList &);

Action actionFor(const QString &word)
{
    static const QHash<QString, Action> actions{
        {QStringLiteral("show"), [](PeerWindow &w, const QStringList &) { w.show(); }},
        {QStringLiteral("hide"), [](PeerWindow &w, const QStringList &) { w.hide(); }},
        {QStringLiteral("delete"), [](PeerWindow &w, const QStringList &) { delete &w; }},
        {QStringLiteral("raise"), [](PeerWindow &w, const QStringList &) { w.raise(); }},
        {QStringLiteral("activate"), [](PeerWindow &w, const QStringList &) { w.activateWindow(); }},
        {QStringLiteral("full"), [](PeerWindow &w, const QStringList &) { w.showFullScreen(); }},
        {QStringLiteral("normal"), [](PeerWindow &w, const QStringList &) { w.showNormal(); }},
        {QStringLiteral("ask"),
            [](PeerWindow &w, const QStringList &) { QTimer::singleShot(0, &w, [&w] { ask(w); }); }},
        {QStringLiteral("menu"), [](PeerWindow &w, const QStringList &) { menu(w); }},
        {QStringLiteral("move"),
            [](PeerWindow &w, const QStringList &words) { w.move(words.value(2).toInt(), words.value(3).toInt()); }},
        {QStringLiteral("edit"), edit},
        {QStringLiteral("title"), [](PeerWindow &w, const QStringList &words) { w.setWindowTitle(words.value(2)); }},
        {QStringLiteral("colour"),
            [](PeerWindow &w, const QStringList &words) { w.setColour(QColor(words.value(2))); }},
    };
    return actions.value(word);
}

void obey(const QStringList &words)
{
    const QString name = words.value(1);
    if (words.first() == QLatin1String("make")) {
        make(words);
        answer(QStringLiteral("made ") + name);
    } else if (words.first() == QLatin1String("id")) {
        answer(QStringLiteral("id %1 %2").arg(name).arg(QWSApplication::windowId(windows.value(name))));
    } else if (words.first() == QLatin1String("text")) {
        const auto *editor = windows.value(name)->findChild<ZMultiLineEdit *>();
        answer(QStringLiteral("text %1 %2").arg(name, editor ? editor->text() : QString()));
    } else if (words.first() == QLatin1String("exit")) {
        QCoreApplication::exit(name.toInt());
    } else if (const Action action = actionFor(words.first()); action && windows.value(name)) {
        action(*windows.value(name), words);
        answer(QStringLiteral("done ") + name);
    }
}

// Not by way of a buffered stream: what it holds back would not wake the notifier.
void readCommands(QByteArray &pending)
{
    char bytes[4096];
    const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) {
        QCoreApplication::quit(); // the test is gone
        return;
    }
    pending.append(bytes, count);
    for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        obey(QString::fromUtf8(pending.left(end)).split(u' '));
        pending.remove(0, end + 1);
    }
}

}

int main(int argc, char **argv)
{
    const std::unique_ptr<QWSApplication> application = argc > 1
        ? std::make_unique<ZApplication>(argc, argv)
        : std::make_unique<QWSApplication>(argc, argv, QWSApplication::GuiClient);
    QWSApplication::setQuitOnLastWindowClosed(false);
    QByteArray pending;
    QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&pending] { readCommands(pending); });
    answer(QStringLiteral("ready"));
    return QWSApplication::exec();
}
