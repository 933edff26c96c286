// A whole application: a window with a menu, a text field, and a list of what the phone told it.
// Try it: scripts/in-phone tyx bus send TYX/Application/hello "greet(QString)" qstring:You
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <ZApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);

    QWidget window;
    window.setWindowTitle(QStringLiteral("Hello"));
    QLineEdit text;
    text.setPlaceholderText(QStringLiteral("Say something"));
    QListWidget log;
    log.setFocusPolicy(Qt::NoFocus);
    QPushButton options(QStringLiteral("Options"));
    options.setFocusPolicy(Qt::NoFocus);
    QVBoxLayout column(&window);
    column.setContentsMargins(6, 6, 6, 6);
    for (QWidget *widget :
        {static_cast<QWidget *>(&text), static_cast<QWidget *>(&log), static_cast<QWidget *>(&options)})
        column.addWidget(widget);

    const auto tell = [&log](const QString &line) {
        log.addItem(line);
        log.scrollToBottom();
        std::printf("%s\n", qUtf8Printable(line));
        std::fflush(stdout);
    };
    tell(QStringLiteral("Language: ") + app.language());

    QObject::connect(&text, &QLineEdit::returnPressed, &text, [&] {
        tell(QStringLiteral("You said: ") + text.text());
        text.clear();
    });
    QObject::connect(&app, &ZApplication::appMessage, &log,
        [&](const QCString &message) { tell(QStringLiteral("Message: ") + QString::fromUtf8(message)); });
    QObject::connect(&app, &ZApplication::signalOpenDoc, &log,
        [&](const QString &document) { tell(QStringLiteral("Open: ") + document); });

    QMenu menu;
    menu.addAction(QStringLiteral("Clear the list"), &log, &QListWidget::clear);
    menu.addAction(QStringLiteral("Say hello"), &log, [&] { tell(QStringLiteral("Hello, phone!")); });
    menu.addSeparator();
    menu.addAction(QStringLiteral("Exit"), &app, &ZApplication::quit);
    options.setMenu(&menu);

    app.setMainWidget(&window);
    window.show();
    return ZApplication::exec();
}
