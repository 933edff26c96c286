// The GUI server's part in the phone's status tables.
#pragma once

// Makes both tables, with the initial values. They are gone for all processes when the object is. Part of the server's
// application object.
class ServerStatus {
public:
    ServerStatus();
    ~ServerStatus();
    ServerStatus(const ServerStatus &) = delete;
    ServerStatus &operator=(const ServerStatus &) = delete;
};

// Stores what the settings say about the theme in the table; the second one sounds and blending too.
void handOverTheme();
void handOverSettings();
