#pragma once

// The objects that screen readers hold of a grid. Made when they are asked for, so that a grid of many rows
// costs nothing.

#include <windows.h>

#include <oleacc.h>

#include <memory>

#include "module/grid/grid_accessible.h"

namespace tessary {

// Both with one reference, which is the caller's.
IAccessible* makeTableObject(std::shared_ptr<GridAccessible> link);
IAccessible* makeRowObject(std::shared_ptr<GridAccessible> link, int row);

}  // namespace tessary
