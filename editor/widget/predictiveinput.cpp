#include "editor/widget/predictiveinput.h"

namespace {

PredictiveInput *installed = nullptr;

}

PredictiveInput::~PredictiveInput()
{
    if (installed == this)
        installed = nullptr;
}

void PredictiveInput::install(PredictiveInput *input) { installed = input; }
PredictiveInput *PredictiveInput::instance() { return installed; }
