#include "module/grid/grid_control.h"

#include "framework/instance.h"
#include "module/grid/grid_accessible.h"
#include "module/grid/grid_notifications.h"
#include "module/grid/grid_text_widths.h"
#include "module/grid/grid_title_tip.h"

#include <algorithm>
#include <iterator>

namespace tessary {

namespace {

// Dialogs give their controls the font before a grid is attached: the window itself keeps it.
constexpr int fontOffset = 0;

LRESULT CALLBACK gridWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETFONT:
            SetWindowLongPtrW(window, fontOffset, static_cast<LONG_PTR>(wParam));
            if (LOWORD(lParam))
                InvalidateRect(window, nullptr, TRUE);
            return 0;
        case WM_GETFONT: return GetWindowLongPtrW(window, fontOffset);
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

// Posted to the grid's own window once the layout is out of date, so that many changes cost one update.
constexpr UINT settleLayoutMessage = WM_USER + 1;

}  // namespace

void registerGridClass() {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = gridWindowProcedure;
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    windowClass.hInstance = framework::ownInstance();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    windowClass.lpszClassName = CGridCtrl::className;
    RegisterClassExW(&windowClass);  // fails where it is registered already
}

CGridCtrl::CGridCtrl()
    : accessible_(std::make_shared<GridAccessible>(*this)), titleTip_(std::make_unique<GridTitleTip>(*this)) {
    registerGridClass();
}

CGridCtrl::~CGridCtrl() {
    accessible_->disconnect();
}

void CGridCtrl::attachToControl(HWND dialog, int controlId) {
    attach(GetDlgItem(dialog, controlId));
    fontChanged();
}

void CGridCtrl::onDestroyed() {
    accessible_->disconnect();
    accessible_ = std::make_shared<GridAccessible>(*this);  // the grid may be attached to another window
    press_ = {};
    repaintPending_ = false;
}

struct CGridCtrl::Route {
    UINT message;
    LRESULT (CGridCtrl::*handler)(WPARAM, LPARAM);
};

const CGridCtrl::Route* CGridCtrl::routeOf(UINT message) {
    static constexpr Route routes[]{
        {WM_PAINT, &CGridCtrl::onPaint},
        {WM_PRINTCLIENT, &CGridCtrl::onPrintClient},
        {WM_ERASEBKGND, &CGridCtrl::onEraseBackground},
        {WM_SIZE, &CGridCtrl::onSize},
        {WM_SETFONT, &CGridCtrl::onSetFont},
        {WM_ENABLE, &CGridCtrl::onLooksChanged},
        {WM_SETFOCUS, &CGridCtrl::onLooksChanged},
        {WM_KILLFOCUS, &CGridCtrl::onLooksChanged},
        {WM_SYSCOLORCHANGE, &CGridCtrl::onLooksChanged},
        {WM_THEMECHANGED, &CGridCtrl::onLooksChanged},
        {WM_SETTINGCHANGE, &CGridCtrl::onLooksChanged},
        {WM_GETOBJECT, &CGridCtrl::onGetObject},
        {WM_NOTIFY, &CGridCtrl::onNotify},
        {WM_COMMAND, &CGridCtrl::onCommand},
        {WM_DRAWITEM, &CGridCtrl::onDrawItem},
        {WM_VSCROLL, &CGridCtrl::onVerticalScroll},
        {WM_HSCROLL, &CGridCtrl::onHorizontalScroll},
        {WM_MOUSEWHEEL, &CGridCtrl::onWheel},
        {WM_MOUSEHWHEEL, &CGridCtrl::onHorizontalWheel},
        {WM_LBUTTONDOWN, &CGridCtrl::onButtonDown},
        {WM_LBUTTONDBLCLK, &CGridCtrl::onDoubleClick},
        {WM_LBUTTONUP, &CGridCtrl::onButtonUp},
        {WM_MOUSEMOVE, &CGridCtrl::onMouseMove},
        {WM_CAPTURECHANGED, &CGridCtrl::onCaptureChanged},
        {WM_TIMER, &CGridCtrl::onTimer},
        {WM_SETCURSOR, &CGridCtrl::onSetCursor},
        {WM_GETDLGCODE, &CGridCtrl::onDialogCode},
        {WM_KEYDOWN, &CGridCtrl::onKeyDown},
        {WM_CHAR, &CGridCtrl::onChar},
        {settleLayoutMessage, &CGridCtrl::onSettleLayout},
    };
    const auto* const found =
        std::ranges::find_if(routes, [=](const Route& route) { return route.message == message; });
    return found == std::end(routes) ? nullptr : found;
}

LRESULT CGridCtrl::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    titleTip_->observe(message, lParam);
    if (const Route* const route = routeOf(message))
        return (this->*route->handler)(wParam, lParam);
    return defaultHandling(message, wParam, lParam);
}

