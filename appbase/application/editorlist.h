// Where text can be typed on the whole phone, as the GUI server knows it.
#pragma once

#include "platform/values/qcstring.h"

#include <QHash>

struct Editor {
    QCString channel; // of the application that it belongs to
    int window = 0; // 0 while its window was never shown
    int state = 0; // these two as last told by "updateEditorState(int,int,int)"; the input methods give them meaning
    int detail = 0;
};

// An application that dies tells nobody; but nobody has its channel then, and its editors are dropped when the list is
// next used. GUI server only.
class EditorList {
public:
    static constexpr qsizetype kMax = 1024; // far more than the applications of one phone have

    // Replaces what has the id. False when nobody has the channel, and when the list is full.
    bool append(int id, const QCString &channel);
    void remove(int id) { m_editors.remove(id); }

    // Null when there is none, or its application has ended; valid until the next call.
    Editor *find(int id);

private:
    void dropDead();

    QHash<int, Editor> m_editors;
};
