#include "module/standards/list_grid.h"

#include <cwchar>

namespace tessary {

namespace {

// In pixels, until the columns are fitted to what they show.
constexpr int firstWidth = 100;

}  // namespace

void setUpList(CGridCtrl& grid, HWND dialog, int controlId, std::initializer_list<ListColumn> columns,
               int fixedColumns) {
    grid.attachToControl(dialog, controlId);
    grid.setColumnCount(static_cast<int>(columns.size()));
    grid.setRowCount(1);
    grid.setFixedRowCount(1);
    grid.setFixedColumnCount(fixedColumns);
    int column = 0;
    for (const ListColumn& layout : columns) {
        grid.setText(0, column, layout.header);
        if (*layout.header) {
            grid.setColumnName(column, layout.header);
        }
        grid.setColumnWidth(column, layout.visible ? firstWidth : 0);
        ++column;
    }
}

void clearList(CGridCtrl& grid) {
    grid.setRowCount(1);
}

void fitLastColumn(CGridCtrl& grid) {
    if (grid.handle()) {
        grid.autoSizeColumn(grid.columnCount() - 1);
        grid.extendLastColumn();
    }
}

int leadingInteger(const std::wstring& text) {
    // A long has 32 bits on this system, and what is too large for it becomes the nearest one.
    return std::wcstol(text.c_str(), nullptr, 10);
}

}  // namespace tessary
