// A whole application: a window with a menu, a text field, a dialog, and a list of what the phone told it. It speaks
// the language of the phone, and another one as soon as that is set. Holding the pen on the list opens the menu too.
// Try it: scripts/in-phone tyx bus send TYX/Application/hello "greet(QString)" qstring:You
#include <QEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>
#include <ZApplication>
#include <ZMainWidget>
#include <cstdio>

namespace {

QString text(const char *source) { return QCoreApplication::translate("1.1.1;HELLO", source); }
QString menuText(const char *source) { return QCoreApplication::translate("1.1.2;MENU", source); }

class Window : public ZMainWidget {
public:
    Window()
    {
        setContentWidget(new QWidget);
        contentWidget()->setLayout(&m_column);
        m_log.setFocusPolicy(Qt::NoFocus);
        m_options.setFocusPolicy(Qt::NoFocus);
        m_column.setContentsMargins(6, 6, 6, 6);
        m_column.addWidget(&m_text);
        m_column.addWidget(&m_log);
        m_column.addWidget(&m_options);
        m_menu.addActions({&m_clear, &m_greet});
        m_menu.addSeparator();
        m_menu.addAction(&m_exit);
        m_options.setMenu(&m_menu);
        ZApplication::setMouseMode(&m_log, ZApplication::MouseMode::PressHold);
        m_log.setContextMenuPolicy(Qt::CustomContextMenu);
        connect(&m_log, &QWidget::customContextMenuRequested, &m_menu,
            [this](const QPoint &position) { m_menu.popup(m_log.viewport()->mapToGlobal(position)); });
        connect(&m_text, &QLineEdit::returnPressed, this, &Window::say);
        connect(&m_clear, &QAction::triggered, this, &Window::clear);
        connect(&m_greet, &QAction::triggered, this, [this] { tell(text("Hello, phone!")); });
        connect(&m_exit, &QAction::triggered, qApp, &QCoreApplication::quit);
        retranslate();
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
        m_log.addItem(line);
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
    QPushButton m_options;
    QVBoxLayout m_column;
    QMenu m_menu;
    QAction m_clear;
    QAction m_greet;
    QAction m_exit;
};

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    Window window;
    QObject::connect(&app, &ZApplication::appMessage, &window,
        [&](const QCString &message) { window.tell(text("Message: %1").arg(QString::fromUtf8(message))); });
    QObject::connect(&app, &ZApplication::signalOpenDoc, &window, &Window::open);
    QObject::connect(&app, &ZApplication::shutdown, &window, [&] { window.tell(text("Good bye")); });
    app.setMainWidget(&window);
    window.show();
    return ZApplication::exec();
}
