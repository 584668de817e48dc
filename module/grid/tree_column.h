#pragma once

// The column of a grid that groups its rows in sections: the rows that follow a section's head, up to the
// next head, are its own and are not shown while it is collapsed.

#include <cstdint>
#include <vector>

namespace tessary {

class CGridTreeCell;
class GridModel;

class CTreeColumn {
public:
    static constexpr int headLevel = 1;
    static constexpr int rowLevel = 2;

    explicit CTreeColumn(int column) : column_(column) {}
    int column() const { return column_; }

    bool isSectionRow(const GridModel& model, int row) const;
    // Constant time a row, after changes as well: what is above a changed row is remembered.
    bool isRowShown(const GridModel& model, int row) const;
    // This row and those below are others than before.
    void rowsChanged(int row);

private:
    enum class RowState : std::uint8_t { shown, underCollapsed, collapsedHead };

    const CGridTreeCell* cellOf(const GridModel& model, int row) const;
    RowState stateOf(const GridModel& model, int row, RowState above) const;

    int column_;
    mutable std::vector<RowState> states_;  // of the rows from the first, as far as somebody asked
};

}  // namespace tessary
