#pragma once

// The dialogs and message boxes of this thread, and what is in them.

#include <windows.h>

#include <string>
#include <vector>

#include "host/editor/input_request.h"

namespace drafthost::dialogs {

constexpr const wchar_t* kDialogClass = L"#32770";

std::wstring classOf(HWND window);
bool hasClass(HWND window, const wchar_t* name);

// The topmost dialog that takes input; null for none.
HWND topDialog();
// There are dialogs, seen or not.
bool hasDialogs();
// Nothing but a text, a picture and buttons.
bool isMessageBox(HWND dialog);
editor::BoxRequest describeDialog(HWND dialog);

// What is seen of the dialog's controls, in the order of the Tab key, also of dialogs inside the dialog.
std::vector<HWND> controlsOf(HWND dialog);
// Those that are seen, also of dialogs inside the dialog.
std::vector<HWND> buttonsOf(HWND dialog);
std::wstring withoutAmpersand(std::wstring text);
// The control with the id, also of dialogs inside the dialog; null for none.
HWND findControl(HWND dialog, int id);

}  // namespace drafthost::dialogs
