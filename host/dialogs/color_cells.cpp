#include "host/dialogs/color_cells.h"

#include <windowsx.h>

#include <algorithm>

#include "framework/gdi.h"
#include "host/dialogs/color_brush.h"

namespace drafthost {

using namespace framework;

void ColorCells::select(int index) {
    selected_ = 0;
    for (int row = 0; row < rows_; ++row) {
        for (int column = 0; column < columns_; ++column) {
            if (indexAt_(column, row) == index) {
                selected_ = index;
                column_ = column;
                row_ = row;
            }
        }
    }
    showName();
    InvalidateRect(handle(), nullptr, FALSE);
}

RECT ColorCells::cellArea(int column, int row) const {
    RECT area{};
    GetClientRect(handle(), &area);
    return {area.right * column / columns_, area.bottom * row / rows_, area.right * (column + 1) / columns_,
            area.bottom * (row + 1) / rows_};
}

LRESULT ColorCells::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT: paint(); return 0;
        case WM_ERASEBKGND: return TRUE;
        case WM_GETDLGCODE: return DLGC_WANTARROWS;
        case WM_LBUTTONDOWN: press({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}, STN_CLICKED); return 0;
        case WM_LBUTTONDBLCLK: press({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}, STN_DBLCLK); return 0;
        case WM_KEYDOWN: return key(wParam) ? 0 : defaultHandling(message, wParam, lParam);
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(handle(), nullptr, FALSE); return 0;
        // The control's own handling would paint the text over the colors.
        case WM_SETTEXT: return DefWindowProcW(handle(), message, wParam, lParam);
        default: return defaultHandling(message, wParam, lParam);
    }
}

void ColorCells::paint() {
    const PaintContext paint(handle());
    RECT area{};
    GetClientRect(handle(), &area);
    const MemoryContext memory(paint.get(), area.right, area.bottom);
    FillRect(memory.get(), &area, GetSysColorBrush(COLOR_3DFACE));
    for (int row = 0; row < rows_; ++row) {
        for (int column = 0; column < columns_; ++column)
            paintCell(memory.get(), column, row);
    }
    BitBlt(paint.get(), 0, 0, area.right, area.bottom, memory.get(), 0, 0, SRCCOPY);
}

// The chosen field has a frame in two colors, which stands out from any; the one that the keyboard stands on
// has the system's sign of the focus.
void ColorCells::paintCell(HDC context, int column, int row) const {
    RECT area = cellArea(column, row);
    const int index = indexAt_(column, row);
    if (index == selected_) {
        FrameRect(context, &area, GetSysColorBrush(COLOR_WINDOWTEXT));
        InflateRect(&area, -1, -1);
        FrameRect(context, &area, GetSysColorBrush(COLOR_WINDOW));
        InflateRect(&area, -1, -1);
    } else {
        InflateRect(&area, -1, -1);
        FrameRect(context, &area, GetSysColorBrush(COLOR_3DSHADOW));
        InflateRect(&area, -1, -1);
    }
    FillRect(context, &area, colorBrush(index).get());
    if (column == column_ && row == row_ && GetFocus() == handle())
        DrawFocusRect(context, &area);
}

void ColorCells::press(POINT at, int code) {
    SetFocus(handle());
    for (int row = 0; row < rows_; ++row) {
        for (int column = 0; column < columns_; ++column) {
            const RECT area = cellArea(column, row);
            if (PtInRect(&area, at))
                return choose(column, row, code);
        }
    }
}

// False for keys that mean nothing here. The first arrow key chooses where it stands.
bool ColorCells::key(WPARAM code) {
    int column = column_, row = row_;
    switch (code) {
        case VK_LEFT: --column; break;
        case VK_RIGHT: ++column; break;
        case VK_UP: --row; break;
        case VK_DOWN: ++row; break;
        case VK_HOME: column = 0; break;
        case VK_END: column = columns_ - 1; break;
        case VK_SPACE: break;
        default: return false;
    }
    if (selected_ != 0) {
        column_ = std::clamp(column, 0, columns_ - 1);
        row_ = std::clamp(row, 0, rows_ - 1);
    }
    choose(column_, row_, STN_CLICKED);
    return true;
}

void ColorCells::choose(int column, int row, int code) {
    column_ = column;
    row_ = row;
    selected_ = indexAt_(column, row);
    showName();
    InvalidateRect(handle(), nullptr, FALSE);
    SendMessageW(GetParent(handle()), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(handle()), code),
                 reinterpret_cast<LPARAM>(handle()));
}

void ColorCells::showName() {
    if (name_.empty())
        name_ = text();
    setText(selected_ == 0 ? name_ : name_ + L", color " + std::to_wstring(selected_));
}

}  // namespace drafthost
