#include "module/grid/grid_model.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

namespace tessary {
namespace {

const std::wstring noText;

}  // namespace

bool GridModel::isHeader(int row, int column) const {
    return row < fixedRows_ || (column < fixedColumns_ && columnType(column) != GridColumnType::tree);
}

std::unique_ptr<CGridCellBase> GridModel::newCell(int row, int column) const {
    if (isHeader(row, column)) {
        return std::make_unique<CGridCell>();
    }
    const Column& of = columnAt(column);
    switch (of.type) {
        case GridColumnType::checkBox: return std::make_unique<CGridBtnCell>();
        case GridColumnType::editableDropDown: return std::make_unique<CGridCellCombo>(of.choices, true);
        case GridColumnType::choiceDropDown: return std::make_unique<CGridCellCombo>(of.choices, false);
        case GridColumnType::lookedUp: return std::make_unique<CGridCellCombo>(of.choices, false, true);
        case GridColumnType::tree: return std::make_unique<CGridTreeCell>(CTreeColumn::rowLevel);
        case GridColumnType::text: break;
    }
    return std::make_unique<CGridCell>();
}

GridModel::Row GridModel::newRow(int row) const {
    Row cells;
    cells.reserve(columns_.size());
    for (int column = 0; column < columnCount(); ++column) {
        cells.push_back(newCell(row, column));
    }
    return cells;
}

void GridModel::replaceCell(int row, int column, std::unique_ptr<CGridCellBase> cell) {
    std::unique_ptr<CGridCellBase>& place = cellAt(row, column);
    cell->setState(place->state());
    // An empty text would check a box.
    if (!place->text().empty()) {
        cell->setText(place->text());
    }
    place = std::move(cell);
    rowsChanged(row);
}

void GridModel::remakeCell(int row, int column) {
    // The text of a box is not a header's.
    if (isHeader(row, column) && cellAt(row, column)->kind() == GridColumnType::checkBox) {
        setCell(row, column, newCell(row, column));
    } else {
        replaceCell(row, column, newCell(row, column));
    }
}

void GridModel::rowsChanged(int fromRow) {
    if (tree_) {
        tree_->rowsChanged(fromRow);
    }
}

void GridModel::setRowCount(int count) {
    count = std::max(count, 0);
    if (count < rowCount()) {
        rows_.resize(static_cast<std::size_t>(count));
        rowsChanged(count);
    }
    rows_.reserve(static_cast<std::size_t>(count));
    while (rowCount() < count) {
        rows_.push_back(newRow(rowCount()));
    }
}

void GridModel::setColumnCount(int count) {
    count = std::max(count, 0);
    int before = columnCount();
    columns_.resize(static_cast<std::size_t>(count));
    for (int row = 0; row < rowCount(); ++row) {
        Row& cells = rows_[static_cast<std::size_t>(row)];
        cells.resize(static_cast<std::size_t>(std::min(before, count)));
        cells.reserve(static_cast<std::size_t>(count));
        for (int column = before; column < count; ++column) {
            cells.push_back(newCell(row, column));
        }
    }
    std::erase_if(names_, [&](const auto& name) { return name.second >= count; });
    if (tree_ && tree_->column() >= count) {
        tree_.reset();
    }
}

void GridModel::setFixedRowCount(int count) {
    int before = std::exchange(fixedRows_, std::max(count, 0));
    int end = std::min(std::max(before, fixedRows_), rowCount());
    for (int row = std::min(before, fixedRows_); row < end; ++row) {
        for (int column = 0; column < columnCount(); ++column) {
            remakeCell(row, column);
        }
    }
    rowsChanged(0);
}

void GridModel::setFixedColumnCount(int count) {
    int before = std::exchange(fixedColumns_, std::max(count, 0));
    int end = std::min(std::max(before, fixedColumns_), columnCount());
    for (int column = std::min(before, fixedColumns_); column < end; ++column) {
        for (int row = fixedRowCount(); row < rowCount(); ++row) {
            if (columnType(column) != GridColumnType::tree) {
                remakeCell(row, column);
            }
        }
    }
}

CGridCellBase* GridModel::cell(int row, int column) {
    return const_cast<CGridCellBase*>(std::as_const(*this).cell(row, column));
}

const CGridCellBase* GridModel::cell(int row, int column) const {
    if (row < 0 || row >= rowCount() || !hasColumn(column)) {
        return nullptr;
    }
    return rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)].get();
}

void GridModel::setCell(int row, int column, std::unique_ptr<CGridCellBase> newOne) {
    if (cell(row, column)) {
        cellAt(row, column) = newOne ? std::move(newOne) : std::make_unique<CGridCell>();
        rowsChanged(row);
    }
}

