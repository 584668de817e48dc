#pragma once

// What is in a dialog, as text for a drafter who does not see it. Lines end with a line feed.

#include <windows.h>

#include <string>

namespace drafthost::dialogs {

// A line for each control that can be used, with the number that actions name it by, and each text.
std::wstring contentsOf(HWND dialog);

// The rows of a grid in columns, with the numbers that actions name rows and columns by; the entries of a
// list or drop-down; the text of other controls. Before what is selected stands a "*".
std::wstring rowsOf(HWND control);

}  // namespace drafthost::dialogs
