#include "host/dialogs/dialog_windows.h"

#include <algorithm>

#include "framework/window.h"
#include "host/database/names.h"

namespace drafthost::dialogs {

namespace {

constexpr int kMessageText = 0xFFFF;  // control id of a message box's text

BOOL CALLBACK takeTopDialog(HWND window, LPARAM result) {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window) || !hasClass(window, kDialogClass))
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

BOOL CALLBACK noteDialog(HWND window, LPARAM found) {
    *reinterpret_cast<bool*>(found) = hasClass(window, kDialogClass);
    return !*reinterpret_cast<bool*>(found);
}

BOOL CALLBACK takeChild(HWND window, LPARAM children) {
    reinterpret_cast<std::vector<HWND>*>(children)->push_back(window);
    return TRUE;
}

std::vector<HWND> descendantsOf(HWND window) {
    std::vector<HWND> children;
    EnumChildWindows(window, takeChild, reinterpret_cast<LPARAM>(&children));
    return children;
}

}  // namespace

std::wstring classOf(HWND window) {
    wchar_t name[64] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return name;
}

bool hasClass(HWND window, const wchar_t* name) {
    return equalNames(classOf(window), name);
}

HWND topDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), takeTopDialog, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

bool hasDialogs() {
    bool found = false;
    EnumThreadWindows(GetCurrentThreadId(), noteDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

bool isMessageBox(HWND dialog) {
    const std::vector<HWND> children = descendantsOf(dialog);
    return GetDlgItem(dialog, kMessageText) && std::all_of(children.begin(), children.end(), [](HWND child) {
               return hasClass(child, L"Static") || hasClass(child, L"Button") || !IsWindowVisible(child);
           });
}

editor::BoxRequest describeDialog(HWND dialog) {
    editor::BoxRequest box;
    box.caption = framework::textOf(dialog);
    box.isMessageBox = isMessageBox(dialog);
    if (box.isMessageBox)
        box.text = framework::textOf(GetDlgItem(dialog, kMessageText));
    for (HWND button : buttonsOf(dialog))
        box.buttons.push_back(withoutAmpersand(framework::textOf(button)));
    return box;
}

std::vector<HWND> controlsOf(HWND dialog) {
    std::vector<HWND> controls = descendantsOf(dialog);
    std::erase_if(controls, [](HWND child) {
        return !IsWindowVisible(child) || hasClass(child, kDialogClass) ||
               !hasClass(GetParent(child), kDialogClass);
    });
    return controls;
}

std::vector<HWND> buttonsOf(HWND dialog) {
    std::vector<HWND> buttons = descendantsOf(dialog);
    std::erase_if(buttons, [](HWND child) {
        return !hasClass(child, L"Button") || !IsWindowVisible(child) ||
               (GetWindowLongW(child, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
    });
    return buttons;
}

std::wstring withoutAmpersand(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

HWND findControl(HWND dialog, int id) {
    if (const HWND control = GetDlgItem(dialog, id))
        return control;
    for (HWND child : descendantsOf(dialog)) {
        // Not what controls are made of, as the edit field of a combo box.
        if (GetDlgCtrlID(child) == id && hasClass(GetParent(child), kDialogClass))
            return child;
    }
    return nullptr;
}

}  // namespace drafthost::dialogs
