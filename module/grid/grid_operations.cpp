// What programs do with a grid's matrix: each operation changes the model, then the focus and the view that
// depend on it. An operation that moves cells ends an open editor first, while the cell under it is still
// there to take the text; what the owner does with that is done before the operation looks at the matrix.

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"

#include <algorithm>
#include <utility>

namespace tessary {

void CGridCtrl::endEditingForChange() {
    if (isEditing()) {
        endEditing();
    }
}

void CGridCtrl::dropLostFocus() {
    auto isLost = [&](const GridPosition& at) {
        return at && (!model_.cell(at.row, at.column) || model_.isFixed(at.row, at.column));
    };
    if (isLost(focus_)) {
        focusCell(-1, -1);
    }
    if (isLost(anchor_)) {
        anchor_ = focus_;
    }
}

void CGridCtrl::setRowCount(int count) {
    if (count < rowCount()) {
        endEditingForChange();
    }
    model_.setRowCount(count);
    dropLostFocus();
    layoutChanged();
}

void CGridCtrl::setColumnCount(int count) {
    if (count < columnCount()) {
        endEditingForChange();
    }
    model_.setColumnCount(count);
    dropLostFocus();
    layoutChanged();
}

void CGridCtrl::setFixedRowCount(int count) {
    endEditingForChange();
    model_.setFixedRowCount(count);
    dropLostFocus();
    layoutChanged();
}

void CGridCtrl::setFixedColumnCount(int count) {
    endEditingForChange();
    model_.setFixedColumnCount(count);
    dropLostFocus();
    layoutChanged();
}

void CGridCtrl::setColumnWidth(int column, int width) {
    model_.setColumnWidth(column, width);
    layoutChanged();
}

void CGridCtrl::setColumnType(int column, GridColumnType type) {
    model_.setColumnType(column, type);
    layoutChanged();
}

void CGridCtrl::setCheckBoxColumn(int column) {
    setColumnType(column, GridColumnType::checkBox);
}

void CGridCtrl::setDropDownColumn(int column, bool editable) {
    setColumnType(column, editable ? GridColumnType::editableDropDown : GridColumnType::choiceDropDown);
}

void CGridCtrl::setLookedUpColumn(int column) {
    setColumnType(column, GridColumnType::lookedUp);
}

void CGridCtrl::setTreeColumn(int column) {
    setColumnType(column, GridColumnType::tree);
}

void CGridCtrl::setColumnChoicesFromText(int column, std::wstring_view text) {
    model_.setColumnChoicesFromText(column, text);
    layoutChanged();
}

void CGridCtrl::setColumnChoices(int column, std::vector<std::wstring> texts) {
    model_.setColumnChoices(column, std::move(texts));
}

void CGridCtrl::setColumnChoiceData(int column, std::vector<int> data) {
    model_.setColumnChoiceData(column, std::move(data));
}

void CGridCtrl::applyColumnChoices(int column) {
    model_.applyColumnChoices(column);
    layoutChanged();
}

void CGridCtrl::setCellChoices(int row, int column, std::vector<std::wstring> texts, bool editable) {
    model_.setCellChoices(row, column, std::move(texts), editable);
    cellChanged(row, column);
}

void CGridCtrl::makePlainCell(int row, int column) {
    model_.makePlainCell(row, column);
    cellChanged(row, column);
}

void CGridCtrl::setReadOnly(int row, int column) {
    model_.setReadOnly(row, column, true);
    cellChanged(row, column);
}

void CGridCtrl::setColumnName(int column, const std::wstring& name) {
    model_.setColumnName(column, name);
}

void CGridCtrl::setText(int row, int column, std::wstring_view text) {
    model_.setText(row, column, text);
    cellChanged(row, column);
}

const std::wstring& CGridCtrl::textByName(int row, const std::wstring& name) const {
    return model_.text(row, model_.columnNamed(name));
}

void CGridCtrl::setTextByName(int row, const std::wstring& name, std::wstring_view text) {
    setText(row, model_.columnNamed(name), text);
}

int CGridCtrl::appendRow() {
    int row = model_.insertRow();
    layoutChanged();
    return row;
}

void CGridCtrl::swapRows(int a, int b) {
    endEditingForChange();
    model_.swapRows(a, b);
    layoutChanged();
}

void CGridCtrl::deleteRow(int row) {
    endEditingForChange();
    if (row < 0 || row >= rowCount()) {
        return;
    }
    // The focus stays with its cell; when that goes, with its row number as long as there is such a row.
    GridPosition focus = focus_;
    focusCell(-1, -1);
    model_.deleteRow(row);
    layoutChanged();
    if (focus.row > row || focus.row >= rowCount()) {
        --focus.row;
    }
    // Rows of a deleted section's head may be in a collapsed one now.
    while (focus.row > 0 && !model_.isRowShown(focus.row)) {
        --focus.row;
    }
    if (focus) {
        focusCell(focus.row, focus.column);
    }
}

void CGridCtrl::deleteFocusedRow() {
    endEditingForChange();
    if (focus_.row < fixedRowCount() || focus_.row >= rowCount()) {
        return;
    }
    deleteRow(focus_.row);
    if (focus_) {
        notifyOwner(gridSelectionChanged, focus_.row, focus_.column);
    }
}

int CGridCtrl::addUniqueRow(const std::wstring& baseName, int nameColumn, int keyColumn, bool startEditing,
                            int insertPosition) {
    endEditingForChange();
    int row = model_.addUniqueRow(baseName, nameColumn, keyColumn, insertPosition);
    layoutChanged();
    focusCell(row, nameColumn);
    ensureVisible(row, nameColumn);
    if (startEditing) {
        editFocusedCell();
    }
    return row;
}

int CGridCtrl::addSectionRow(const std::wstring& title) {
    int row = model_.addSectionRow(title);
    layoutChanged();
    return row;
}

int CGridCtrl::addTreeRow() {
    int row = model_.addTreeRow();
    layoutChanged();
    return row;
}

void CGridCtrl::setExpanded(int row, bool expanded) {
    if (!model_.isSectionRow(row) || model_.isExpanded(row) == expanded) {
        return;
    }
    endEditingForChange();
    model_.setExpanded(row, expanded);
    layoutChanged();
    if (focus_ && !model_.isRowShown(focus_.row)) {
        focusCell(row, focus_.column);
    }
}

void CGridCtrl::sortByColumn(GridCompare compare, int column, bool ascending) {
    endEditingForChange();
    sortColumn_ = column;
    sortAscending_ = ascending;
    focusCell(-1, -1);
    model_.sort(compare, column, ascending);
    layoutChanged();
}

}  // namespace tessary
