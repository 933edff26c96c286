// The panel beside the phone: what network, battery and cables tell it, read from the status table and written there.
#pragma once

#include "settings/status/systemstatuswatcher.h"
#include "tools/phone/phonelayout.h"

#include <QWidget>
#include <functional>
#include <vector>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QSlider;
class QSpinBox;

// Everything goes through the accessors of the table, as on a handset, where services write it. What others change
// there shows here at once. Flip and headset are read from the table too, but moved by their device.
class StatusPanel : public QWidget {
    Q_OBJECT

public:
    explicit StatusPanel(QWidget *parent = nullptr);

    [[nodiscard]] phone::Posture posture() const { return m_posture; } // as the table said last

Q_SIGNALS:
    void postureChanged();
    void flipWanted(bool open); // as the user says
    void headsetWanted(bool in);

private:
    void addBattery(QFormLayout &form);
    void addNetwork(QFormLayout &form);
    void addCall(QFormLayout &form);
    void addCables(QFormLayout &form);
    QSlider *addSlider(QFormLayout &form, const QString &label, const char *name, int most);
    QSpinBox *addNumber(QFormLayout &form, const QString &label, const char *name);
    QCheckBox *addSwitch(QFormLayout &form, const QString &label, const char *name);
    void take(const SystemTableCopy &table);

    SystemStatusWatcher m_watcher;
    phone::Posture m_posture;
    std::vector<std::function<void(const SystemTableCopy &)>> m_shows; // each puts one field into its widget
};
