#pragma once

// The matrix of a grid control, without a window.

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "module/grid/grid_cell.h"

namespace tessary {

struct GridPosition {
    int row = -1;
    int column = -1;
    bool operator==(const GridPosition&) const = default;
    explicit operator bool() const { return row >= 0 && column >= 0; }
};

// Negative: a comes before b. Either may be null, for a missing cell.
using GridCompare = int (*)(const CGridCellBase* a, const CGridCellBase* b);

// By the character codes of the texts. A missing cell is equal to any.
int compareGridTexts(const CGridCellBase* a, const CGridCellBase* b);

class GridModel {
public:
    int rowCount() const { return static_cast<int>(rows_.size()); }
    int columnCount() const { return static_cast<int>(columns_.size()); }
    int fixedRowCount() const { return fixedRows_; }
    int fixedColumnCount() const { return fixedColumns_; }
    // New cells are empty, of their column's kind. A negative count is 0.
    void setRowCount(int count);
    void setColumnCount(int count);
    void setFixedRowCount(int count);
    void setFixedColumnCount(int count);

    // Null outside the matrix.
    CGridCellBase* cell(int row, int column);
    const CGridCellBase* cell(int row, int column) const;
    void setCell(int row, int column, std::unique_ptr<CGridCellBase> cell);
    bool isFixed(int row, int column) const { return row < fixedRows_ || column < fixedColumns_; }

    // Empty outside the matrix; setText does nothing there.
    const std::wstring& text(int row, int column) const;
    void setText(int row, int column, std::wstring_view text);
    // The text as other code reads it: "-1" and "0" in a check-box column, the choice's text in a lookedUp
    // one.
    std::wstring valueText(int row, int column) const;
    // What is drawn.
    std::wstring_view shownText(int row, int column) const;

    GridColumnType columnType(int column) const;
    void setColumnType(int column, GridColumnType type);
    // Column names: -1 for an unknown one.
    void setColumnName(int column, const std::wstring& name);
    int columnNamed(const std::wstring& name) const;
    // In pixels; 0 hides the column.
    int columnWidth(int column) const;
    void setColumnWidth(int column, int width);

    // The column's list, for cells made from now on; applyColumnChoices gives it to those that are there.
    void setColumnChoicesFromText(int column, std::wstring_view text);
    void setColumnChoices(int column, std::vector<std::wstring> texts);
    void setColumnChoiceData(int column, std::vector<int> data);
    void applyColumnChoices(int column);
    void setCellChoices(int row, int column, std::vector<std::wstring> texts, bool editable);
    void makePlainCell(int row, int column);
    void setReadOnly(int row, int column, bool readOnly);

    // position: before which row; -1 appends. The new row's number.
    int insertRow(int position = -1);
    void deleteRow(int row);
    void swapRows(int a, int b);
    // Quicksort of the rows that are not fixed; see the source for its exchange order, which callers can see.
    void sort(GridCompare compare, int column, bool ascending);

    // Copies the row before into a new one, under a name that no row has yet. The new row's number.
    int addUniqueRow(const std::wstring& baseName, int nameColumn, int keyColumn, int position = -1);

    // Sections (module/grid/tree_column.h).
    int addSectionRow(const std::wstring& title);
    int addTreeRow();
    bool isSectionRow(int row) const;
    // Rows under a collapsed section are not shown.
    bool isRowShown(int row) const;
    void setExpanded(int row, bool expanded);

private:
    struct Column {
        GridColumnType type = GridColumnType::text;
        int width = 0;
        GridChoicesPointer choices;  // null: none
    };
    using Row = std::vector<std::unique_ptr<CGridCellBase>>;

    std::unique_ptr<CGridCellBase> newCell(int column) const;

    std::vector<Row> rows_;
    std::vector<Column> columns_;
    std::map<std::wstring, int> names_;
    int fixedRows_ = 0;
    int fixedColumns_ = 0;
};

}  // namespace tessary
