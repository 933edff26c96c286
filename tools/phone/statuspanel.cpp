#include "tools/phone/statuspanel.h"

#include "platform/values/utf8.h"
#include "settings/status/statuslayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

using status::valueOf;

namespace {

constexpr int kMostAccessories = 8;
constexpr int kNotKnown = 0xFF;

QByteArray cut(const QString &text, int most)
{
    const QByteArray bytes = text.toUtf8();
    return bytes.first(platform::fittingUtf8(bytes, most));
}

QString textOf(const SystemTableCopy &table, status::Text field)
{
    const std::string_view bytes = valueOf(table, field);
    return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

// The panel's own write comes back from the table: it must not go there once more, nor move the cursor.
template <typename Widget, typename Set> void quietly(Widget *widget, Set set)
{
    const QSignalBlocker blocker(widget);
    set(*widget);
}

void setText(QLineEdit *edit, const QString &text)
{
    if (edit->text() != text)
        quietly(edit, [&](QLineEdit &e) { e.setText(text); });
}

void check(QCheckBox *box, bool on)
{
    quietly(box, [&](QCheckBox &b) { b.setChecked(on); });
}

// The least value of the box stands for what is not known; as a byte it is the same.
void setNumber(QSpinBox *box, quint8 value)
{
    quietly(box, [&](QSpinBox &b) { b.setValue(value == kNotKnown ? -1 : value); });
}

}

StatusPanel::StatusPanel(QWidget *parent) : QWidget(parent)
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setLabelAlignment(Qt::AlignLeft);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addBattery(*form);
    addNetwork(*form);
    addCall(*form);
    addCables(*form);
    connect(&m_watcher, &SystemStatusWatcher::changed, this,
        [this](const SystemTableCopy & /*before*/, const SystemTableCopy &now) { take(now); });
    take(m_watcher.current());
}

void StatusPanel::take(const SystemTableCopy &table)
{
    setEnabled(m_watcher.tableExists());
    for (const auto &each : m_shows)
        each(table);
    if (!m_watcher.tableExists())
        return;
    m_posture = {!valueOf(table, status::flip), valueOf(table, status::headset)};
    Q_EMIT postureChanged();
}

QSlider *StatusPanel::addSlider(QFormLayout &form, const QString &label, const char *name, int most)
{
    auto *slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(QLatin1String(name));
    slider->setRange(0, most);
    slider->setPageStep(std::max(1, most / 5));
    form.addRow(label, slider);
    return slider;
}

QSpinBox *StatusPanel::addNumber(QFormLayout &form, const QString &label, const char *name)
{
    auto *box = new QSpinBox;
    box->setObjectName(QLatin1String(name));
    box->setRange(-1, kNotKnown - 1);
    box->setSpecialValueText(tr("not known"));
    form.addRow(label, box);
    return box;
}

QCheckBox *StatusPanel::addSwitch(QFormLayout &form, const QString &label, const char *name)
{
    auto *box = new QCheckBox(label);
    box->setObjectName(QLatin1String(name));
    form.addRow(QString(), box);
    return box;
}

void StatusPanel::addBattery(QFormLayout &form)
{
    auto *level = addSlider(form, tr("Battery"), "battery", 100);
    connect(level, &QSlider::valueChanged, this, [](int percent) {
        quint8 second = 0;
        UTIL_GetBatteryPercent(nullptr, &second);
        UTIL_SetBatteryPercent(quint8(percent), second);
    });
    auto *charging = addSwitch(form, tr("charging"), "charging");
    connect(charging, &QCheckBox::toggled, this, [](bool on) { UTIL_SetChargeStatus(on); });
    m_shows.emplace_back([level, charging](const SystemTableCopy &table) {
        quietly(level, [&](QSlider &slider) { slider.setValue(valueOf(table, status::batteryPercent)[0]); });
        check(charging, valueOf(table, status::charging));
    });
}

