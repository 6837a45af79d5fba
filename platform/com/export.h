// What the shared library libzentrel exports: everything else is hidden. The static libraries
// of the build see the same declarations, so the mark costs them nothing.
#pragma once

#define ZENTREL_EXPORT __attribute__((visibility("default")))
