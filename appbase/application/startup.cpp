// What an application object does when it is made, step by step, and what of it can be done again later.
#include "appbase/application/keytouchpanelevent.h"
#include "appbase/application/language.h"
#include "appbase/application/testcapturehandler.h"
#include "appbase/application/zapplication.h"
#include "appbase/application/zapplication_p.h"
#include "appbase/look/phonepalette.h"
#include "appbase/look/textsize.h"
#include "appbase/look/tyxskin.h"
#include "appbase/look/tyxstyle.h"
#include "appbase/look/tyxwsdecoration.h"
#include "platform/system/fatal.h"

#include <cstdio>

namespace {

// What only the GUI server does, before anything of the application object looks into the status table.
std::unique_ptr<ServerStatus> beginServer(QObject &owner)
{
    auto status = std::make_unique<ServerStatus>();
    UTIL_KeyTouchPanelEvent::instance();
    if (platform::isFlexBitSet())
        new QTestCaptureHandler(&owner);
    handOverSettings();
    return status;
}

}

// The order is part of the interface: a channel is open before waiting messages are looked for, the environment is set
// before anything reads it, and the channel of the process says that the application is ready.
ZApplication::ZApplication(int &argc, char **argv, Type type) : QWSApplication(argc, argv, type)
{
    std::unique_ptr<InputDrivers> drivers = type == GuiServer ? std::make_unique<InputDrivers>() : nullptr;
    std::unique_ptr<ServerStatus> serverStatus = type == GuiServer ? beginServer(*this) : nullptr;
    d = std::make_unique<ZApplicationData>(*this, argc > 0 ? argv[0] : "");
    d->drivers = std::move(drivers);
    d->serverStatus = std::move(serverStatus);
    if (type == GuiServer) {
        d->open("TYX/QtServer", &ZApplicationData::slotServerMessage);
        d->followWindowServer();
    }
    d->open("TYX/System", &ZApplicationData::slotSystemMessage);
    d->open(applicationChannel(d->name.toLocal8Bit()), &ZApplicationData::slotAppMessage);
    d->getMsgs(d->name);
    d->getMsgs(QString::number(applicationPid()));
    publishThemePaths(d->theme);
    if (type == GuiServer && !d->theme.skinFile.isEmpty())
        shareSkin(d->theme.skinFile); // the image of an earlier server is still there
    applyStyle();
    initPalette();
    loadTYXFonts();
    initTextSize();
    qwsSetDecoration(new TYXWSDecoration);
    loadString(d->name);
    installEventFilter(this);
    createChannel();
    createTouchSoundMsgQueue();
    enableHardKeyEventFilter(true);
}

void ZApplication::applyStyle()
{
    TYXSkin::reload();
    setStyle(new TYXStyle);
}

void ZApplication::initPalette() { applyPalette(); }

void ZApplication::applyPalette() { setPalette(currentPalette()); }

void ZApplication::loadTYXFonts() { d->fonts.read(); }

void ZApplication::initTextSize() { changeTextSize(); }

void ZApplication::changeTextSize() { setFont(d->fonts.font(currentTextSize())); }

void ZApplication::setEnv(const QString &nameAndValue)
{
    const qsizetype equals = nameAndValue.indexOf(u'=');
    if (equals > 0 && !nameAndValue.contains(QChar::Null))
        qputenv(nameAndValue.first(equals).toLocal8Bit().constData(), nameAndValue.sliced(equals + 1).toLocal8Bit());
}

bool ZApplication::loadString(const QString &name)
{
    d->language = currentLanguage();
    const StringFiles files = stringFiles(stringDirectory(), d->language, name);
    const bool loaded = d->applicationStrings.load(files.application);
    d->libraryStrings.load(files.library);
    return loaded;
}

bool ZApplication::createChannel()
{
    const QCString channel = applicationChannel(QByteArray::number(applicationPid()));
    if (QCopChannel::isRegistered(channel))
        return false;
    d->open(channel, &ZApplicationData::pidMessage);
    connect(this, &ZApplication::clickAppIcon, this, &ZApplication::slotClickAppIcon);
    connect(this, &ZApplication::signalRaise, this, &ZApplication::slotRaise);
    connect(this, &ZApplication::usbStorageInOut, this, &ZApplication::slotUsbStorageInOut);
    // A channel that no server knows reaches nobody now; it works once there is a server again.
    if (QCopChannel::isRegistered(channel))
        return true;
    std::fputs(" can not create new pid QCopChannel .\n", stderr);
    return false;
}
