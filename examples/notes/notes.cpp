// Notes: a list with a search, and an editor. Every change is saved as soon as the editor is left, by replacing the
// file of notes as a whole: a phone that loses its power has the notes of before or those of after.
// Try it: scripts/in-phone tyx bus send TYX/Application/notes "openDoc(QString)" qstring:milk
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QUrl>
#include <QVBoxLayout>
#include <ZApplication>
#include <ZConfig>
#include <ZMainWidget>
#include <ZMultiLineEdit>
#include <algorithm>
#include <cstdio>

namespace {

QString text(const char *source) { return QCoreApplication::translate("1.2.1;NOTES", source); }

// One entry a note. A value of a configuration file is one line: everything that is not a plain letter is encoded.
class NoteFile {
public:
    NoteFile() : m_file(ZConfig::initSettingDirectory() + QStringLiteral("notes.cfg"), false) { }

    QList<QString> ids()
    {
        const auto *entries = m_file.getGroupEntriesKeyList(kGroup);
        return entries ? entries->keys() : QList<QString>();
    }
    QString note(const QString &id) { return QUrl::fromPercentEncoding(m_file.readEntry(kGroup, id).toLatin1()); }
    bool save(const QString &id, const QString &note)
    {
        m_file.setGroup(kGroup);
        const QByteArray encoded = QUrl::toPercentEncoding(note);
        if (!m_file.writeEntry(kGroup, id, QString::fromLatin1(encoded)))
            return false;
        return m_file.flush();
    }
    bool remove(const QString &id) { return m_file.removeEntry(kGroup, id) && m_file.flush(); }
    QString freeId()
    {
        const auto id = [](int n) { return QStringLiteral("%1").arg(n, 8, 10, QLatin1Char('0')); };
        const QList<QString> taken = ids(); // in order, all of one length, unless the file was damaged
        int n = taken.isEmpty() ? 1 : std::clamp(taken.last().toInt(), 0, 99999998) + 1;
        while (taken.contains(id(n)))
            ++n;
        return id(n);
    }

private:
    const QString kGroup = QStringLiteral("NOTES");
    ZConfig m_file;
};

class Window : public ZMainWidget {
public:
    Window() : m_pages(new QStackedWidget)
    {
        setContentWidget(m_pages);
        m_pages->addWidget(listPage());
        m_pages->addWidget(editPage());
        m_undo.setEnabled(false);
        m_redo.setEnabled(false);
        connect(&m_search, &QLineEdit::textChanged, this, &Window::fillList);
        connect(&m_list, &QListWidget::itemClicked, this, &Window::open);
        connect(&m_list, &QListWidget::itemActivated, this, &Window::open);
        connect(&m_new, &QPushButton::clicked, this, [this] {
            if (saved())
                edit(m_file.freeId(), {});
        });
        connect(&m_delete, &QPushButton::clicked, this, &Window::removeChosen);
        connect(&m_done, &QPushButton::clicked, this, &Window::leaveEditor);
        connect(&m_undo, &QPushButton::clicked, &m_editor, &ZMultiLineEdit::undo);
        connect(&m_redo, &QPushButton::clicked, &m_editor, &ZMultiLineEdit::redo);
        connect(&m_editor, &ZMultiLineEdit::undoAvailable, &m_undo, &QWidget::setEnabled);
        connect(&m_editor, &ZMultiLineEdit::redoAvailable, &m_redo, &QWidget::setEnabled);
        // The input method confirms what it composed when the editor is left: that belongs to the note too.
        connect(&m_editor, &ZMultiLineEdit::textChanged, this, [this] {
            if (m_pages->currentIndex() == 0 && m_editor.edited() && saved())
                fillList();
        });
        retranslate();
        fillList();
    }

    void search(const QString &words)
    {
        if (!saved())
            return;
        m_pages->setCurrentIndex(0);
        if (m_search.text() == words)
            fillList();
        else
            m_search.setText(words);
    }

    // False: it is still only on the screen.
    bool save()
    {
        if (m_id.isEmpty() || !m_editor.edited())
            return true;
        const bool saved = m_editor.length() > 0 ? m_file.save(m_id, m_editor.text()) : m_file.remove(m_id);
        if (saved)
            m_editor.setEdited(false);
        tell((saved ? text("Saved: %1") : text("Not saved: %1")).arg(title(m_editor.text())));
        return saved;
    }

protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange)
            retranslate();
        ZMainWidget::changeEvent(event);
    }
    void closeEvent(QCloseEvent *event) override
    {
        if (!saved())
            return event->ignore();
        ZMainWidget::closeEvent(event);
    }

