#include "module/grid/tree_column.h"

#include "module/grid/grid_model.h"

namespace tessary {

const CGridTreeCell* CTreeColumn::cellOf(const GridModel& model, int row) const {
    const CGridCellBase* cell = model.cell(row, column_);
    return cell && cell->kind() == GridColumnType::tree ? static_cast<const CGridTreeCell*>(cell) : nullptr;
}

bool CTreeColumn::isSectionRow(const GridModel& model, int row) const {
    const CGridTreeCell* cell = cellOf(model, row);
    return cell && cell->level() == headLevel;
}

CTreeColumn::RowState CTreeColumn::stateOf(const GridModel& model, int row, RowState above) const {
    const CGridTreeCell* cell = cellOf(model, row);
    if (cell && cell->level() == headLevel) {
        return cell->isExpanded() ? RowState::shown : RowState::collapsedHead;
    }
    return above == RowState::shown ? RowState::shown : RowState::underCollapsed;
}

bool CTreeColumn::isRowShown(const GridModel& model, int row) const {
    if (row < 0 || row >= model.rowCount()) {
        return false;
    }
    while (static_cast<int>(states_.size()) <= row) {
        RowState above = states_.empty() ? RowState::shown : states_.back();
        states_.push_back(stateOf(model, static_cast<int>(states_.size()), above));
    }
    return states_[static_cast<std::size_t>(row)] != RowState::underCollapsed;
}

void CTreeColumn::rowsChanged(int row) {
    if (row < static_cast<int>(states_.size())) {
        states_.resize(static_cast<std::size_t>(row < 0 ? 0 : row));
    }
}

}  // namespace tessary
