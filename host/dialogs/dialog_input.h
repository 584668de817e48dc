#pragma once

// What a drafter's mouse and keyboard send, as messages posted to windows of this thread.

#include <windows.h>

#include <string>

#include "host/editor/key_names.h"

namespace drafthost::dialogs {

// Points in client coordinates of the window.
void pressMouse(HWND window, POINT point);
void releaseMouse(HWND window, POINT point);
// The second press of a double click.
void pressMouseAgain(HWND window, POINT point);
// notches: turned towards the drafter, or to the right. At most 250.
void turnWheel(HWND window, int notches, bool sideways);

// Into the window with the keyboard, or into the dialog where no control has it. A modifier stays pressed
// until releaseModifiers.
void pressKey(HWND dialog, const editor::KeyStroke& key);
void pressKeyIn(HWND window, const editor::KeyStroke& key);
void releaseModifiers();
// Into an edit field: replaces its text.
void typeOver(HWND edit, const std::wstring& text);

// The middle of the window, or of an area.
POINT middleOf(HWND window);
POINT middleOf(const RECT& area);

}  // namespace drafthost::dialogs
