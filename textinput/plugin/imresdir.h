// Where the plug-ins of the input methods are.
#pragma once

#include "platform/tyxexport.h"

#include <QString>
#include <QStringList>

class TYX_EXPORT IM_ResDir { // name fixed
public:
    // Where a method comes from. Of two with one identifier, the one of the lower number counts.
    enum Kind {
        Phone = 0, // $QTDIR/lib/inputmethods/
        Language = 1, // $TYX_LANG/inputmethods/
        Downloaded = 2, // $TYX_LOCAL_DOWNLOAD_PATH/inputmethods/
        Written = 3 // $TYX_APP_WRITE_PATH/inputmethods/, as every other number
    };
    static constexpr int kKinds = 4; // from 0 on

    // With a slash at its end. A variable that is not set is an empty text, so that the path begins at the root.
    [[nodiscard]] static QString getIMPluginDir(int kind);

    // The files "lib*.so" of a folder, sorted: absolute paths, at most 100 of them.
    [[nodiscard]] static QStringList libraries(int kind);
};
