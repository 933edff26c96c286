#include "appbase/application/animation.h"

#include <QPainter>
#include <algorithm>

// Not in a namespace: it names a generated function of the outermost one.
static void loadAnimations() { Q_INIT_RESOURCE(animations); }

namespace {

QString fileOf(const char *name)
{
    loadAnimations();
    return QStringLiteral(":/animations/") + QLatin1String(name);
}

}

Animation::Animation(QWidget &window, const char *name) : QWidget(&window), m_movie(fileOf(name))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    m_movie.setCacheMode(QMovie::CacheAll);
    connect(&m_movie, &QMovie::frameChanged, this, qOverload<>(&QWidget::update));
    m_movie.jumpToFrame(0);
    setFixedSize(m_movie.currentPixmap().size());
    m_movie.start();
    show();
    raise();
}

void Animation::centreOn(QPoint inWindow)
{
    const QSize room = parentWidget()->size() - size();
    const QPoint corner = inWindow - rect().center();
    move(std::clamp(corner.x(), 0, std::max(0, room.width())), std::clamp(corner.y(), 0, std::max(0, room.height())));
}

void Animation::dismiss(QPointer<Animation> &animation)
{
    if (!animation)
        return;
    animation->m_movie.stop();
    animation->hide();
    animation->deleteLater();
    animation.clear();
}

void Animation::paintEvent(QPaintEvent * /*event*/) { QPainter(this).drawPixmap(0, 0, m_movie.currentPixmap()); }
