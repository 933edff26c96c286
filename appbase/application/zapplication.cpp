#include "appbase/application/zapplication.h"

#include "appbase/application/inputmessages.h"
#include "appbase/application/zapplication_p.h"
#include "appbase/messaging/wire.h"
#include "appbase/messaging/zmsg.h"

#include <QDataStream>
#include <QWidget>

namespace {

QString withoutFolders(const char *program)
{
    const QString path = QString::fromLocal8Bit(program);
    return path.mid(path.lastIndexOf(u'/') + 1);
}

}

ZApplicationData::ZApplicationData(ZApplication &application, const char *program)
    : name(withoutFolders(program))
    , theme(themePaths())
    , input(application)
    , inputClient(applicationChannel(name.toLocal8Bit()))
    , m_application(application)
{
}

void ZApplicationData::open(
    const QCString &channel, void (ZApplicationData::*handler)(const QCString &, const QByteArray &))
{
    connect(new QCopChannel(channel, this), &QCopChannel::received, this, handler);
}

void ZApplicationData::getMsgs(const QString &waitingFor)
{
    const QList<queue::Record> records = queue::take(waitingFor.toLocal8Bit());
    for (const queue::Record &record : records)
        enqueueMsg(record);
}

void ZApplicationData::enqueueMsg(const queue::Record &record)
{
    m_pending.append(record);
    if (m_pending.size() == 1)
        QMetaObject::invokeMethod(this, &ZApplicationData::deliverNext, Qt::QueuedConnection);
}

// The next one is called for before this one is delivered: a dialog that a message opens does not hold up those behind
// it, and what a message destroys is not touched any more.
void ZApplicationData::deliverNext()
{
    const queue::Record record = m_pending.takeFirst();
    if (!m_pending.isEmpty())
        QMetaObject::invokeMethod(this, &ZApplicationData::deliverNext, Qt::QueuedConnection);
    storedMessage(record);
}

ZApplication::~ZApplication()
{
    removeEventFilter(this); // what dies now sends events of its own
    d->input.stop();
}

void ZApplication::setMainWidget(QWidget *widget) { QWSApplication::setMainWidget(widget); }

bool ZApplication::qwsEventFilter(QWSEvent *event) { return QWSApplication::qwsEventFilter(event); }

QString ZApplication::name() const { return d->name; }

QString ZApplication::language() const { return d->language; }

// Promised: the notice is made and not sent; nobody may wait for it.
void ZApplication::tryQuit()
{
    ZMsg closing("TYX/System", "closing(QString)");
    closing.stream() << d->name;
    processEvents();
    quit();
}

int ZApplication::registerEditor(QWidget *editor) { return d->inputClient.registerEditor(editor); }

void ZApplication::unregisterEditor(QWidget *editor) { d->inputClient.unregisterEditor(editor); }

QWidget *ZApplication::editor(int id) const { return d->inputClient.editor(id); }

void ZApplication::manipulateAppWindows(int operation, const QString &application)
{
    QCopChannel::send("TYX/QtServer", messages::kOrderWindows, wire::pack(operation, application));
}

void ZApplication::slotShutdown()
{
    Q_EMIT shutdown();
    processEvents();
    quit();
}

void ZApplication::slotQuickQuit()
{
    Q_EMIT quickQuit();
    processEvents();
    quit();
}

void ZApplication::slotUsbStorageInOut(bool /*enabled*/) { }

void ZApplication::slotClickAppIcon() { }

void ZApplication::slotRaise()
{
    QWidget *widget = mainWidget();
    if (!widget)
        return;
    widget->show();
    widget->raise();
    widget->activateWindow();
}
