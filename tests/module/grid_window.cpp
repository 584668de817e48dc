#include "grid_window.h"

#include "framework/instance.h"
#include "framework/window.h"
#include "module/grid/grid_notifications.h"
#include "tests/module/own_desktop.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

namespace tessary::testing {

namespace {

constexpr POINT gridCorner{10, 40};

std::string narrow(const std::wstring& text) {
    std::string narrowed;
    for (const wchar_t character : text)
        narrowed += character < 128 ? static_cast<char>(character) : '?';
    return narrowed;
}

// The keys that count as held in this thread, for as long as the object lives.
class HeldKeys {
public:
    explicit HeldKeys(unsigned modifiers) {
        std::array<BYTE, 256> state{};
        const auto hold = [&](UINT key, UINT side) { state[key] = state[side] = 0x80; };
        if (modifiers & withShift)
            hold(VK_SHIFT, VK_LSHIFT);
        if (modifiers & withControl)
            hold(VK_CONTROL, VK_LCONTROL);
        SetKeyboardState(state.data());
    }
    ~HeldKeys() {
        std::array<BYTE, 256> state{};
        SetKeyboardState(state.data());
    }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
};

LPARAM keyData(UINT key, bool up) {
    LPARAM data = 1 | static_cast<LPARAM>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC) << 16);
    const bool extended = (key >= VK_PRIOR && key <= VK_DOWN) || key == VK_DELETE || key == VK_INSERT;
    if (extended)
        data |= 1 << 24;
    return up ? data | 0xC0000000LL : data;
}

LPARAM packed(POINT point) {
    return MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y));
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const GridEvent& event) {
    return out << '(' << event.code << " at " << event.row << ", " << event.column << " \""
               << narrow(event.text) << "\")";
}

