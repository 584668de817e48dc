// Scrolling, by pixels: headers stay, the rest moves beneath them.

#include "module/grid/grid_control.h"

#include <algorithm>
#include <cstdlib>

namespace tessary {

namespace {

int roundedUp(int value, int step) {
    return (value + step - 1) / step * step;
}

int heightOf(const RECT& area) {
    return static_cast<int>(area.bottom - area.top);
}

int widthOf(const RECT& area) {
    return static_cast<int>(area.right - area.left);
}

}  // namespace

int CGridCtrl::pageRows() const {
    return std::max(1, heightOf(dataArea()) / rowHeight());
}

// The last row can be scrolled until all of it is seen with a whole row below the header.
POINT CGridCtrl::scrollEnd() const {
    const RECT area = dataArea();
    const int width = columnStart(columnCount()) - static_cast<int>(headerSize().cx);
    const int height = shownRowCount() * rowHeight();
    const int page = std::max(heightOf(area), rowHeight());
    return {std::max(0, width - widthOf(area)), std::max(0, roundedUp(height - page, rowHeight()))};
}

void CGridCtrl::setScrollBar(int bar, int end, int page, int position) {
    SCROLLINFO now{};
    now.cbSize = sizeof now;
    now.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    GetScrollInfo(handle(), bar, &now);
    // A bar without a range is hidden by the system.
    const int range = end > 0 ? end + std::max(page, 1) - 1 : 0;
    const UINT shownPage = end > 0 ? static_cast<UINT>(std::max(page, 1)) : 1;
    const bool onlyMoves = now.nMin == 0 && now.nMax == range && now.nPage == shownPage;
    if (onlyMoves && now.nPos == position)
        return;
    SCROLLINFO wanted{};
    wanted.cbSize = sizeof wanted;
    wanted.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    wanted.nMax = range;
    wanted.nPage = shownPage;
    wanted.nPos = position;
    SetScrollInfo(handle(), bar, &wanted, !onlyMoves);
    // Drawing a bar may take longer than the rows: they are seen first, and after several steps it is drawn
    // once.
    if (onlyMoves)
        SetTimer(handle(), thumbTimer, USER_TIMER_MINIMUM, nullptr);
}

void CGridCtrl::drawScrollBars() {
    KillTimer(handle(), thumbTimer);
    for (const LONG bar : {OBJID_VSCROLL, OBJID_HSCROLL}) {
        SCROLLBARINFO info{};
        info.cbSize = sizeof info;
        if (!GetScrollBarInfo(handle(), bar, &info) || (info.rgstate[0] & STATE_SYSTEM_INVISIBLE))
            continue;
        RECT area = info.rcScrollBar;
        MapWindowPoints(nullptr, handle(), reinterpret_cast<POINT*>(&area), 2);
        RedrawWindow(handle(), &area, nullptr, RDW_INVALIDATE | RDW_FRAME);
    }
}

bool CGridCtrl::fitsWithoutScrollBars() const {
    RECT client{};
    GetClientRect(handle(), &client);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(handle(), GWL_STYLE));
    if (style & WS_VSCROLL)
        client.right += GetSystemMetrics(SM_CXVSCROLL);
    if (style & WS_HSCROLL)
        client.bottom += GetSystemMetrics(SM_CYHSCROLL);
    const int height = (fixedRowCount() + shownRowCount()) * rowHeight();
    return columnStart(columnCount()) <= client.right && height <= client.bottom;
}

void CGridCtrl::settleLayout() {
    if (layoutSettled_ || settling_ || !handle())
        return;
    settling_ = true;
    // Each of two bars may be needed only because of the room that the other one takes.
    if (fitsWithoutScrollBars()) {
        setScrollBar(SB_VERT, 0, 0, 0);
        setScrollBar(SB_HORZ, 0, 0, 0);
    }
    // A bar takes room from the other direction: the second round sees both.
    for (int round = 0; round < 2; ++round) {
        for (const int bar : {SB_VERT, SB_HORZ}) {
            const POINT end = scrollEnd();
            scroll_ = {std::min(scroll_.x, end.x), std::min(scroll_.y, end.y)};
            const RECT area = dataArea();
            if (bar == SB_VERT)
                setScrollBar(bar, end.y, heightOf(area), scroll_.y);
            else
                setScrollBar(bar, end.x, widthOf(area), scroll_.x);
        }
    }
    settling_ = false;
    layoutSettled_ = true;
}

void CGridCtrl::scrollTo(POINT offset) {
    if (!handle())
        return;
    const auto reachable = [this](POINT wanted) {
        settleLayout();
        const POINT end = scrollEnd();
        return POINT{std::clamp(wanted.x, 0L, end.x), std::clamp(wanted.y, 0L, end.y)};
    };
    const auto isThere = [this](POINT wanted) { return wanted.x == scroll_.x && wanted.y == scroll_.y; };
    POINT to = reachable(offset);
    if (isThere(to))
        return;
    if (isEditing()) {
        const std::weak_ptr<CGridCtrl*> life = self_;
        endEditing();
        if (life.expired() || !handle())
            return;
        to = reachable(offset);
        if (isThere(to))
            return;
    }
    scroll_ = to;
    layoutSettled_ = false;
    settleLayout();
    refresh();
}

