#include "tools/phone/phonewindow.h"

#include "tools/phone/phoneview.h"
#include "tools/phone/statuspanel.h"
#include "tools/tyx/savefile.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImageWriter>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <csignal>
#include <sys/prctl.h>
#include <tl/expected.hpp>
#include <unistd.h>
#include <utility>

namespace {

constexpr int kPanelWidth = 232;
constexpr int kMargin = 14;
constexpr double kMostOfTheDesktop = 0.95; // of its height; the rest is the frame of the window

QString tyxProgram() { return QCoreApplication::applicationDirPath() + QStringLiteral("/tyx"); }

// The error is a text for people.
tl::expected<void, QString> save(const QImage &picture, const QString &file)
{
    QBuffer png;
    QImageWriter writer(&png, "png");
    if (!writer.write(picture))
        return tl::make_unexpected(writer.errorString());
    return tyx::saveFile(file, png.data());
}

}

PhoneWindow::PhoneWindow(platform::Fd orders, Options options)
    : m_options(std::move(options)), m_hand(std::move(orders))
{
    const QString title = tr("Phone");
    setWindowTitle(m_options.name.isEmpty() ? title : m_options.name + QStringLiteral(" \u2013 ") + title);
    auto *rows = new QHBoxLayout(this);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    rows->setSpacing(kMargin);
    m_view = new PhoneView(m_screen, m_hand);
    rows->addWidget(m_view, 1);
    rows->addWidget(makePanel());
    connect(m_status, &StatusPanel::flipWanted, m_view, &PhoneView::turnFlip);
    connect(m_status, &StatusPanel::headsetWanted, m_view, &PhoneView::plugHeadset);
    const auto takePosture = [this] { m_view->setPosture(m_status->posture()); };
    connect(m_status, &StatusPanel::postureChanged, this, takePosture);
    takePosture();
    connect(&m_hand, &Hand::failed, this, &PhoneWindow::say);
    connect(&m_screen, &ScreenLink::attachedChanged, this, &PhoneWindow::onAttachedChanged);
    connect(&m_tool, &QProcess::readyReadStandardError, this,
        [this] { say(QString::fromUtf8(m_tool.readAllStandardError()).trimmed()); });
    connect(&m_tool, &QProcess::finished, this, &PhoneWindow::onToolEnd);
    connect(&m_tool, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            say(m_tool.program() + QStringLiteral(": ") + m_tool.errorString());
            onToolEnd();
        }
    });
    m_view->setFocus();
    const QSize room = QGuiApplication::primaryScreen()->availableSize();
    resize(sizeHint().boundedTo(room * kMostOfTheDesktop)); // the toolkit's own choice is two thirds at most
}

// The tool ends when it is told to, and is killed if it waits for a phone that does not answer. A recording is whole
// after each of its lines.
PhoneWindow::~PhoneWindow()
{
    delete m_view; // before what it uses
    m_tool.disconnect(this);
    if (m_tool.state() != QProcess::NotRunning) {
        m_tool.terminate();
        m_tool.waitForFinished(1000);
    }
}

QPushButton *PhoneWindow::addButton(QWidget &parent, const QString &text, void (PhoneWindow::*act)())
{
    auto *button = new QPushButton(text, &parent);
    button->setFocusPolicy(Qt::NoFocus); // the keyboard stays the phone's
    connect(button, &QPushButton::clicked, this, act);
    parent.layout()->addWidget(button);
    return button;
}

QWidget *PhoneWindow::makePanel()
{
    auto *panel = new QWidget;
    panel->setFixedWidth(kPanelWidth);
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kMargin);
    auto *state = new QGroupBox(tr("State"));
    m_status = new StatusPanel;
    (new QVBoxLayout(state))->addWidget(m_status);
    column->addWidget(state);
    auto *session = new QGroupBox(tr("Session"));
    session->setLayout(new QVBoxLayout);
    addButton(*session, tr("Screenshot\u2026"), &PhoneWindow::askForPicture);
    m_record = addButton(*session, tr("Record\u2026"), &PhoneWindow::toggleRecording);
    m_replay = addButton(*session, tr("Replay\u2026"), &PhoneWindow::askForReplay);
    column->addWidget(session);
    m_news = new QLabel;
    m_news->setWordWrap(true);
    m_news->setTextFormat(Qt::PlainText);
    m_news->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_news->setFocusPolicy(Qt::NoFocus);
    column->addWidget(m_news);
    column->addStretch();
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this, &PhoneWindow::askForPicture);
    return panel;
}

void PhoneWindow::say(const QString &text) { m_news->setText(text); }

void PhoneWindow::onAttachedChanged()
{
    if (m_screen.isAttached() && m_screen.trouble().isEmpty())
        say({});
}

QString PhoneWindow::proposedFile(const QString &kind, const QString &ending) const
{
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    return QDir(m_options.folder).filePath(kind + u'-' + time + ending);
}

bool PhoneWindow::savePicture(const QString &file)
{
    if (m_screen.picture().isNull()) {
        say(tr("There is no picture yet"));
        return false;
    }
    const auto saved = save(m_screen.picture(), file);
    if (saved)
        say(tr("Saved: ") + file);
    else
        say(file + QStringLiteral(": ") + saved.error());
    return saved.has_value();
}

void PhoneWindow::askForPicture()
{
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Screenshot"), proposedFile(QStringLiteral("screen"), QStringLiteral(".png")), tr("Pictures (*.png)"));
    if (!file.isEmpty())
        savePicture(file);
}

void PhoneWindow::toggleRecording()
{
    if (m_tool.state() != QProcess::NotRunning) {
        m_tool.terminate();
        return;
    }
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Record"), proposedFile(QStringLiteral("session"), QStringLiteral(".rec")));
    if (file.isEmpty())
        return;
    startTool({QStringLiteral("keys"), QStringLiteral("record"), file});
    m_record->setText(tr("Stop recording"));
    m_replay->setEnabled(false);
}

void PhoneWindow::askForReplay()
{
    const QString file = QFileDialog::getOpenFileName(this, tr("Replay"), m_options.folder);
    if (file.isEmpty())
        return;
    startTool({QStringLiteral("keys"), QStringLiteral("replay"), file});
    m_record->setText(tr("Stop replay"));
    m_replay->setEnabled(false);
}

void PhoneWindow::startTool(const QStringList &arguments)
{
    m_tool.setChildProcessModifier([viewer = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM); // a viewer that is killed tells nobody to end
        if (::getppid() != viewer)
            ::_exit(1); // it was killed before
        sigset_t none; // the viewer takes its signals from a descriptor, and a program inherits what is blocked
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    });
    m_tool.start(tyxProgram(), arguments);
}

void PhoneWindow::onToolEnd()
{
    m_record->setText(tr("Record\u2026"));
    m_replay->setEnabled(true);
}