GridWindow::GridWindow(SIZE size) {
    useOwnDesktop();
    registerGridClass();
    struct {
        DLGTEMPLATE dialog;
        WORD menu, windowClass, title;
    } dialogTemplate{{WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 300, 250}, 0, 0, 0};
    owner_ = CreateDialogIndirectParamW(framework::ownInstance(), &dialogTemplate.dialog, nullptr, dispatch,
                                        reinterpret_cast<LPARAM>(this));
    font_ = framework::Font(CreateFontW(-11, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0,
                                        0, 0, L"MS Shell Dlg"));
    const DWORD button = WS_TABSTOP | BS_PUSHBUTTON;
    addControl(L"BUTTON", L"Before", button, {10, 10, 80, 30}, beforeId);
    addControl(CGridCtrl::className, L"", WS_TABSTOP | WS_BORDER,
               {gridCorner.x, gridCorner.y, gridCorner.x + size.cx, gridCorner.y + size.cy}, gridId);
    addControl(L"BUTTON", L"After", button, {90, 10, 160, 30}, afterId);
    addControl(L"BUTTON", L"OK", WS_TABSTOP | BS_DEFPUSHBUTTON, {170, 10, 240, 30}, okId);
    addControl(L"BUTTON", L"Cancel", button, {250, 10, 320, 30}, cancelId);
    SendMessageW(owner_, DM_SETDEFID, okId, 0);
    grid.attachToControl(owner_, gridId);
    SetWindowPos(owner_, nullptr, 0, 0, std::max<int>(340, size.cx + 40), size.cy + 100,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetActiveWindow(owner_);
    SetFocus(grid.handle());
    pump();
}

GridWindow::~GridWindow() {
    destroyOwner();
    EXPECT_FALSE(failure) << "an exception left a handler of the grid";
}

void GridWindow::addControl(const wchar_t* windowClass, const wchar_t* text, DWORD style, RECT area, int id) {
    const HWND control =
        CreateWindowExW(0, windowClass, text, style | WS_CHILD | WS_VISIBLE, area.left, area.top,
                        area.right - area.left, area.bottom - area.top, owner_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), framework::ownInstance(), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
}

void GridWindow::destroyOwner() {
    if (const HWND window = std::exchange(owner_, nullptr))
        DestroyWindow(window);
}

void GridWindow::fill(int rows, int columns, int width) {
    grid.setRedraw(false);
    grid.setColumnCount(columns);
    grid.setRowCount(rows);
    grid.setFixedRowCount(1);
    for (int column = 0; column < columns; ++column) {
        grid.setColumnWidth(column, width);
        grid.setText(0, column, L"head " + std::to_wstring(column));
        for (int row = 1; row < rows; ++row)
            grid.setText(row, column, L"r" + std::to_wstring(row) + L"c" + std::to_wstring(column));
    }
    grid.setRedraw(true, true);
    pump();
}

std::vector<GridEvent> GridWindow::takeEvents() {
    return std::exchange(events_, {});
}

std::vector<GridEvent> GridWindow::takeEvents(int code) {
    std::vector<GridEvent> events = takeEvents();
    std::erase_if(events, [&](const GridEvent& event) { return event.code != code; });
    return events;
}

std::vector<int> GridWindow::takeCommands() {
    return std::exchange(commands_, {});
}

void GridWindow::press(UINT key, unsigned modifiers) {
    keyDown(key, modifiers);
    keyUp(key, modifiers);
}

void GridWindow::keyDown(UINT key, unsigned modifiers) {
    const HeldKeys held(modifiers);
    PostMessageW(GetFocus(), WM_KEYDOWN, key, keyData(key, false));
    pump();
}

void GridWindow::keyUp(UINT key, unsigned modifiers) {
    const HeldKeys held(modifiers);
    PostMessageW(GetFocus(), WM_KEYUP, key, keyData(key, true));
    pump();
}

void GridWindow::type(std::wstring_view text) {
    for (const wchar_t character : text) {
        const SHORT key = VkKeyScanW(character);
        if (key == -1) {
            PostMessageW(GetFocus(), WM_CHAR, character, 1);
            pump();
        } else {
            press(LOBYTE(key), HIBYTE(key) & 1 ? withShift : 0);
        }
    }
}

POINT GridWindow::middle(int row, int column) const {
    const RECT area = grid.cellArea(row, column).value();
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

POINT GridWindow::inCell(int row, int column, POINT offset) const {
    const RECT area = grid.cellArea(row, column).value();
    return {area.left + offset.x, area.top + offset.y};
}

void GridWindow::post(UINT message, POINT at, WPARAM flags) {
    HWND target = GetCapture();
    if (!target)
        target = ChildWindowFromPointEx(grid.handle(), at, CWP_SKIPINVISIBLE | CWP_SKIPDISABLED);
    if (!target)
        target = grid.handle();
    MapWindowPoints(grid.handle(), target, &at, 1);
    const auto modifiers = static_cast<unsigned>(flags) & (withShift | withControl);
    const HeldKeys held(modifiers);
    if (message == WM_MOUSEMOVE)
        postedMove_ = packed(at);
    PostMessageW(target, message, flags, packed(at));
    pump();
}

void GridWindow::mouseDown(POINT at, unsigned modifiers) {
    post(WM_LBUTTONDOWN, at, MK_LBUTTON | modifiers);
}

void GridWindow::mouseMove(POINT to, unsigned buttonsAndModifiers) {
    post(WM_MOUSEMOVE, to, buttonsAndModifiers);
}

void GridWindow::mouseUp(POINT at, unsigned modifiers) {
    post(WM_LBUTTONUP, at, modifiers);
}

void GridWindow::click(int row, int column, unsigned modifiers) {
    clickAt(middle(row, column), modifiers);
}

void GridWindow::clickAt(POINT at, unsigned modifiers) {
    mouseDown(at, modifiers);
    mouseUp(at, modifiers);
}

void GridWindow::doubleClick(int row, int column) {
    doubleClickAt(middle(row, column));
}

void GridWindow::doubleClickAt(POINT at) {
    clickAt(at);
    post(WM_LBUTTONDBLCLK, at, MK_LBUTTON);
    mouseUp(at);
}

void GridWindow::drag(POINT from, POINT to) {
    mouseDown(from);
    mouseMove({(from.x + to.x) / 2, (from.y + to.y) / 2});
    mouseMove(to);
    mouseUp(to);
}

void GridWindow::wheel(int delta, bool horizontal) {
    POINT at{};
    ClientToScreen(grid.handle(), &at);
    PostMessageW(grid.handle(), horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL,
                 MAKEWPARAM(0, static_cast<WORD>(delta)), packed(at));
    pump();
}

void GridWindow::handle(MSG& message) {
    if (message.message == WM_MOUSEMOVE && std::exchange(postedMove_, noMove) != message.lParam)
        return;
    if (owner_ && IsDialogMessageW(owner_, &message))
        return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

void GridWindow::pump() {
    constexpr ULONGLONG bound = 5000;
    const ULONGLONG start = GetTickCount64();
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        handle(message);
        if (GetTickCount64() - start > bound) {
            ADD_FAILURE() << "messages without end; the last one is " << message.message;
            return;
        }
    }
}

bool GridWindow::pumpUntil(const std::function<bool()>& condition, unsigned milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    pump();
    while (!condition()) {
        const ULONGLONG now = GetTickCount64();
        if (now >= end)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
        pump();
    }
    return true;
}

INT_PTR CALLBACK GridWindow::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        return FALSE;
    }
    auto* const self = reinterpret_cast<GridWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    return self ? self->receive(message, wParam, lParam) : FALSE;
}

INT_PTR GridWindow::receive(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == framework::failureMessage()) {
        failure = *reinterpret_cast<const std::exception_ptr*>(lParam);
        SetWindowLongPtrW(owner_, DWLP_MSGRESULT, 1);
        return TRUE;
    }
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
        commands_.push_back(LOWORD(wParam));
        return TRUE;
    }
    return message == WM_NOTIFY ? notified(lParam) : FALSE;
}

INT_PTR GridWindow::notified(LPARAM lParam) {
    const auto& told = *reinterpret_cast<const GridNotification*>(lParam);
    if (told.header.idFrom != gridId)
        return FALSE;
    GridEvent event{static_cast<int>(told.header.code), told.row, told.column, {}};
    if (event.code == gridPicked)
        event.text = reinterpret_cast<const GridPickNotification*>(lParam)->text;
    events_.push_back(event);
    const LRESULT result = answer ? answer(event) : 0;
    SetWindowLongPtrW(owner_, DWLP_MSGRESULT, result);
    return TRUE;
}

void showSections(CGridCtrl& grid) {
    grid.setColumnCount(3);
    grid.setRowCount(1);
    grid.setFixedRowCount(1);
    grid.setTreeColumn(0);
    for (int column = 0; column < 3; ++column)
        grid.setColumnWidth(column, 80);
    for (const wchar_t* const title : {L"Ducts", L"Pipes"}) {
        grid.addSectionRow(title);
        grid.addTreeRow();
        grid.addTreeRow();
    }
}

}  // namespace tessary::testing
