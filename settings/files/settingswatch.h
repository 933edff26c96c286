// Tells when a settings file changes.
#pragma once

#include "platform/tyxexport.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class SettingsWatchData;

// Watches files that may come, go and be replaced, whoever does it. Their directories must exist. Needs an event loop.
class TYX_EXPORT SettingsWatch : public QObject {
    Q_OBJECT

public:
    // By their paths, existing or not. What happens from now on is told.
    explicit SettingsWatch(const QStringList &files, QObject *parent = nullptr);
    ~SettingsWatch() override;

    [[nodiscard]] QStringList unwatched() const; // directories that could not be watched

Q_SIGNALS:
    void changed(const QString &file); // its content may be another one; it may be gone

private:
    std::unique_ptr<SettingsWatchData> d;
};
