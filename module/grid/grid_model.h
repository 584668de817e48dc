#pragma once

// The matrix of a grid control, without a window.

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "module/grid/grid_cell.h"
#include "module/grid/tree_column.h"

namespace tessary {

struct GridPosition {
    int row = -1;
    int column = -1;
    bool operator==(const GridPosition&) const = default;
    explicit operator bool() const { return row >= 0 && column >= 0; }
};

// Negative: a comes before b; 0: they are equal. Either may be null, for a missing cell.
using GridCompare = int (*)(const CGridCellBase* a, const CGridCellBase* b);

// By the character codes of the texts. A missing cell is equal to any.
int compareGridTexts(const CGridCellBase* a, const CGridCellBase* b);

class GridModel {
public:
    int rowCount() const { return static_cast<int>(rows_.size()); }
    int columnCount() const { return static_cast<int>(columns_.size()); }
    // The fixed ones that are there: fixed counts outlive the emptying of the matrix.
    int fixedRowCount() const { return std::min(fixedRows_, rowCount()); }
    int fixedColumnCount() const { return std::min(fixedColumns_, columnCount()); }
    // New cells are empty, of their column's kind; header cells are plain text, whatever their column is. A
    // negative count is 0.
    void setRowCount(int count);
    void setColumnCount(int count);
    void setFixedRowCount(int count);
    void setFixedColumnCount(int count);

    // Null outside the matrix.
    CGridCellBase* cell(int row, int column);
    const CGridCellBase* cell(int row, int column) const;
    // Null makes an empty plain cell. Nothing outside the matrix.
    void setCell(int row, int column, std::unique_ptr<CGridCellBase> cell);
    bool isFixed(int row, int column) const { return row < fixedRows_ || column < fixedColumns_; }

    // Empty outside the matrix; setText does nothing there.
    const std::wstring& text(int row, int column) const;
    void setText(int row, int column, std::wstring_view text);
    // The text as other code reads it: "-1" and "0" in a check-box column, the choice's text in a lookedUp
    // one.
    std::wstring valueText(int row, int column) const;
    // What is drawn and edited.
    std::wstring_view shownText(int row, int column) const;
    void setShownText(int row, int column, std::wstring_view text);

    // Text outside the matrix.
    GridColumnType columnType(int column) const;
    // The cells that are there become of that kind and keep their texts. A grid has one tree column; another
    // one that takes its place ends its sections.
    void setColumnType(int column, GridColumnType type);
    // Column names, case-sensitive: -1 for an unknown one. A name given twice is the later column's.
    void setColumnName(int column, const std::wstring& name);
    int columnNamed(const std::wstring& name) const;
    // In pixels; 0 hides the column. A negative width is 0, one beyond widestColumn is that.
    static constexpr int widestColumn = 100'000;  // sums over thousands of columns stay in range
    int columnWidth(int column) const;
    void setColumnWidth(int column, int width);

    // The column's list, for cells made from now on; applyColumnChoices gives it to those that are there.
    void setColumnChoicesFromText(int column, std::wstring_view text);
    void setColumnChoices(int column, std::vector<std::wstring> texts);
    void setColumnChoiceData(int column, std::vector<int> data);
    // Cells of a text column become editable drop-downs; check boxes and tree cells have no choices.
    void applyColumnChoices(int column);
    // The text and the state stay. An empty list makes a plain cell.
    void setCellChoices(int row, int column, std::vector<std::wstring> texts, bool editable);
    // The text and the state stay.
    void makePlainCell(int row, int column);
    void setReadOnly(int row, int column, bool readOnly);

    // position: before which row; -1 appends. Headers stay first. The new row's number.
    int insertRow(int position = -1);
    void deleteRow(int row);
    void swapRows(int a, int b);
    // Orders the rows that are not fixed. Equal rows come in the order that a quicksort with the middle row
    // as its pivot leaves them in; see the source. When the compare function throws, nothing is moved.
    void sort(GridCompare compare, int column, bool ascending);

    // Copies the last row's cells from the name column on into a new row, with "-1" as its key and a name
    // that no row has yet. A grid of headers alone gives the texts of the last header; of these "To Scale"
    // and "Can Rotate" stand over check boxes and become "0". The new row's number.
    int addUniqueRow(const std::wstring& baseName, int nameColumn, int keyColumn, int position = -1);

    // Sections (module/grid/tree_column.h). Without a tree column, the first column becomes it.
    // The head of a section, with the title in columns 0 and 2; all its cells are read-only.
    int addSectionRow(const std::wstring& title);
    // At the end, hence in the last section.
    int addTreeRow();
    bool isSectionRow(int row) const;
    bool isExpanded(int row) const;  // true for rows that are no head
    // Rows under a collapsed section are not shown. False outside the matrix.
    bool isRowShown(int row) const;
    void setExpanded(int row, bool expanded);

private:
    static constexpr int newColumnWidth = 80;

    struct Column {
        GridColumnType type = GridColumnType::text;
        int width = newColumnWidth;
        GridChoicesPointer choices;  // null: none
    };
    using Row = std::vector<std::unique_ptr<CGridCellBase>>;

    bool hasColumn(int column) const { return column >= 0 && column < columnCount(); }
    Column& columnAt(int column) { return columns_[static_cast<std::size_t>(column)]; }
    const Column& columnAt(int column) const { return columns_[static_cast<std::size_t>(column)]; }
    std::unique_ptr<CGridCellBase>& cellAt(int row, int column) {
        return rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    }

    // Tree cells may stand in a fixed column.
    bool isHeader(int row, int column) const;
    std::unique_ptr<CGridCellBase> newCell(int row, int column) const;
    Row newRow(int row) const;
    // A cell of the kind that its place wants takes the cell's place, with its text and state.
    void remakeCell(int row, int column);
    void replaceCell(int row, int column, std::unique_ptr<CGridCellBase> cell);
    std::wstring uniqueName(const std::wstring& baseName, int nameColumn) const;
    void ensureTreeColumn();
    void rowsChanged(int fromRow);

    std::vector<Row> rows_;
    std::vector<Column> columns_;
    std::map<std::wstring, int> names_;
    int fixedRows_ = 0;
    int fixedColumns_ = 0;
    std::optional<CTreeColumn> tree_;
};

}  // namespace tessary
