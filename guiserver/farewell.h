// The end of the phone: the server goes last.
#pragma once

// Runs the event loop until no other process listens to "TYX/System" any more, or for three seconds. Applications that
// were told to end need their windows and the bus while they put away what they have; without a server they just die.
void awaitApplications();
