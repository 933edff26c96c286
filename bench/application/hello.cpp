// The window of examples/hello on the toolkit alone; with BENCH_USUAL also a language, settings and messages, as one
// would put them together today: QTranslator, QSettings and an object on D-Bus.
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#ifdef BENCH_USUAL
#include <QDBusConnection>
#include <QSettings>
#include <QTranslator>
#endif

namespace {

#ifdef BENCH_USUAL
class Service : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "bench.Application")

public Q_SLOTS:
    void raise() { }
    void openDoc(const QString & /*document*/) { }
    void shutdown() { QCoreApplication::quit(); }
};

QString usualLanguage(QTranslator &translator, Service &service)
{
    QDBusConnection bus = QDBusConnection::connectToBus(qEnvironmentVariable("BENCH_DBUS"), QStringLiteral("bench"));
    if (!bus.registerObject(QStringLiteral("/application"), &service, QDBusConnection::ExportAllSlots)
        || !bus.registerService(QStringLiteral("bench.hello")))
        qFatal("no D-Bus");
    const QSettings settings(QStringLiteral("/tmp/tyx_system.cfg"), QSettings::IniFormat);
    const QString language =
        settings.value(QStringLiteral("SYS_SYSTEM_SET/LanguageType"), QStringLiteral("en-us")).toString();
    if (translator.load(QStringLiteral("hello_") + language, QStringLiteral("/usr/share/hello")))
        QCoreApplication::installTranslator(&translator);
    return language;
}
#endif

}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QString language = QStringLiteral("en-us");
#ifdef BENCH_USUAL
    QTranslator translator;
    Service service;
    language = usualLanguage(translator, service);
#endif
    QWidget window;
    window.setWindowTitle(QStringLiteral("Hello"));
    QLineEdit text;
    text.setPlaceholderText(QStringLiteral("Say something"));
    QListWidget log;
    log.setFocusPolicy(Qt::NoFocus);
    log.addItem(QStringLiteral("Language: ") + language);
    QPushButton options(QStringLiteral("Options"));
    options.setFocusPolicy(Qt::NoFocus);
    QVBoxLayout column(&window);
    column.setContentsMargins(6, 6, 6, 6);
    for (QWidget *widget :
        {static_cast<QWidget *>(&text), static_cast<QWidget *>(&log), static_cast<QWidget *>(&options)})
        column.addWidget(widget);
    QMenu menu;
    menu.addAction(QStringLiteral("Clear the list"), &log, &QListWidget::clear);
    menu.addAction(QStringLiteral("Exit"), &app, &QApplication::quit);
    options.setMenu(&menu);
    window.show();
    return QApplication::exec();
}

#ifdef BENCH_USUAL
#include "hello.moc"
#endif
