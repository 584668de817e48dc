#pragma once

// A grid in a real dialog, driven as a drafter's keyboard and mouse drive it. Messages take the way of a
// dialog's message loop, so that Tab, Return and Escape reach the dialog when the grid does not want them.
//
//     GridWindow window;
//     window.fill(4, 3);                       // a header row and three rows of "r1c0"
//     window.click(1, 2);
//     window.type(L"new");                     // opens the cell's editor
//     window.press(VK_RETURN);
//     EXPECT_EQ(window.takeEvents(), ...);
//
// The dialog is active in its thread but does not come to the foreground, so that test programs that run at
// the same time do not take the focus from each other. Key states are those of this thread, too.

#include "framework/gdi.h"
#include "module/grid/grid_control.h"

#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tessary::testing {

// What the owner was told.
struct GridEvent {
    int code;
    int row;
    int column;
    std::wstring text;  // the picked choice; empty for other codes
    bool operator==(const GridEvent&) const = default;
};
std::ostream& operator<<(std::ostream& out, const GridEvent& event);

// For `modifiers` below: held while the key is pressed or the mouse used.
constexpr unsigned withShift = MK_SHIFT;
constexpr unsigned withControl = MK_CONTROL;

class GridWindow {
public:
    static constexpr int gridId = 1050;
    static constexpr int beforeId = 1001;  // a button before the grid in the dialog's order
    static constexpr int afterId = 1002;   // and one after it
    static constexpr int okId = IDOK;      // the default button, after that one
    static constexpr int cancelId = IDCANCEL;

    // size: of the grid's window, borders included, in pixels. The grid is empty and has the keyboard focus.
    explicit GridWindow(SIZE size = {400, 200});
    ~GridWindow();
    GridWindow(const GridWindow&) = delete;
    GridWindow& operator=(const GridWindow&) = delete;

    CGridCtrl grid;

    // One fixed row, "head 0", "head 1"...; cells "r1c0". Columns of the same width.
    void fill(int rows, int columns, int width = 80);

    HWND owner() const { return owner_; }
    HWND ownerControl(int id) const { return GetDlgItem(owner_, id); }
    // Destroys the dialog with the grid's window; the grid object stays.
    void destroyOwner();

    // All that the owner was told since the last call, in order.
    std::vector<GridEvent> takeEvents();
    // Only those with that code; the others are dropped.
    std::vector<GridEvent> takeEvents(int code);
    // Buttons of the dialog that were pressed, also by Return (IDOK) and Escape (IDCANCEL).
    std::vector<int> takeCommands();
    // What the owner does and answers to a notification; empty: nothing and 0. Called when the event is
    // recorded already.
    std::function<LRESULT(const GridEvent&)> answer;
    // What left a handler of the grid or its editors; null when nothing did.
    std::exception_ptr failure;

    // Key down, the characters it makes, key up: to the window that has the focus when each is handled.
    void press(UINT key, unsigned modifiers = 0);
    void keyDown(UINT key, unsigned modifiers = 0);
    void keyUp(UINT key, unsigned modifiers = 0);
    // As keys of the keyboard where it has them, as characters otherwise.
    void type(std::wstring_view text);

    // The middle of a cell, or a point of the client area that is `offset` from its left top corner. The cell
    // must be shown.
    POINT middle(int row, int column) const;
    POINT inCell(int row, int column, POINT offset) const;
    // Points are in the grid's client area; the message goes to the window that has captured the mouse, or to
    // the one there, the grid or an editor over it.
    void mouseDown(POINT at, unsigned modifiers = 0);
    void mouseMove(POINT to, unsigned buttonsAndModifiers = MK_LBUTTON);
    void mouseUp(POINT at, unsigned modifiers = 0);
    void click(int row, int column, unsigned modifiers = 0);
    void clickAt(POINT at, unsigned modifiers = 0);
    // All four messages of a double click.
    void doubleClick(int row, int column);
    void doubleClickAt(POINT at);
    void drag(POINT from, POINT to);
    // delta: multiples of WHEEL_DELTA, positive away from the user or to the right.
    void wheel(int delta, bool horizontal = false);

    // Handles all messages that are there.
    void pump();
    // Handles messages until the condition holds. False when it does not in that time.
    bool pumpUntil(const std::function<bool()>& condition, unsigned milliseconds = 5000);

private:
    static INT_PTR CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR receive(UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR notified(LPARAM lParam);
    void addControl(const wchar_t* windowClass, const wchar_t* text, DWORD style, RECT area, int id);
    void post(UINT message, POINT at, WPARAM flags);
    void handle(MSG& message);

    HWND owner_ = nullptr;
    framework::Font font_;
    std::vector<GridEvent> events_;
    std::vector<int> commands_;
    // The system reports where its own mouse is, too, whenever windows change; those movements are dropped.
    LPARAM postedMove_ = noMove;
    static constexpr LPARAM noMove = -1;
};

// Gives the grid three columns and, below a header, the sections "Ducts" and "Pipes" with two rows each.
void showSections(CGridCtrl& grid);

}  // namespace tessary::testing
