// Calibrates the touch panel: five crosses are touched, two of them make the calibration, all five say how well it
// fits. The GUI server starts it when the pen is held where no screen is. Escape and Clear leave everything as it was.
#include <QCopChannel>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <QtMath>
#include <TouchPanel>
#include <TyxCalibratedTouchPanel>
#include <Wire>
#include <ZApplication>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

constexpr int kInset = 24; // of the crosses from the edges, in pixels
constexpr double kWorst = 8; // pixels between a cross and where it was touched
constexpr QRgb kNight = 0xff101c28;
constexpr QRgb kIce = 0xff9ee0ff;
constexpr QRgb kDim = 0xff3a4e62;
constexpr QRgb kOrange = 0xffffb074;

QString text(const char *source) { return QCoreApplication::translate("1.3.1;CALIBRATE", source); }

void say(const QByteArray &line)
{
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

class Crosses : public QWidget {
public:
    Crosses()
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setWindowTitle(text("Touch panel"));
    }

protected:
    // Whatever comes in front of it, a call say, needs the pen.
    void changeEvent(QEvent *event) override
    {
        QWidget::changeEvent(event);
        if (event->type() != QEvent::ActivationChange)
            return;
        if (!isActiveWindow())
            m_pen.reset();
        else if (!m_pen && !m_residual)
            begin();
    }
    void resizeEvent(QResizeEvent * /*event*/) override { place(); }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Backspace || m_residual)
            close();
    }
    // Comes when the calibration is in force: whoever hits the screen now can use it.
    void mouseReleaseEvent(QMouseEvent * /*event*/) override
    {
        if (m_residual)
            close();
    }

    void paintEvent(QPaintEvent * /*event*/) override;

private:
    static constexpr int kCount = QWSPointerCalibrationData::LastLocation + 1;

    void begin();
    void place();
    void receive(const QCString &message, const QByteArray &arguments);
    void touched(const QPoint &device);
    void finish();
    [[nodiscard]] double residualOf(const TyxCalibratedTouchPanel &panel) const;
    void paintCross(QPainter &painter, int index) const;

    std::unique_ptr<QCopChannel> m_pen; // while the panel's own numbers come to us
    QWSPointerCalibrationData m_points;
    int m_next = 0; // cross to be touched
    std::optional<QPoint> m_down;
    std::optional<double> m_residual; // when it is done
    QString m_complaint; // why it began anew
};

void Crosses::begin()
{
    const QCString name("TYX/Tool/" + QByteArray::number(QCoreApplication::applicationPid()) + "/pen");
    m_pen = std::make_unique<QCopChannel>(name);
    connect(m_pen.get(), &QCopChannel::received, this, &Crosses::receive);
    QCopChannel::send("TYX/TouchPanel", "capture(QCString)", wire::pack(name));
    m_next = 0;
    m_down.reset();
    place();
    update();
    say("cross 1");
}

void Crosses::place()
{
    const QRect screen(mapToGlobal(QPoint(0, 0)), size());
    const QRect inner = screen.adjusted(kInset, kInset, -kInset, -kInset);
    using Points = QWSPointerCalibrationData;
    m_points.screenPoints[Points::TopLeft] = inner.topLeft();
    m_points.screenPoints[Points::BottomLeft] = inner.bottomLeft();
    m_points.screenPoints[Points::BottomRight] = inner.bottomRight();
    m_points.screenPoints[Points::TopRight] = inner.topRight();
    m_points.screenPoints[Points::Center] = inner.center();
}

void Crosses::receive(const QCString &message, const QByteArray &arguments)
{
    qint32 x = 0;
    qint32 y = 0;
    bool isDown = false;
    if (message != "raw(int,int,bool)" || !wire::unpack(arguments, x, y, isDown))
        return;
    if (isDown)
        m_down = QPoint(x, y); // where it is lifted counts: a finger settles
    else if (const auto place = std::exchange(m_down, std::nullopt))
        touched(*place);
}

void Crosses::touched(const QPoint &device)
{
    m_points.devPoints[m_next] = device;
    m_complaint.clear();
    if (++m_next == kCount)
        finish();
    else
        say("cross " + QByteArray::number(m_next + 1));
    update();
}

double Crosses::residualOf(const TyxCalibratedTouchPanel &panel) const
{
    double worst = 0;
    for (int i = 0; i < kCount; ++i) {
        const QPointF off = panel.transform(m_points.devPoints[i]) - m_points.screenPoints[i];
        worst = std::max(worst, std::hypot(off.x(), off.y()));
    }
    return worst;
}

void Crosses::finish()
{
    TyxCalibratedTouchPanel panel;
    panel.clearCalibration();
    panel.calibrate(&m_points);
    TP_Calibration_Parameter_T computed;
    panel.getCalibration(&computed);
    const double residual = residualOf(panel);
    const bool fits = computed != TP_Calibration_Parameter_T{} && residual <= kWorst;
    m_next = 0;
    if (!fits) {
        m_complaint = computed == TP_Calibration_Parameter_T{}
            ? text("These places are too close together.")
            : text("These places do not fit together: off by %1 pixels.").arg(qCeil(residual));
        say("refused");
    } else if (!UTIL_SetTPCalibrate(&computed)) {
        m_complaint = text("It cannot be stored.");
        say("not stored");
    } else {
        m_residual = residual;
        m_pen.reset(); // the pen is one again
        say("stored");
    }
}

void Crosses::paintCross(QPainter &painter, int index) const
{
    constexpr int kArm = 12;
    const QPoint centre = mapFromGlobal(m_points.screenPoints[index]);
    const bool isNext = index == m_next && !m_residual;
    painter.setPen(QPen(QColor(isNext ? kIce : kDim), isNext ? 3 : 1));
    painter.drawLine(centre - QPoint(kArm, 0), centre + QPoint(kArm, 0));
    painter.drawLine(centre - QPoint(0, kArm), centre + QPoint(0, kArm));
    if (isNext)
        painter.drawEllipse(centre, kArm / 2, kArm / 2);
}

void Crosses::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(kNight));
    for (int i = 0; i < kCount; ++i) {
        if (!m_residual)
            paintCross(painter, i);
    }
    painter.setPen(QColor(m_complaint.isEmpty() ? kIce : kOrange));
    QStringList words;
    if (m_residual)
        words << text("Done. Off by %1 pixels at most.").arg(*m_residual, 0, 'f', 1)
              << text("Touch the screen to close.");
    else
        words << m_complaint << text("Touch the middle of the bright cross.");
    words.removeAll(QString());
    const QRect upper = m_residual ? rect() : rect().adjusted(0, 0, 0, -height() / 3);
    painter.drawText(upper.adjusted(kInset, kInset * 2, -kInset, 0), Qt::AlignCenter | Qt::TextWordWrap,
        words.join(QStringLiteral("\n\n")));
}

}

int main(int argc, char **argv)
{
    ZApplication app(argc, argv);
    Crosses crosses;
    app.setMainWidget(&crosses);
    crosses.showFullScreen();
    return ZApplication::exec();
}