private:
    static void tell(const QString &line)
    {
        std::printf("%s\n", qUtf8Printable(line));
        std::fflush(stdout);
    }
    static QString title(const QString &note) { return note.section(QLatin1Char('\n'), 0, 0).left(40); }

    QWidget *listPage()
    {
        auto *page = new QWidget;
        auto *column = new QVBoxLayout(page);
        auto *row = new QHBoxLayout;
        column->setContentsMargins(4, 4, 4, 4);
        column->addWidget(&m_search);
        column->addWidget(&m_list);
        column->addLayout(row);
        m_new.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        m_delete.setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        m_list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        row->addWidget(&m_new);
        row->addWidget(&m_delete);
        return page;
    }
    QWidget *editPage()
    {
        auto *page = new QWidget;
        auto *column = new QVBoxLayout(page);
        auto *row = new QHBoxLayout;
        column->setContentsMargins(4, 4, 4, 4);
        column->addWidget(&m_editor);
        column->addLayout(row);
        for (QPushButton *button : {&m_done, &m_undo, &m_redo}) {
            button->setFocusPolicy(Qt::NoFocus);
            button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // they share the width of the screen
            row->addWidget(button);
        }
        m_editor.setUnderline(true);
        return page;
    }
    void retranslate()
    {
        setWindowTitle(text("Notes"));
        m_search.setPlaceholderText(text("Search"));
        m_new.setText(text("New"));
        m_delete.setText(text("Delete"));
        m_done.setText(text("Done"));
        m_undo.setText(text("Undo"));
        m_redo.setText(text("Redo"));
    }
    void fillList()
    {
        m_list.clear();
        for (const QString &id : m_file.ids()) {
            const QString note = m_file.note(id);
            if (!note.contains(m_search.text(), Qt::CaseInsensitive))
                continue;
            auto *item = new QListWidgetItem(title(note), &m_list);
            item->setData(Qt::UserRole, id);
            if (id == m_id) // the one that was open can be deleted: a tap opens a note, it does not choose it
                m_list.setCurrentItem(item);
        }
        tell(text("Notes: %1").arg(m_list.count()));
    }
    void open(const QListWidgetItem *item)
    {
        const QString id = item->data(Qt::UserRole).toString();
        if (saved())
            edit(id, m_file.note(id));
    }
    void edit(const QString &id, const QString &note)
    {
        m_id = id;
        m_editor.setText(note);
        m_pages->setCurrentIndex(1);
        m_editor.setFocus();
    }
    // False: the user is told, and goes on with the note.
    bool saved()
    {
        if (save())
            return true;
        m_pages->setCurrentIndex(1);
        auto *message = new QMessageBox(
            QMessageBox::Warning, text("Notes"), text("The note could not be saved."), QMessageBox::Ok, this);
        message->setAttribute(Qt::WA_DeleteOnClose);
        message->open();
        return false;
    }
    void leaveEditor()
    {
        if (!saved())
            return;
        m_pages->setCurrentIndex(0);
        fillList();
    }
    void removeChosen()
    {
        const QListWidgetItem *item = m_list.currentItem();
        const QString id = item ? item->data(Qt::UserRole).toString() : QString();
        if (!item || !m_file.remove(id))
            return;
        if (id == m_id)
            m_id.clear();
        fillList();
    }

    NoteFile m_file;
    QString m_id; // of the note in the editor
    QStackedWidget *m_pages;
    QLineEdit m_search;
    QListWidget m_list;
    ZMultiLineEdit m_editor;
    QPushButton m_new;
    QPushButton m_delete;
    QPushButton m_done;
    QPushButton m_undo;
    QPushButton m_redo;
};

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    Window window;
    QObject::connect(&app, &ZApplication::signalOpenDoc, &window, &Window::search);
    QObject::connect(&app, &ZApplication::shutdown, &window, &Window::save);
    app.setMainWidget(&window);
    window.show();
    return ZApplication::exec();
}
