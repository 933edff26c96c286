// The GUI server's part in the phone's status tables.
#pragma once

// Makes both tables and stores what the server knows when it starts: the initial values and the sounds of touch panel
// and hard keys. They are gone for all processes when the object is. Part of the server's application object.
class ServerStatus {
public:
    ServerStatus();
    ~ServerStatus();
    ServerStatus(const ServerStatus &) = delete;
    ServerStatus &operator=(const ServerStatus &) = delete;
};
