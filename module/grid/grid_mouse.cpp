// The mouse.

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>

namespace tessary {

namespace {

constexpr int edgeReach = 4;         // pixels on both sides of a column's edge
constexpr int smallestColumn = 4;    // pixels: a width of 0 would hide the column for good
constexpr UINT scrollInterval = 50;  // milliseconds, while the mouse is held outside

POINT pointOf(LPARAM lParam) {
    return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

}  // namespace

int CGridCtrl::edgeAt(POINT at) const {
    if (at.y < 0 || at.y >= headerSize().cy)
        return -1;
    // From the right: where columns are narrower than the reach, the last one can still be widened.
    for (int column = columnCount() - 1; column >= 0; --column) {
        const auto area = cellArea(0, column);
        const bool beneathHeader = area && column >= fixedColumnCount() && area->right <= headerSize().cx;
        if (area && !beneathHeader && std::abs(at.x - area->right) <= edgeReach)
            return column;
    }
    return -1;
}

bool CGridCtrl::isOverCell(const GridPosition& cell, POINT at) const {
    const auto area = cellArea(cell.row, cell.column);
    return area && PtInRect(&*area, at) && cellAt(at) == cell;
}

// The data cell that the mouse means while it selects, also outside of the window.
GridPosition CGridCtrl::nearestCell(POINT at) const {
    if (!firstDataCell())
        return {};
    const RECT area = dataArea();
    at.x = std::clamp(at.x, area.left, std::max(area.left, area.right - 1));
    at.y = std::clamp(at.y, area.top, std::max(area.top, area.bottom - 1));
    const int index = static_cast<int>(at.y - headerSize().cy + scroll_.y) / rowHeight();
    GridPosition cell{rowOfIndex(std::clamp(index, 0, shownRowCount() - 1)), columnBeside(columnCount(), -1)};
    for (int column = columnBeside(-1, 1); column >= 0; column = columnBeside(column, 1)) {
        if (at.x + scroll_.x < columnStart(column + 1)) {
            cell.column = column;
            break;
        }
    }
    return cell;
}

void CGridCtrl::beginPress(Press::Kind kind, const GridPosition& cell, POINT at) {
    press_ = {kind, cell, static_cast<int>(at.x), columnWidth(cell.column), true, at};
    SetCapture(handle());
    refresh();
}

// Nothing of what the button began happens.
void CGridCtrl::cancelPress() {
    const Press press = std::exchange(press_, {});
    if (press.kind == Press::Kind::none || !handle())
        return;
    KillTimer(handle(), dragTimer);
    if (press.kind == Press::Kind::columnEdge)
        setColumnWidth(press.cell.column, press.startWidth);
    if (GetCapture() == handle())
        ReleaseCapture();
    refresh();
}

LRESULT CGridCtrl::onCaptureChanged(WPARAM, LPARAM) {
    cancelPress();
    return 0;
}

bool CGridCtrl::pressHeader(POINT at) {
    if (const int column = edgeAt(at); column >= 0) {
        beginPress(Press::Kind::columnEdge, {0, column}, at);
        return true;
    }
    const GridPosition cell = cellAt(at);
    if (!cell || cell.row >= fixedRowCount())
        return false;
    if (headerSort_)
        beginPress(Press::Kind::header, cell, at);
    return true;
}

bool CGridCtrl::pressExpandBox(const GridPosition& cell, POINT at) {
    const auto area = cellArea(cell.row, cell.column);
    const RECT box = area ? expandBox(cell.row, cell.column, *area) : RECT{};
    if (!PtInRect(&box, at))
        return false;
    toggleSection(cell.row);
    return true;
}

void CGridCtrl::toggleSection(int row) {
    expandByDrafter(row, !model_.isExpanded(row));
}

// The focus may go to the section's head, when it was in a row that is hidden now.
void CGridCtrl::expandByDrafter(int row, bool expanded) {
    const int rowBefore = focus_.row;
    const std::weak_ptr<CGridCtrl*> life = self_;
    setExpanded(row, expanded);
    if (!life.expired() && focus_.row != rowBefore)
        notifyOwner(gridSelectionChanged, focus_.row, focus_.column);
}

bool CGridCtrl::canToggle(const GridPosition& position) const {
    const CGridCellBase* const asked = cell(position.row, position.column);
    return asked && isDataCell(position) && editable_ && asked->kind() == GridColumnType::checkBox &&
           !asked->isReadOnly();
}

void CGridCtrl::pressCell(const GridPosition& cell, POINT at, bool extend) {
    const auto area = cellArea(cell.row, cell.column);
    const RECT arrow = area ? arrowArea(*area) : RECT{};
    if (!extend && focus_ == cell && hasArrow(cell.row, cell.column) && PtInRect(&arrow, at)) {
        startEditing(cell.row, cell.column, VK_LBUTTON);
        return;
    }
    // Before the owner is told of the focus: a message box of its own takes the mouse and ends the press.
    beginPress(canToggle(cell) ? Press::Kind::checkBox : Press::Kind::cells, cell, at);
    moveFocus(cell, extend);
}

// An editor, of this grid or another, ends with its loss of the focus; what its owner does then may be
// anything. False when the grid is gone, or the owner has put the focus elsewhere, as into a cell that is
// edited again: the click is over then.
bool CGridCtrl::takeKeyboard() {
    const std::weak_ptr<CGridCtrl*> life = self_;
    if (GetFocus() != handle())
        SetFocus(handle());
    return !life.expired() && handle() && GetFocus() == handle() && !isEditing();
}

LRESULT CGridCtrl::onButtonDown(WPARAM wParam, LPARAM lParam) {
    const POINT at = pointOf(lParam);
    if (!takeKeyboard() || pressHeader(at))
        return 0;
    GridPosition cell = cellAt(at);
    if (!cell || pressExpandBox(cell, at))
        return 0;
    if (cell.column < fixedColumnCount())
        cell.column = isDataCell(focus_) ? focus_.column : columnBeside(-1, 1);
    if (cell)
        pressCell(cell, at, (wParam & MK_SHIFT) != 0);
    return 0;
}

LRESULT CGridCtrl::onDoubleClick(WPARAM wParam, LPARAM lParam) {
    const POINT at = pointOf(lParam);
    const GridPosition cell = cellAt(at);
    if (const int column = edgeAt(at); column >= 0) {
        autoSizeColumn(column);
        return 0;
    }
    const auto area = cellArea(cell.row, cell.column);
    const RECT box = area ? expandBox(cell.row, cell.column, *area) : RECT{};
    if (!isDataCell(cell) || PtInRect(&box, at))
        return onButtonDown(wParam, lParam);
    const std::weak_ptr<CGridCtrl*> life = self_;
    if (!takeKeyboard() || !isDataCell(cell))
        return 0;
    moveFocus(cell, false);
    if (life.expired() || !handle() || !isDataCell(cell))
        return 0;
    if (model_.isSectionRow(cell.row))
        toggleSection(cell.row);
    else if (canToggle(cell))
        toggleCheckBox(cell.row, cell.column);
    else
        startEditing(cell.row, cell.column, VK_LBUTTON);
    return 0;
}

void CGridCtrl::extendPress(POINT at) {
    const GridPosition to = nearestCell(at);
    if (to && to != focus_)
        moveFocus(to, true);
}

LRESULT CGridCtrl::onMouseMove(WPARAM wParam, LPARAM lParam) {
    // The system also reports moves of its own, when windows come and go: they select nothing.
    if ((wParam & MK_LBUTTON) == 0)
        return 0;
    const POINT at = pointOf(lParam);
    press_.last = at;
    if (press_.kind == Press::Kind::columnEdge) {
        const int width = press_.startWidth + static_cast<int>(at.x) - press_.startX;
        setColumnWidth(press_.cell.column, std::max(smallestColumn, width));
    } else if (press_.kind == Press::Kind::header || press_.kind == Press::Kind::checkBox) {
        if (const bool inside = isOverCell(press_.cell, at); inside != press_.inside) {
            press_.inside = inside;
            refresh();
        }
    } else if (press_.kind == Press::Kind::cells) {
        const RECT area = dataArea();
        // Outside, the timer goes on scrolling without any movement of the mouse.
        if (PtInRect(&area, at))
            KillTimer(handle(), dragTimer);
        else
            SetTimer(handle(), dragTimer, scrollInterval, nullptr);
        extendPress(at);
    }
    return 0;
}

void CGridCtrl::scrollForDrag() {
    if (press_.kind != Press::Kind::cells) {
        KillTimer(handle(), dragTimer);
        return;
    }
    const RECT area = dataArea();
    const POINT at = press_.last;
    // The farther outside, the faster.
    const auto step = [this](LONG place, LONG low, LONG high) {
        const int distance = static_cast<int>(place < low     ? place - low
                                              : place >= high ? place - high + 1
                                                              : 0);
        const int rows = std::min(20, 1 + std::abs(distance) / (2 * rowHeight()));
        return distance < 0 ? -rows * rowHeight() : distance > 0 ? rows * rowHeight() : 0;
    };
    const std::weak_ptr<CGridCtrl*> life = self_;
    scrollBy(step(at.x, area.left, area.right), step(at.y, area.top, area.bottom));
    if (!life.expired() && press_.kind == Press::Kind::cells)
        extendPress(at);
}

LRESULT CGridCtrl::onButtonUp(WPARAM, LPARAM lParam) {
    const POINT at = pointOf(lParam);
    const Press press = std::exchange(press_, {});
    if (press.kind == Press::Kind::none)
        return 0;
    KillTimer(handle(), dragTimer);
    if (GetCapture() == handle())
        ReleaseCapture();
    refresh();
    if (!isOverCell(press.cell, at))
        return 0;
    if (press.kind == Press::Kind::header)
        sortByHeader(press.cell.column);
    else if (press.kind == Press::Kind::checkBox && canToggle(press.cell))
        toggleCheckBox(press.cell.row, press.cell.column);
    return 0;
}

// The same header again turns the order round.
void CGridCtrl::sortByHeader(int column) {
    sortByColumn(compareGridTexts, column, column != sortColumn_ || !sortAscending_);
}

LRESULT CGridCtrl::onSetCursor(WPARAM wParam, LPARAM lParam) {
    const DWORD place = GetMessagePos();
    POINT at{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    ScreenToClient(handle(), &at);
    const bool overGrid = reinterpret_cast<HWND>(wParam) == handle() && LOWORD(lParam) == HTCLIENT;
    if (!overGrid || edgeAt(at) < 0)
        return defaultHandling(WM_SETCURSOR, wParam, lParam);
    SetCursor(LoadCursorW(nullptr, IDC_SIZEWE));
    return TRUE;
}

}  // namespace tessary
