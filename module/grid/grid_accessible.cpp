#include "module/grid/grid_accessible.h"

#include <oleacc.h>

#include <algorithm>

#include "module/grid/grid_accessible_objects.h"
#include "module/grid/grid_control.h"

namespace tessary {

namespace {

bool isLabel(HWND window) {
    wchar_t name[16] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return CompareStringOrdinal(name, -1, L"Static", -1, TRUE) == CSTR_EQUAL;
}

std::wstring withoutAmpersand(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

RECT onScreen(HWND window, RECT area) {
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

// An area that can be seen in part stands for that part: its middle can be clicked at.
RECT seenPart(const RECT& area, const RECT& view) {
    RECT seen{};
    return IntersectRect(&seen, &area, &view) ? seen : area;
}

}  // namespace

LRESULT GridAccessible::getObject(WPARAM wParam, LPARAM lParam) {
    // Object ids are 32 bits wide, and come with or without their sign in the upper half. A positive one is
    // of focusChanged: a row's number + 1.
    const auto id = static_cast<LONG>(lParam);
    if (!grid_ || (id != OBJID_CLIENT && (id < 1 || id > grid_->rowCount())))
        return 0;
    IAccessible* const object =
        id == OBJID_CLIENT ? makeTableObject(shared_from_this()) : makeRowObject(shared_from_this(), id - 1);
    const LRESULT result = LresultFromObject(__uuidof(IAccessible), wParam, object);
    object->Release();
    return result;
}

void GridAccessible::focusChanged() const {
    if (!grid_ || GetFocus() != grid_->handle())
        return;
    if (grid_->focus_) {
        NotifyWinEvent(EVENT_OBJECT_FOCUS, grid_->handle(), grid_->focus_.row + 1, grid_->focus_.column + 1);
    } else {
        NotifyWinEvent(EVENT_OBJECT_FOCUS, grid_->handle(), OBJID_CLIENT, CHILDID_SELF);
    }
}

std::wstring GridAccessible::tableName() const {
    std::wstring name = grid_->Window::text();
    for (HWND label = GetWindow(grid_->handle(), GW_HWNDPREV); name.empty() && label && isLabel(label);
         label = GetWindow(label, GW_HWNDPREV)) {
        name = withoutAmpersand(framework::textOf(label));
    }
    return name;
}

std::wstring GridAccessible::rowName(int row) const {
    for (int column = 0; column < grid_->columnCount(); ++column) {
        const std::wstring_view text = grid_->model().shownText(row, column);
        if (!text.empty() && grid_->columnWidth(column) > 0 &&
            cellRole({row, column}) != ROLE_SYSTEM_CHECKBUTTON) {
            return std::wstring(text);
        }
    }
    return {};
}

std::wstring GridAccessible::cellName(const GridPosition& cell) const {
    return grid_->fixedRowCount() > 0
               ? std::wstring(grid_->model().shownText(grid_->fixedRowCount() - 1, cell.column))
               : std::wstring();
}

long GridAccessible::cellRole(const GridPosition& cell) const {
    if (cell.row < grid_->fixedRowCount())
        return ROLE_SYSTEM_COLUMNHEADER;
    if (cell.column < grid_->fixedColumnCount())
        return ROLE_SYSTEM_ROWHEADER;
    const CGridCellBase* const object = grid_->cell(cell.row, cell.column);
    switch (object ? object->kind() : GridColumnType::text) {
        case GridColumnType::checkBox: return ROLE_SYSTEM_CHECKBUTTON;
        case GridColumnType::editableDropDown: return ROLE_SYSTEM_COMBOBOX;
        case GridColumnType::choiceDropDown:
        case GridColumnType::lookedUp: return ROLE_SYSTEM_DROPLIST;
        case GridColumnType::tree: return ROLE_SYSTEM_OUTLINEITEM;
        default: return ROLE_SYSTEM_CELL;
    }
}

bool GridAccessible::isShown(const GridPosition& cell) const {
    return grid_->columnWidth(cell.column) > 0 && grid_->model().isRowShown(cell.row);
}

bool GridAccessible::isHeader(const GridPosition& cell) const {
    return grid_->model().isFixed(cell.row, cell.column);
}

bool GridAccessible::isSelected(const GridPosition& cell) const {
    return !isHeader(cell) && grid_->isSelected(cell.row, cell.column);
}

std::vector<int> GridAccessible::selectedColumns(int row) const {
    std::vector<int> columns;
    for (int column = 0; column < grid_->columnCount(); ++column) {
        if (isShown({row, column}) && isSelected({row, column}))
            columns.push_back(column);
    }
    return columns;
}

std::vector<int> GridAccessible::selectedRows() const {
    std::vector<int> rows;
    const auto [first, last] = grid_->selectedBlock();
    for (int row = first.row; first && row <= last.row; ++row) {
        if (!selectedColumns(row).empty())
            rows.push_back(row);
    }
    return rows;
}

bool GridAccessible::hasKeyboard() const {
    const HWND focus = GetFocus();
    return focus && (focus == grid_->handle() || IsChild(grid_->handle(), focus));
}

bool GridAccessible::canChange(const GridPosition& cell) const {
    return grid_->canEdit(cell.row, cell.column) || grid_->canToggle(cell);
}

bool GridAccessible::isSectionHead(const GridPosition& cell) const {
    return grid_->model().isSectionRow(cell.row) && cellRole(cell) == ROLE_SYSTEM_OUTLINEITEM;
}

long GridAccessible::cellState(const GridPosition& cell) const {
    long state = IsWindowEnabled(grid_->handle()) ? 0 : STATE_SYSTEM_UNAVAILABLE;
    if (!isShown(cell)) {
        state |= STATE_SYSTEM_INVISIBLE;
    } else if (!isInView(cell)) {
        state |= STATE_SYSTEM_OFFSCREEN;
    }
    if (isHeader(cell))
        return state | STATE_SYSTEM_READONLY;
    state |= STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_SELECTABLE;
    if (isSelected(cell))
        state |= STATE_SYSTEM_SELECTED;
    if (hasKeyboard() && grid_->focus_ == cell)
        state |= STATE_SYSTEM_FOCUSED;
    if (!canChange(cell))
        state |= STATE_SYSTEM_READONLY;
    const auto* const box = dynamic_cast<const CGridBtnCell*>(grid_->cell(cell.row, cell.column));
    if (box && box->isChecked())
        state |= STATE_SYSTEM_CHECKED;
    if (isSectionHead(cell))
        state |= grid_->model().isExpanded(cell.row) ? STATE_SYSTEM_EXPANDED : STATE_SYSTEM_COLLAPSED;
    return state;
}

long GridAccessible::rowState(int row) const {
    long state = IsWindowEnabled(grid_->handle()) ? 0 : STATE_SYSTEM_UNAVAILABLE;
    if (!grid_->model().isRowShown(row))
        return state | STATE_SYSTEM_INVISIBLE;
    bool seen = false;
    for (int column = 0; column < grid_->columnCount() && !seen; ++column)
        seen = isShown({row, column}) && isInView({row, column});
    if (!seen)
        state |= STATE_SYSTEM_OFFSCREEN;
    if (row >= grid_->fixedRowCount())
        state |= STATE_SYSTEM_SELECTABLE | (selectedColumns(row).empty() ? 0 : STATE_SYSTEM_SELECTED);
    return state;
}

RECT GridAccessible::viewOf(const GridPosition& cell) const {
    RECT view{};
    GetClientRect(grid_->handle(), &view);
    const int lastFixedRow = grid_->fixedRowCount() - 1;
    const int lastFixedColumn = grid_->fixedColumnCount() - 1;
    if (lastFixedRow >= 0 && cell.row > lastFixedRow) {
        if (const auto header = grid_->cellArea(lastFixedRow, cell.column))
            view.top = header->bottom;
    }
    if (lastFixedColumn >= 0 && cell.column > lastFixedColumn) {
        if (const auto header = grid_->cellArea(cell.row, lastFixedColumn))
            view.left = header->right;
    }
    return view;
}

bool GridAccessible::isInView(const GridPosition& cell) const {
    const auto area = grid_->cellArea(cell.row, cell.column);
    const RECT view = viewOf(cell);
    RECT seen{};
    return area && IntersectRect(&seen, &*area, &view);
}

bool GridAccessible::cellLocation(const GridPosition& cell, RECT& area) const {
    const auto place = isShown(cell) ? grid_->cellArea(cell.row, cell.column) : std::nullopt;
    if (!place)
        return false;
    area = onScreen(grid_->handle(), seenPart(*place, viewOf(cell)));
    return true;
}

bool GridAccessible::rowLocation(int row, RECT& area) const {
    RECT all{};
    for (int column = 0; column < grid_->columnCount(); ++column) {
        if (const auto place = isShown({row, column}) ? grid_->cellArea(row, column) : std::nullopt)
            UnionRect(&all, &all, &*place);
    }
    RECT view = viewOf({row, grid_->columnCount()});
    GetClientRect(grid_->handle(), &area);
    view.left = area.left;
    area = onScreen(grid_->handle(), seenPart(all, view));
    return !IsRectEmpty(&all);
}

const wchar_t* GridAccessible::defaultAction(const GridPosition& cell) const {
    if (isHeader(cell) || !isShown(cell))
        return nullptr;
    if (isSectionHead(cell))
        return grid_->model().isExpanded(cell.row) ? L"Collapse" : L"Expand";
    if (!canChange(cell))
        return nullptr;
    switch (cellRole(cell)) {
        case ROLE_SYSTEM_CHECKBUTTON:
            return (cellState(cell) & STATE_SYSTEM_CHECKED) != 0 ? L"Uncheck" : L"Check";
        case ROLE_SYSTEM_COMBOBOX:
        case ROLE_SYSTEM_DROPLIST: return L"Open";
        default: return L"Edit";
    }
}

bool GridAccessible::doDefaultAction(const GridPosition& cell) const {
    if (!defaultAction(cell) || FAILED(select(cell, SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION)))
        return false;
    // The owner was told of the new focus and may have changed the grid.
    if (!grid_ || !defaultAction(cell))
        return false;
    if (isSectionHead(cell)) {
        grid_->toggleSection(cell.row);
    } else if (cellRole(cell) == ROLE_SYSTEM_CHECKBUTTON) {
        grid_->toggleCheckBox(cell.row, cell.column);
    } else {
        grid_->startEditing(cell.row, cell.column, VK_LBUTTON);
    }
    return true;
}

HRESULT GridAccessible::select(const GridPosition& cell, long flags) const {
    constexpr long known = SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION | SELFLAG_EXTENDSELECTION;
    const bool extend = (flags & SELFLAG_EXTENDSELECTION) != 0;
    // The selection goes with the focus; single cells cannot be added to it or taken from it.
    if (flags == 0 || (flags & ~known) != 0 || (extend && (flags & SELFLAG_TAKESELECTION) != 0))
        return E_INVALIDARG;
    if (isHeader(cell) || !isShown(cell))
        return E_INVALIDARG;
    if (!IsWindowEnabled(grid_->handle()))
        return E_ACCESSDENIED;
    if ((flags & SELFLAG_TAKEFOCUS) != 0)
        SetFocus(grid_->handle());
    if (grid_)
        grid_->moveFocus(cell, extend);
    return grid_ ? S_OK : CO_E_OBJNOTCONNECTED;
}

bool GridAccessible::setValue(const GridPosition& cell, const std::wstring& text) const {
    return isShown(cell) && grid_->enterText(cell.row, cell.column, text);
}

}  // namespace tessary
