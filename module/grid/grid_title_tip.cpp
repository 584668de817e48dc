#include "module/grid/grid_title_tip.h"

#include <windowsx.h>

#include <algorithm>

#include "framework/gdi.h"
#include "framework/instance.h"
#include "framework/window.h"
#include "module/grid/grid_control.h"

namespace tessary {

namespace {

constexpr int margin = 3;  // pixels between the tip's border and its text
constexpr UINT textFormat = DT_LEFT | DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL;  // breaks long words too

void paint(HWND tip) {
    const framework::PaintContext context(tip);
    RECT area{};
    GetClientRect(tip, &area);
    FillRect(context.get(), &area, GetSysColorBrush(COLOR_INFOBK));
    const framework::Selected font(context.get(),
                                   reinterpret_cast<HFONT>(GetWindowLongPtrW(tip, GWLP_USERDATA)));
    SetBkMode(context.get(), TRANSPARENT);
    SetTextColor(context.get(), GetSysColor(COLOR_INFOTEXT));
    const std::wstring text = framework::textOf(tip);
    InflateRect(&area, -margin, 0);
    DrawTextW(context.get(), text.c_str(), static_cast<int>(text.size()), &area, textFormat);
}

LRESULT CALLBACK tipProcedure(HWND tip, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCHITTEST: return HTTRANSPARENT;
        case WM_MOUSEACTIVATE: return MA_NOACTIVATE;
        case WM_PAINT: paint(tip); return 0;
        default: return DefWindowProcW(tip, message, wParam, lParam);
    }
}

// Any number of times.
void registerTipClass() {
    WNDCLASSEXW tipClass{};
    tipClass.cbSize = sizeof tipClass;
    tipClass.style = CS_SAVEBITS;
    tipClass.lpfnWndProc = tipProcedure;
    tipClass.hInstance = framework::ownInstance();
    tipClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    tipClass.lpszClassName = GridTitleTip::className;
    RegisterClassExW(&tipClass);
}

RECT workAreaAt(POINT point) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromPoint(point, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

// Of the text in one line, or in several where it is wider than that.
SIZE sizeOf(const std::wstring& text, HFONT font, int widest) {
    const framework::ClientContext screen(nullptr);
    const framework::Selected selected(screen.get(), font);
    RECT area{0, 0, widest, 0};
    DrawTextW(screen.get(), text.c_str(), static_cast<int>(text.size()), &area, textFormat | DT_CALCRECT);
    return {std::min<LONG>(area.right, widest), area.bottom};
}

}  // namespace

GridTitleTip::~GridTitleTip() {
    hide();
}

void GridTitleTip::observe(UINT message, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEMOVE: mouseMoved({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}); break;
        case WM_MOUSELEAVE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
        case WM_VSCROLL:
        case WM_HSCROLL:
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
        case WM_CHAR:
        case WM_KILLFOCUS:
        case WM_ENABLE:
        case WM_SHOWWINDOW:
        case WM_WINDOWPOSCHANGED:
        case WM_DESTROY: hide(); break;
        default: break;
    }
}

void GridTitleTip::hide() {
    cell_ = {};
    if (const HWND tip = std::exchange(tip_, nullptr); tip && IsWindow(tip))
        DestroyWindow(tip);
}

void GridTitleTip::mouseMoved(POINT point) {
    const HWND dialog = GetAncestor(grid_.handle(), GA_ROOT);
    const GridPosition cell = grid_.cellAt(point);
    if (cell && cell == cell_)
        return;
    hide();
    const auto place = cell ? grid_.cellArea(cell.row, cell.column) : std::nullopt;
    if (!place || GetCapture() || grid_.isEditing() || GetActiveWindow() != dialog ||
        grid_.checkBoxAt(cell.row, cell.column)) {
        return;
    }
    const std::wstring text(grid_.model().shownText(cell.row, cell.column));
    const RECT area = grid_.textArea(cell.row, cell.column, *place);
    RECT client{}, seen{};
    GetClientRect(grid_.handle(), &client);
    IntersectRect(&seen, &area, &client);
    if (!text.empty() && grid_.textWidth(text) > seen.right - seen.left) {
        cell_ = cell;
        show(text, area);
    }
}

void GridTitleTip::show(const std::wstring& text, const RECT& textArea) {
    registerTipClass();
    POINT corner{textArea.left, textArea.top};
    ClientToScreen(grid_.handle(), &corner);
    const RECT work = workAreaAt(corner);
    const int frame = 1 + margin;  // border and margin on each side
    const SIZE size = sizeOf(text, grid_.font(), static_cast<int>(work.right - work.left) - 2 * frame);
    const int width = static_cast<int>(size.cx) + 2 * frame;
    const LONG least = textArea.bottom - textArea.top;
    const int height = std::min<int>(std::max(size.cy + 2, least), work.bottom - work.top);
    const LONG left = std::max(work.left, std::min(corner.x - frame, work.right - width));
    const LONG top = std::max(work.top, std::min(corner.y, work.bottom - height));
    tip_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, className, text.c_str(),
                           WS_POPUP | WS_BORDER, left, top, width, height,
                           GetAncestor(grid_.handle(), GA_ROOT), nullptr, framework::ownInstance(), nullptr);
    if (!tip_)
        return;
    SetWindowLongPtrW(tip_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(grid_.font()));
    ShowWindow(tip_, SW_SHOWNOACTIVATE);
    TRACKMOUSEEVENT leave{sizeof leave, TME_LEAVE, grid_.handle(), 0};
    TrackMouseEvent(&leave);
}

}  // namespace tessary
