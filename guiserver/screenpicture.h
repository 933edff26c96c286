// What the screen shows, as a live picture for viewers in other processes: the message "frame" of "TYX/Screen".
#pragma once

#include "platform/system/sysv.h"
#include "platform/values/qcstring.h"

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QSize>
#include <QTimer>
#include <optional>
#include <span>
#include <tl/expected.hpp>

class QImage;

// One in the GUI server. A viewer asks for what is newer than it has; the answer comes when there is something newer.
// So a viewer that is slow gets fewer pictures, one that is gone costs nothing, and neither does a screen that stays
// as it is: the picture is copied for an answer only.
//
// The pixels lie in a segment of System V shared memory, which has no name, cannot be cut by others as a file can, and
// is gone with its last user, however that ended. Only processes of the same user can attach it.
class ScreenPicture : public QObject {
    Q_OBJECT

public:
    explicit ScreenPicture(QObject *parent = nullptr);

    // `seen` is the number of the picture that the asker has, 0 for none. Answered on `channel`, once:
    // asking again takes the place of what was asked before. When too many wait, the longest waiting one is told so.
    void ask(const QCString &channel, int seen);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override; // sees that something is drawn

private:
    void answerSoon();
    void answer();
    // The errors are texts for people.
    [[nodiscard]] tl::expected<void, QString> take();
    [[nodiscard]] tl::expected<std::span<std::byte>, QString> roomFor(const QImage &picture);

    QTimer m_pace; // runs while an answer is due
    QElapsedTimer m_sinceAnswer;
    QList<QCString> m_waiting; // channels
    std::optional<platform::ShmAttachment> m_memory;
    int m_segment = -1;
    QSize m_size;
    int m_number = 1; // of the picture in the memory
    bool m_isOutdated = true; // something was drawn since; nothing is watched then
};
