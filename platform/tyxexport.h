// Marks what the shared library shows to applications; everything else is hidden.
#pragma once

#define TYX_EXPORT __attribute__((visibility("default")))
