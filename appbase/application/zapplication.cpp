#include "appbase/application/zapplication.h"

#include "appbase/application/language.h"
#include "appbase/application/zapplication_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <cstdio>

namespace {

constexpr char kApplicationChannel[] = "TYX/Application/"; // plus the program's name, or its process id in decimal

QString withoutFolders(const char *program)
{
    const QString path = QString::fromLocal8Bit(program);
    return path.mid(path.lastIndexOf(u'/') + 1);
}

}

ZApplicationData::ZApplicationData(ZApplication &application, const char *program)
    : name(withoutFolders(program)), m_application(application)
{
}

void ZApplicationData::open(
    const QCString &channel, void (ZApplicationData::*handler)(const QCString &, const QByteArray &))
{
    connect(new QCopChannel(channel, this), &QCopChannel::received, this, handler);
}

void ZApplicationData::loadLanguage() { language = currentLanguage(); }

ZApplication::ZApplication(int &argc, char **argv, Type type)
    : QWSApplication(argc, argv, type), d(std::make_unique<ZApplicationData>(*this, argc > 0 ? argv[0] : ""))
{
    if (type == GuiServer)
        d->open("TYX/QtServer", &ZApplicationData::slotServerMessage);
    d->open("TYX/System", &ZApplicationData::slotSystemMessage);
    d->open(QCString(kApplicationChannel + d->name.toLocal8Bit()), &ZApplicationData::slotAppMessage);
    d->loadLanguage();
    installEventFilter(this);
    createChannel();
}

ZApplication::~ZApplication() = default;

bool ZApplication::createChannel()
{
    const QCString channel(kApplicationChannel + QByteArray::number(applicationPid()));
    if (QCopChannel::isRegistered(channel))
        return false;
    d->open(channel, &ZApplicationData::pidMessage);
    connect(this, &ZApplication::clickAppIcon, this, &ZApplication::slotClickAppIcon);
    connect(this, &ZApplication::signalRaise, this, &ZApplication::slotRaise);
    connect(this, &ZApplication::usbStorageInOut, this, &ZApplication::slotUsbStorageInOut);
    return true;
}

bool ZApplication::eventFilter(QObject *watched, QEvent *event) { return QWSApplication::eventFilter(watched, event); }

void ZApplication::setMainWidget(QWidget *widget) { QWSApplication::setMainWidget(widget); }

bool ZApplication::qwsEventFilter(QWSEvent *event) { return QWSApplication::qwsEventFilter(event); }

QString ZApplication::name() const { return d->name; }

QString ZApplication::language() const { return d->language; }

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
