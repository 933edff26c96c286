#include "platform/window/pixmapname.h"

#include <private/qpixmap_raster_p.h>

namespace platform {

namespace {

// The part that the copies of a pixmap share.
class NamedPixmap : public QRasterPlatformPixmap {
public:
    explicit NamedPixmap(const QString &name) : QRasterPlatformPixmap(PixmapType), m_name(name) { }
    [[nodiscard]] QString name() const { return m_name; }

private:
    QString m_name;
};

}

void setPixmapName(QPixmap &pixmap, const QString &name)
{
    QPixmap named(new NamedPixmap(name)); // which takes it over
    if (!pixmap.isNull()) {
        named.handle()->fromImage(pixmap.toImage(), Qt::NoFormatConversion);
        named.setDevicePixelRatio(pixmap.devicePixelRatio());
    }
    pixmap = named;
}

QString pixmapName(const QPixmap &pixmap)
{
    const auto *named = dynamic_cast<const NamedPixmap *>(pixmap.handle());
    return named ? named->name() : QString();
}

}
