// The way out for somebody whose touch panel is calibrated so badly, or not at all, that nothing can be reached.
#pragma once

// From now on a pen that is held far outside of the screen starts tyx-calibrate, which lies beside this program, unless
// it runs already.
void startCalibrationWhenNeeded();