void StatusPanel::addNetwork(QFormLayout &form)
{
    auto *bars = addSlider(form, tr("Signal"), "signal", status::signalQuality.max);
    bars->setTickPosition(QSlider::TicksBelow);
    connect(bars, &QSlider::valueChanged, this, [](int value) { UTIL_SetSignalQuality(value); });
    auto *name = new QLineEdit;
    name->setObjectName(QStringLiteral("operator"));
    form.addRow(tr("Operator"), name);
    connect(name, &QLineEdit::textEdited, this,
        [](const QString &text) { UTIL_SetServiceName(cut(text, status::serviceName.size - 1).constData()); });
    auto *roaming = addSwitch(form, tr("roaming"), "roaming");
    connect(roaming, &QCheckBox::toggled, this, [](bool on) { UTIL_SetRoamStatus(on ? 1 : 0); });
    auto *sim = addNumber(form, tr("SIM card"), "sim");
    connect(sim, &QSpinBox::valueChanged, this, [](int value) { UTIL_SetSimCardStatus(quint8(value)); });
    auto *pin = addNumber(form, tr("PIN"), "pin");
    connect(pin, &QSpinBox::valueChanged, this, [](int value) { UTIL_SetPinStatus(quint8(value)); });
    m_shows.emplace_back([bars, name, roaming, sim, pin](const SystemTableCopy &table) {
        quietly(bars, [&](QSlider &slider) { slider.setValue(valueOf(table, status::signalQuality)); });
        setText(name, textOf(table, status::serviceName));
        check(roaming, valueOf(table, status::roaming) != 0);
        setNumber(sim, valueOf(table, status::simCard));
        setNumber(pin, valueOf(table, status::pin));
    });
}

void StatusPanel::addCall(QFormLayout &form)
{
    enum Call { None, Incoming, Up };
    auto *call = new QComboBox;
    call->setObjectName(QStringLiteral("call"));
    call->addItems({tr("none"), tr("incoming"), tr("in a call")});
    form.addRow(tr("Call"), call);
    connect(call, &QComboBox::currentIndexChanged, this, [](int state) {
        UTIL_SetIncomingCallStatus(state == Incoming);
        UTIL_SetPhoneInCall(state == Up);
    });
    m_shows.emplace_back([call](const SystemTableCopy &table) {
        const Call state = valueOf(table, status::incomingCall) ? Incoming
            : valueOf(table, status::phoneInCall)               ? Up
                                                                : None;
        quietly(call, [&](QComboBox &box) { box.setCurrentIndex(state); });
    });
}

void StatusPanel::addCables(QFormLayout &form)
{
    auto *accessory = new QSpinBox;
    accessory->setObjectName(QStringLiteral("usb-device"));
    accessory->setRange(0, kMostAccessories);
    accessory->setSpecialValueText(tr("none"));
    form.addRow(tr("USB device"), accessory);
    connect(accessory, &QSpinBox::valueChanged, this, [](int type) { UTIL_SetUSBDeviceType(quint32(type)); });
    auto *cable = addSwitch(form, tr("USB cable"), "usb-cable");
    connect(cable, &QCheckBox::toggled, this, [](bool in) { UTIL_SetUSBConnectionStatus(in ? 1 : 0); });
    auto *power = addSwitch(form, tr("charges over USB"), "usb-charging");
    connect(power, &QCheckBox::toggled, this, [](bool on) { UTIL_SetUSBChargingStatus(on ? 1 : 0); });
    auto *headset = addSwitch(form, tr("headset"), "headset");
    // A switch is where the table says it is, not where it was wanted.
    const auto connectWish = [this](QCheckBox *box, void (StatusPanel::*wish)(bool)) {
        connect(box, &QCheckBox::clicked, this, [this, box, wish](bool on) {
            check(box, !on);
            Q_EMIT(this->*wish)(on);
        });
    };
    connectWish(headset, &StatusPanel::headsetWanted);
    auto *flip = addSwitch(form, tr("flip open"), "flip");
    connectWish(flip, &StatusPanel::flipWanted);
    m_shows.emplace_back([=](const SystemTableCopy &table) {
        quietly(accessory, [&](QSpinBox &box) {
            box.setValue(int(std::min<quint32>(valueOf(table, status::usbDeviceType), kMostAccessories)));
        });
        check(cable, valueOf(table, status::usbConnection) != 0);
        check(power, valueOf(table, status::usbCharging) != 0);
        check(headset, valueOf(table, status::headset));
        check(flip, !valueOf(table, status::flip));
    });
}
