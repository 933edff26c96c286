// Finds and loads the compositor module.
#pragma once

#include <QString>
#include <memory>
#include <tl/expected.hpp>

class WindowServerBackend;

// The module stands in the folder "tyxappbase" beside the shared library, installed or in a build tree. It is never
// unloaded. The error names the file and what is wrong with it.
tl::expected<std::unique_ptr<WindowServerBackend>, QString> loadWindowServer();
