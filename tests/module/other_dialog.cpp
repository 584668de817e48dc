#include "tests/module/other_dialog.h"

namespace tessary::testing {

bool showOtherDialog(HWND owner) {
    const HWND box = CreateWindowExW(0, L"STATIC", L"question", WS_POPUP | WS_CAPTION, 50, 50, 100, 60, owner,
                                     nullptr, nullptr, nullptr);
    EnableWindow(owner, FALSE);
    SetWindowPos(box, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetActiveWindow(box);
    SetFocus(box);
    const bool hadFocus = GetFocus() == box;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    EnableWindow(owner, TRUE);
    SetActiveWindow(owner);
    DestroyWindow(box);
    return hadFocus;
}

}  // namespace tessary::testing
