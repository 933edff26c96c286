// Where the theme of the phone is.
#pragma once

#include <QString>

struct ThemePaths {
    QString skinFile;
    QString iconPath; // of downloaded icons
};

// Those of the theme in the status table, or else that this process was given; an empty one is not known.
ThemePaths themePaths();

// Into TYX_RES_SKIN_FILE and TYX_DOWNLOAD_RES_ICON_PATH, for this process and those that it starts. An empty path takes
// away what a theme has put there.
void publishThemePaths(const ThemePaths &paths);

// Replaces the image that all processes draw from by that of the file. False when the file is no skin, or when its
// image is larger than the memory that the processes of this phone share since its start. The GUI server's.
bool shareSkin(const QString &file);
// Into the theme of the status table, whatever the settings say.
void keepSkin(const QString &file);