LRESULT CGridCtrl::onSize(WPARAM wParam, LPARAM lParam) {
    if (!settling_) {
        // Cells may move in another size, and an editor would stay where it is.
        const std::weak_ptr<CGridCtrl*> life = self_;
        endEditing();
        if (life.expired() || !handle())
            return 0;
        layoutSettled_ = false;
        settleLayout();
        InvalidateRect(handle(), nullptr, FALSE);
    }
    return defaultHandling(WM_SIZE, wParam, lParam);
}

LRESULT CGridCtrl::onTimer(WPARAM wParam, LPARAM lParam) {
    switch (wParam) {
        case dragTimer: scrollForDrag(); return 0;
        case thumbTimer: drawScrollBars(); return 0;
        default: return defaultHandling(WM_TIMER, wParam, lParam);
    }
}

LRESULT CGridCtrl::onSetFont(WPARAM wParam, LPARAM lParam) {
    const LRESULT result = defaultHandling(WM_SETFONT, wParam, lParam);
    fontChanged();
    return result;
}

LRESULT CGridCtrl::onLooksChanged(WPARAM, LPARAM) {
    InvalidateRect(handle(), nullptr, FALSE);
    return 0;
}

LRESULT CGridCtrl::onGetObject(WPARAM wParam, LPARAM lParam) {
    if (const LRESULT result = accessible_->getObject(wParam, lParam))
        return result;
    return defaultHandling(WM_GETOBJECT, wParam, lParam);
}

// Of the editors, which are children of the grid.
LRESULT CGridCtrl::onNotify(WPARAM wParam, LPARAM lParam) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    if (static_cast<int>(header.code) != gridEndEdit)
        return defaultHandling(WM_NOTIFY, wParam, lParam);
    const GridEditItem& item = reinterpret_cast<const GridEditNotification*>(lParam)->item;
    return editorEnded({item.row, item.column}, item.text ? item.text : L"",
                       static_cast<UINT>(item.parameter));
}

LRESULT CGridCtrl::onSettleLayout(WPARAM, LPARAM) {
    settleLayout();
    return 0;
}

void CGridCtrl::layoutChanged() {
    shownRowsKnown_ = false;
    layoutSettled_ = false;
    refresh();
}

void CGridCtrl::refresh() {
    if (!redraw_ || repaintPending_ || !handle())
        return;
    repaintPending_ = true;
    InvalidateRect(handle(), nullptr, FALSE);
    PostMessageW(handle(), settleLayoutMessage, 0, 0);
}

void CGridCtrl::cellChanged(int row, int column) {
    if (!redraw_ || repaintPending_ || !handle())
        return;
    RECT client{}, seen{};
    GetClientRect(handle(), &client);
    if (const auto area = cellArea(row, column); area && IntersectRect(&seen, &*area, &client))
        InvalidateRect(handle(), &seen, FALSE);
}

void CGridCtrl::setRedraw(bool on, bool now) {
    redraw_ = on;
    if (!on)
        return;
    refresh();
    if (now && handle()) {
        settleLayout();
        UpdateWindow(handle());
    }
}

void CGridCtrl::setListMode(bool on) {
    listMode_ = on;
    refresh();
}

}  // namespace tessary
