#pragma once

#include <windows.h>

namespace drafthost {

// The host's main window makes itself known here when it is created, and with null before it goes. It owns
// the dialogs of modules; programs that run without a drafter have none.
void registerMainWindow(HWND window);
// Null for none.
HWND mainWindow();

}  // namespace drafthost