const std::wstring& GridModel::text(int row, int column) const {
    const CGridCellBase* found = cell(row, column);
    return found ? found->text() : noText;
}

void GridModel::setText(int row, int column, std::wstring_view text) {
    if (CGridCellBase* found = cell(row, column)) {
        found->setText(text);
    }
}

std::wstring GridModel::valueText(int row, int column) const {
    const CGridCellBase* found = cell(row, column);
    if (!found) {
        return {};
    }
    if (found->kind() == GridColumnType::checkBox) {
        return static_cast<const CGridBtnCell*>(found)->isChecked() ? L"-1" : L"0";
    }
    return found->shownText();
}

std::wstring_view GridModel::shownText(int row, int column) const {
    const CGridCellBase* found = cell(row, column);
    return found ? found->shownText() : noText;
}

void GridModel::setShownText(int row, int column, std::wstring_view text) {
    if (CGridCellBase* found = cell(row, column)) {
        found->setShownText(text);
    }
}

int GridModel::insertRow(int position) {
    int row = position < 0 ? rowCount() : std::clamp(position, fixedRowCount(), rowCount());
    rows_.insert(rows_.begin() + row, newRow(row));
    if (row < rowCount() - 1) {
        rowsChanged(row);
    }
    return row;
}

void GridModel::deleteRow(int row) {
    if (row < 0 || row >= rowCount()) {
        return;
    }
    rows_.erase(rows_.begin() + row);
    // The row below a deleted header does not become one.
    if (row < fixedRows_) {
        --fixedRows_;
    }
    rowsChanged(row);
}

void GridModel::swapRows(int a, int b) {
    if (a < 0 || b < 0 || a >= rowCount() || b >= rowCount()) {
        return;
    }
    std::swap(rows_[static_cast<std::size_t>(a)], rows_[static_cast<std::size_t>(b)]);
    rowsChanged(std::min(a, b));
}

std::wstring GridModel::uniqueName(const std::wstring& baseName, int nameColumn) const {
    std::unordered_set<std::wstring_view> taken;
    for (int row = 0; row < rowCount(); ++row) {
        taken.insert(text(row, nameColumn));
    }
    std::wstring name = baseName;
    for (int counter = 1; taken.contains(name); ++counter) {
        name = baseName + L" (" + std::to_wstring(counter) + L")";
    }
    return name;
}

int GridModel::addUniqueRow(const std::wstring& baseName, int nameColumn, int keyColumn, int position) {
    int row = insertRow(position);
    int last = row == rowCount() - 1 ? row - 1 : rowCount() - 1;
    for (int column = std::max(nameColumn, 0); last >= 0 && column < columnCount(); ++column) {
        if (isHeader(last, column) == isHeader(row, column)) {
            setCell(row, column, cell(last, column)->clone());
        } else {
            setText(row, column, text(last, column));
        }
        if (text(last, column) == L"To Scale" || text(last, column) == L"Can Rotate") {
            setText(row, column, L"0");
        }
    }
    setText(row, keyColumn, L"-1");
    setText(row, nameColumn, uniqueName(baseName, nameColumn));
    return row;
}

void GridModel::ensureTreeColumn() {
    if (!tree_ && columnCount() > 0) {
        setColumnType(0, GridColumnType::tree);
    }
}

int GridModel::addSectionRow(const std::wstring& title) {
    int row = addTreeRow();
    if (tree_) {
        setCell(row, tree_->column(), std::make_unique<CGridTreeCell>(CTreeColumn::headLevel));
    }
    setText(row, 0, title);
    setText(row, 2, title);
    for (int column = 0; column < columnCount(); ++column) {
        setReadOnly(row, column, true);
    }
    return row;
}

int GridModel::addTreeRow() {
    ensureTreeColumn();
    return insertRow();
}

bool GridModel::isSectionRow(int row) const {
    return tree_ && tree_->isSectionRow(*this, row);
}

bool GridModel::isExpanded(int row) const {
    return !isSectionRow(row) || static_cast<const CGridTreeCell*>(cell(row, tree_->column()))->isExpanded();
}

bool GridModel::isRowShown(int row) const {
    return tree_ ? tree_->isRowShown(*this, row) : row >= 0 && row < rowCount();
}

void GridModel::setExpanded(int row, bool expanded) {
    if (isSectionRow(row)) {
        static_cast<CGridTreeCell*>(cell(row, tree_->column()))->setExpanded(expanded);
        rowsChanged(row);
    }
}

}  // namespace tessary
