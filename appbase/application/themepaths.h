// Where the theme of the phone is.
#pragma once

#include <QString>

struct ThemePaths {
    QString skinFile;
    QString iconPath; // of downloaded icons
};

// Those of the theme in the status table, or else that this process was given; an empty one is not known.
ThemePaths themePaths();

// Into TYX_RES_SKIN_FILE and TYX_DOWNLOAD_RES_ICON_PATH, for this process and those that it starts. An empty path
// leaves its variable as it is.
void publishThemePaths(const ThemePaths &paths);