void CGridCtrl::scrollBy(int dx, int dy) {
    settleLayout();
    scrollTo({scroll_.x + dx, scroll_.y + dy});
}

// Each direction for itself: the row is brought into view in a hidden column, too.
void CGridCtrl::ensureVisible(int row, int column) {
    if (!handle())
        return;
    settleLayout();
    const RECT area = dataArea();
    POINT to = scroll_;
    // What does not fit shows its beginning.
    if (row >= fixedRowCount() && model_.isRowShown(row)) {
        const int top = indexOfRow(row) * rowHeight(), bottom = top + rowHeight();
        if (top < to.y)
            to.y = top;
        else if (bottom > to.y + heightOf(area))
            to.y = std::min(top, roundedUp(bottom - heightOf(area), rowHeight()));
    }
    if (column >= fixedColumnCount() && columnWidth(column) > 0) {
        const int left = columnStart(column) - static_cast<int>(headerSize().cx);
        const int right = left + columnWidth(column);
        if (left < to.x)
            to.x = left;
        else if (right > to.x + widthOf(area))
            to.x = std::min(left, right - widthOf(area));
    }
    scrollTo(to);
}

void CGridCtrl::scrollToTop(int row) {
    scrollTo({scroll_.x, static_cast<LONG>(std::max(0, indexOfRow(row))) * rowHeight()});
}

LRESULT CGridCtrl::onScrollBar(int bar, WPARAM wParam) {
    settleLayout();
    // The message itself carries only 16 bits of a thumb's position.
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS | SIF_RANGE;
    GetScrollInfo(handle(), bar, &info);
    const bool vertical = bar == SB_VERT;
    const int line = vertical ? rowHeight() : rowHeight() * 2;
    const int page = std::max(line, vertical ? pageRows() * line : widthOf(dataArea()) - line);
    const int position = static_cast<int>(vertical ? scroll_.y : scroll_.x);
    int step = 0;
    switch (LOWORD(wParam)) {
        case SB_LINEUP: step = -line; break;
        case SB_LINEDOWN: step = line; break;
        case SB_PAGEUP: step = -page; break;
        case SB_PAGEDOWN: step = page; break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: step = info.nTrackPos - position; break;
        case SB_TOP: step = -position; break;
        case SB_BOTTOM: step = info.nMax - position; break;
        default: return 0;
    }
    scrollBy(vertical ? 0 : step, vertical ? step : 0);
    return 0;
}

LRESULT CGridCtrl::onVerticalScroll(WPARAM wParam, LPARAM) {
    return onScrollBar(SB_VERT, wParam);
}

LRESULT CGridCtrl::onHorizontalScroll(WPARAM wParam, LPARAM) {
    return onScrollBar(SB_HORZ, wParam);
}

// Fine wheels send less than a notch at a time; what is too little for a pixel waits for the next message.
LRESULT CGridCtrl::onWheel(WPARAM wParam, LPARAM lParam) {
    settleLayout();
    if (LOWORD(wParam) & MK_SHIFT)  // for mice with one wheel: away from the user is to the left
        return onHorizontalWheel(MAKEWPARAM(0, static_cast<WORD>(-GET_WHEEL_DELTA_WPARAM(wParam))), lParam);
    if (scrollEnd().y == 0)
        return defaultHandling(WM_MOUSEWHEEL, wParam, lParam);
    UINT lines = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const int notch =
        (lines == WHEEL_PAGESCROLL ? pageRows() : static_cast<int>(std::min(lines, 100u))) * rowHeight();
    wheelRest_[0] += GET_WHEEL_DELTA_WPARAM(wParam) * notch;
    const int step = wheelRest_[0] / WHEEL_DELTA;
    wheelRest_[0] %= WHEEL_DELTA;
    scrollBy(0, -step);
    return 0;
}

LRESULT CGridCtrl::onHorizontalWheel(WPARAM wParam, LPARAM lParam) {
    settleLayout();
    if (scrollEnd().x == 0)
        return defaultHandling(WM_MOUSEHWHEEL, wParam, lParam);
    UINT characters = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLCHARS, 0, &characters, 0);
    const int notch = characters == WHEEL_PAGESCROLL
                          ? widthOf(dataArea())
                          : static_cast<int>(std::min(characters, 100u)) * textWidth(L"x");
    wheelRest_[1] += GET_WHEEL_DELTA_WPARAM(wParam) * notch;
    const int step = wheelRest_[1] / WHEEL_DELTA;
    wheelRest_[1] %= WHEEL_DELTA;
    scrollBy(step, 0);
    return 0;
}

}  // namespace tessary
