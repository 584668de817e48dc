#include "host/dialogs/dialog_input.h"

#include <algorithm>
#include <cstdlib>

namespace drafthost::dialogs {

namespace {

constexpr int kMostNotches = 250;  // the distance is kept in 16 bits

LPARAM at(POINT point) {
    return MAKELPARAM(point.x, point.y);
}

LPARAM keyData(const editor::KeyStroke& key, bool up) {
    LPARAM data = 1 | static_cast<LPARAM>(MapVirtualKeyW(key.virtualKey, MAPVK_VK_TO_VSC)) << 16;
    if (key.extended)
        data |= KF_EXTENDED << 16;
    if (key.alt)
        data |= KF_ALTDOWN << 16;
    if (up)
        data |= static_cast<LPARAM>(KF_UP | KF_REPEAT) << 16;
    return data;
}

void holdModifiers(const editor::KeyStroke& key) {
    BYTE state[256];
    if (!GetKeyboardState(state))
        return;
    const auto set = [&](int virtualKey, bool down) { state[virtualKey] = down ? 0x80 : 0; };
    set(VK_CONTROL, key.control);
    set(VK_LCONTROL, key.control);
    set(VK_SHIFT, key.shift);
    set(VK_LSHIFT, key.shift);
    set(VK_MENU, key.alt);
    set(VK_LMENU, key.alt);
    SetKeyboardState(state);
}

bool modifiersHeld = false;

}  // namespace

void pressMouse(HWND window, POINT point) {
    PostMessageW(window, WM_MOUSEMOVE, 0, at(point));
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, at(point));
}

void releaseMouse(HWND window, POINT point) {
    PostMessageW(window, WM_LBUTTONUP, 0, at(point));
}

void pressMouseAgain(HWND window, POINT point) {
    PostMessageW(window, WM_LBUTTONDBLCLK, MK_LBUTTON, at(point));
}

void turnWheel(HWND window, int notches, bool sideways) {
    const int turn = std::clamp(notches, -kMostNotches, kMostNotches) * WHEEL_DELTA;
    POINT middle = middleOf(window);
    ClientToScreen(window, &middle);
    PostMessageW(window, sideways ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL, MAKEWPARAM(0, sideways ? turn : -turn),
                 at(middle));
}

void pressKey(HWND dialog, const editor::KeyStroke& key) {
    const HWND focus = GetFocus();
    pressKeyIn(focus && IsChild(dialog, focus) ? focus : dialog, key);
}

void pressKeyIn(HWND window, const editor::KeyStroke& key) {
    modifiersHeld = key.control || key.shift || key.alt;
    if (modifiersHeld)
        holdModifiers(key);
    const bool system = key.alt && !key.control;
    PostMessageW(window, system ? WM_SYSKEYDOWN : WM_KEYDOWN, key.virtualKey, keyData(key, false));
    PostMessageW(window, system ? WM_SYSKEYUP : WM_KEYUP, key.virtualKey, keyData(key, true));
}

void releaseModifiers() {
    if (modifiersHeld)
        holdModifiers({});
    modifiersHeld = false;
}

void typeOver(HWND edit, const std::wstring& text) {
    PostMessageW(edit, EM_SETSEL, 0, -1);
    if (text.empty())
        PostMessageW(edit, WM_CHAR, VK_BACK, 1);
    for (const wchar_t character : text)
        PostMessageW(edit, WM_CHAR, character, 1);
}

POINT middleOf(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    return middleOf(area);
}

POINT middleOf(const RECT& area) {
    return {area.left + (area.right - area.left) / 2, area.top + (area.bottom - area.top) / 2};
}

}  // namespace drafthost::dialogs
