#include "host/dialogs/main_window.h"

#include "host/api/dialog.h"

namespace drafthost {

namespace {

HWND registered = nullptr;

}  // namespace

void registerMainWindow(HWND window) {
    registered = window;
}

HWND mainWindow() {
    return IsWindow(registered) ? registered : nullptr;
}

}  // namespace drafthost

HWND adsw_acadMainWnd() {
    return drafthost::mainWindow();
}
