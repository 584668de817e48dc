#pragma once

#include <windows.h>

namespace tessary::testing {

// A dialog over the one with the grid, as a message box or a chooser: it disables that one, takes the focus,
// handles what there is and goes again. Like the grid's dialog it is active in its thread only, so that
// programs that run at the same time do not take the focus from each other. False when it did not get it.
bool showOtherDialog(HWND owner);

}  // namespace tessary::testing
