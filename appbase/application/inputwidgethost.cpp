#include "appbase/application/inputwidgethost.h"

namespace {

InputWidgetHost *theHost = nullptr;

}

InputWidgetHost::InputWidgetHost() { theHost = this; }

InputWidgetHost::~InputWidgetHost()
{
    if (theHost == this)
        theHost = nullptr;
}

InputWidgetHost *InputWidgetHost::instance() { return theHost; }
