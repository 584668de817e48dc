// Which cell has the focus, and which cells are selected.

#include "module/grid/grid_accessible.h"
#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"

#include <algorithm>

namespace tessary {

void CGridCtrl::placeFocus(GridPosition to, bool extendSelection) {
    if (focus_ == to && !allSelected_ && (extendSelection || anchor_ == to))
        return;
    allSelected_ = false;
    focus_ = to;
    if (!extendSelection || !anchor_)
        anchor_ = to;
    refresh();
    accessible_->focusChanged();
}

// A header never takes the focus: what asks for one gets the first cell of the row that can have it.
void CGridCtrl::focusCell(int row, int column) {
    GridPosition to{row, column};
    if (row < fixedRowCount() || row >= rowCount() || column >= columnCount())
        to = {};
    else if (column < fixedColumnCount() || column < 0)
        to.column = columnBeside(-1, 1);
    if (!to)
        to = {};
    placeFocus(to, false);
}

void CGridCtrl::moveFocus(GridPosition to, bool extendSelection) {
    const int rowBefore = focus_.row;
    const std::weak_ptr<CGridCtrl*> life = self_;
    placeFocus(to, extendSelection && !singleRow_);
    ensureVisible(to.row, to.column);
    if (!life.expired() && to.row != rowBefore && focus_ == to)
        notifyOwner(gridSelectionChanged, to.row, to.column);
}

void CGridCtrl::moveFocusAfterEditing(UINT lastKey) {
    if (!handle() || !isDataCell(focus_))
        return;
    GridPosition to = focus_;
    if (lastKey == VK_TAB)
        to = nextInReadingOrder(GetKeyState(VK_SHIFT) < 0 ? -1 : 1);
    else if (lastKey == VK_RETURN)
        to = destination(VK_DOWN, false);
    else
        to = destination(lastKey, false);
    if (to && to != focus_)
        moveFocus(to, false);
}

bool CGridCtrl::isSelected(int row, int column) const {
    if (!isDataCell({row, column}))
        return false;
    const auto [first, last] = selectedBlock();
    return first && row >= first.row && row <= last.row && column >= first.column && column <= last.column;
}

std::pair<GridPosition, GridPosition> CGridCtrl::selectedBlock() const {
    if (allSelected_)
        return {{fixedRowCount(), fixedColumnCount()}, {rowCount() - 1, columnCount() - 1}};
    if (!isDataCell(focus_))
        return {};
    const GridPosition other = isDataCell(anchor_) ? anchor_ : focus_;
    GridPosition first{std::min(focus_.row, other.row), std::min(focus_.column, other.column)};
    GridPosition last{std::max(focus_.row, other.row), std::max(focus_.column, other.column)};
    if (singleRow_)
        first.row = last.row = focus_.row;
    if (listMode_) {
        first.column = fixedColumnCount();
        last.column = columnCount() - 1;
    }
    return {first, last};
}

void CGridCtrl::selectAll() {
    if (singleRow_ || !firstDataCell())
        return;
    const std::weak_ptr<CGridCtrl*> life = self_;
    if (!isDataCell(focus_))
        moveFocus(firstDataCell(), false);
    if (life.expired() || !isDataCell(focus_))
        return;
    allSelected_ = true;
    refresh();
}

int CGridCtrl::columnBeside(int column, int direction) const {
    for (column += direction; column >= 0 && column < columnCount(); column += direction) {
        if (column >= fixedColumnCount() && columnWidth(column) > 0)
            return column;
    }
    return -1;
}

GridPosition CGridCtrl::firstDataCell() const {
    const GridPosition first{rowOfIndex(0), columnBeside(-1, 1)};
    return first ? first : GridPosition{};
}

GridPosition CGridCtrl::lastDataCell() const {
    const GridPosition last{rowOfIndex(shownRowCount() - 1), columnBeside(columnCount(), -1)};
    return last ? last : GridPosition{};
}

GridPosition CGridCtrl::destination(UINT key, bool control) const {
    const GridPosition first = firstDataCell(), last = lastDataCell();
    if (!first)
        return {};
    if (!isDataCell(focus_))
        return key == VK_END && control ? last : first;
    const auto rowAfter = [&](int count) {
        return rowOfIndex(std::clamp(indexOfRow(focus_.row) + count, 0, shownRowCount() - 1));
    };
    const auto columnAfter = [&](int direction) {
        const int beside = columnBeside(focus_.column, direction);
        return beside < 0 ? focus_.column : beside;
    };
    const bool byRow = control || listMode_;  // Home and End: of the grid, not of the row
    switch (key) {
        case VK_UP: return {control ? first.row : rowAfter(-1), focus_.column};
        case VK_DOWN: return {control ? last.row : rowAfter(1), focus_.column};
        case VK_PRIOR: return {rowAfter(-pageRows()), focus_.column};
        case VK_NEXT: return {rowAfter(pageRows()), focus_.column};
        case VK_LEFT: return {focus_.row, control ? first.column : columnAfter(-1)};
        case VK_RIGHT: return {focus_.row, control ? last.column : columnAfter(1)};
        case VK_HOME: return {byRow ? first.row : focus_.row, listMode_ ? focus_.column : first.column};
        case VK_END: return {byRow ? last.row : focus_.row, listMode_ ? focus_.column : last.column};
        default: return focus_;
    }
}

GridPosition CGridCtrl::nextInReadingOrder(int direction) const {
    if (!isDataCell(focus_))
        return {};
    if (const int beside = columnBeside(focus_.column, direction); beside >= 0)
        return {focus_.row, beside};
    const int row = rowOfIndex(indexOfRow(focus_.row) + direction);
    const GridPosition next{row, columnBeside(direction > 0 ? -1 : columnCount(), direction)};
    return next ? next : GridPosition{};
}

}  // namespace tessary
