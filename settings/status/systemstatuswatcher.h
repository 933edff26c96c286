// Tells when the phone's live state changes.
#pragma once

#include "platform/tyxexport.h"
#include "settings/status/systemstatus.h"

#include <QObject>
#include <memory>

class SystemStatusWatcherData;

// Changes made by the setters of this library are seen at once; those of programs that write the table without it, and
// a table that is made or removed, within a second. Needs an event loop; to be used from one thread.
class TYX_EXPORT SystemStatusWatcher : public QObject {
    Q_OBJECT

public:
    explicit SystemStatusWatcher(QObject *parent = nullptr); // current() is the table as it is now, if there is one
    ~SystemStatusWatcher() override;

    // The table as it was last seen. Without a table (`tableExists` is false) what the getters answer then.
    [[nodiscard]] const SystemTableCopy &current() const;
    [[nodiscard]] bool tableExists() const;

Q_SIGNALS:
    // Some bytes are others than before, or the table came or went. Of what changes in quick succession only the last
    // state may be seen.
    void changed(const SystemTableCopy &before, const SystemTableCopy &now);

private:
    void look();
    void onTouched();

    std::unique_ptr<SystemStatusWatcherData> d;
};
