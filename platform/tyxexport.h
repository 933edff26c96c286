// Marks what the shared library shows to applications; everything else is hidden.
#pragma once

#define TYX_EXPORT __attribute__((visibility("default")))
#define TYX_HIDDEN __attribute__((visibility("hidden"))) // what is nested in an exported class
