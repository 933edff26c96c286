// A whole application: a window with soft keys, a menu with icons, a text field, a dialog, and a list of what the phone
// told it. It speaks the language of the phone and wears its skin, and others as soon as they are set. Holding the pen
// on the list opens the menu too. Try it: scripts/in-phone tyx bus send TYX/Application/hello "greet(QString)"
// qstring:You
#include <QEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QVBoxLayout>
#include <SoftKeyBar>
#include <UTIL_Skin>
#include <ZApplication>
#include <ZMainWidget>
#include <cstdio>

namespace {

QString text(const char *source) { return QCoreApplication::translate("1.1.1;HELLO", source); }
QString menuText(const char *source) { return QCoreApplication::translate("1.1.2;MENU", source); }

// Of the phone's icon set; icons that the user downloaded come first.
QIcon icon(const char *name) { return QIcon(UTIL_Skin::get()->getPixmap(QString::fromLatin1(name))); }

class Window : public ZMainWidget {
public:
    Window()
    {
        setContentWidget(new QWidget);
        contentWidget()->setLayout(&m_column);
        m_log.setFocusPolicy(Qt::NoFocus);
        m_inset.setContentsMargins(6, 6, 6, 6);
        m_inset.setSpacing(6);
        m_inset.addWidget(&m_text);
        m_inset.addWidget(&m_log);
        m_column.setContentsMargins(0, 0, 0, 0);
        m_column.setSpacing(0);
        m_column.addLayout(&m_inset);
        m_column.addWidget(&m_softKeys);
        m_menu.addActions({&m_clear, &m_greet});
        m_options.setMenu(&m_menu);
        m_softKeys.setLeft(&m_options);
        m_softKeys.setRight(&m_exit);
        ZApplication::setMouseMode(&m_log, ZApplication::MouseMode::PressHold);
        m_log.setContextMenuPolicy(Qt::CustomContextMenu);
        connect(&m_log, &QWidget::customContextMenuRequested, &m_menu,
            [this](const QPoint &position) { m_menu.popup(m_log.viewport()->mapToGlobal(position)); });
        connect(&m_text, &QLineEdit::returnPressed, this, &Window::say);
        connect(&m_clear, &QAction::triggered, this, &Window::clear);
        connect(&m_greet, &QAction::triggered, this, [this] { tell(text("Hello, phone!")); });
        connect(&m_exit, &QAction::triggered, qApp, &QCoreApplication::quit);
        ZApplication::instance()->registerEditor(&m_text);
        retranslate();
        putOnIcons();
        tellLanguage();
    }

    void open(const QString &document)
    {
        m_document = document;
        retranslate();
        tell(text("Open: %1").arg(document));
    }

    void tell(const QString &line)
    {
        constexpr int kMostLines = 200; // each new line lays all of them out again
        m_log.addItem(line);
        if (m_log.count() > kMostLines)
            delete m_log.takeItem(0);
        m_log.scrollToBottom();
        std::printf("%s\n", qUtf8Printable(line));
        std::fflush(stdout);
    }

protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange) {
            retranslate();
            tellLanguage();
        }
        if (event->type() == QEvent::StyleChange)
            putOnIcons();
        ZMainWidget::changeEvent(event);
    }

private:
    void retranslate()
    {
        setWindowTitle(m_document.isEmpty() ? text("Hello") : text("Hello") + QStringLiteral(" - ") + m_document);
        m_text.setPlaceholderText(text("Say something"));
        m_options.setText(text("Options"));
        m_clear.setText(menuText("Clear the list"));
        m_greet.setText(menuText("Say hello"));
        m_exit.setText(menuText("Exit"));
    }

    void putOnIcons()
    {
        m_clear.setIcon(icon("menu_delete"));
        m_greet.setIcon(icon("menu_hello"));
    }

    void tellLanguage() { tell(text("Language: %1").arg(ZApplication::instance()->language())); }

    void say()
    {
        tell(text("You said: %1").arg(m_text.text()));
        m_text.clear();
    }

    void clear()
    {
        auto *question = new QMessageBox(QMessageBox::Question, menuText("Clear the list"),
            text("All lines will be gone."), QMessageBox::Ok | QMessageBox::Cancel, this);
        question->setAttribute(Qt::WA_DeleteOnClose);
        connect(question, &QDialog::accepted, &m_log, &QListWidget::clear);
        question->open();
    }

    QString m_document;
    QLineEdit m_text;
    QListWidget m_log;
    QVBoxLayout m_column;
    QVBoxLayout m_inset;
    QMenu m_menu;
    QAction m_options;
    QAction m_clear;
    QAction m_greet;
    QAction m_exit;
    SoftKeyBar m_softKeys;
};

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    Window window;
    QObject::connect(&app, &ZApplication::appMessage, &window, [&](const QCString &message) {
        if (!message.contains("nputWidget")) // the keyboard comes and goes; the window makes room by itself
            window.tell(text("Message: %1").arg(QString::fromUtf8(message)));
    });
    QObject::connect(&app, &ZApplication::signalOpenDoc, &window, &Window::open);
    QObject::connect(&app, &ZApplication::shutdown, &window, [&] { window.tell(text("Good bye")); });
    app.setMainWidget(&window);
    window.show();
    return ZApplication::exec();
}
