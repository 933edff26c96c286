// The files that the System V objects of the phone are named by.
#pragma once

// Makes "/tmp/key_testcommand" (the status tables) and "/tmp/touch_sound_msg" (the sound queue) unless they are there.
// Before the application object, which needs them; what cannot be made is told.
void makeKeyFiles();
