// Which key of the phone a key of the desktop's keyboard stands for. No widgets.
#pragma once

#include <Qt>
#include <string_view>

namespace phone {

// A name of `tyx keys list`; empty for a key that stands for none.
std::string_view keyOfDesktop(int key); // Qt::Key

}
