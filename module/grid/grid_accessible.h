#pragma once

// The grid as screen readers see it: a table whose children are its rows, each with its cells. Rows are
// counted with the headers, columns with the hidden ones, which say that they cannot be seen; the cell in
// column n is child n + 1 of its row.

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "module/grid/grid_model.h"

namespace tessary {

class CGridCtrl;

// What the objects that screen readers hold share. They may outlive the grid: each of their calls first
// looks for the grid here, and answers CO_E_OBJNOTCONNECTED once it has gone.
class GridAccessible : public std::enable_shared_from_this<GridAccessible> {
public:
    explicit GridAccessible(CGridCtrl& grid) : grid_(&grid) {}
    GridAccessible(const GridAccessible&) = delete;
    GridAccessible& operator=(const GridAccessible&) = delete;

    // Of the grid, when its window goes or it is attached to another one.
    void disconnect() { grid_ = nullptr; }
    // Answers WM_GETOBJECT; 0 for objects that this is not about, which the window's class then answers.
    LRESULT getObject(WPARAM wParam, LPARAM lParam);
    // Tells screen readers which cell has the focus now. Nothing while the grid has not got the keyboard.
    void focusChanged() const;

    // ---- For the objects. Null when the grid is gone.
    CGridCtrl* grid() const { return grid_; }

    std::wstring tableName() const;
    std::wstring rowName(int row) const;
    std::wstring cellName(const GridPosition& cell) const;
    long cellRole(const GridPosition& cell) const;
    long cellState(const GridPosition& cell) const;
    long rowState(int row) const;
    // On the screen: what of it can be seen, or where it would be when nothing can. False when it is hidden.
    bool cellLocation(const GridPosition& cell, RECT& area) const;
    bool rowLocation(int row, RECT& area) const;
    bool isHeader(const GridPosition& cell) const;
    bool isSelected(const GridPosition& cell) const;
    std::vector<int> selectedRows() const;
    std::vector<int> selectedColumns(int row) const;
    // The grid's window or the editor in it has the keyboard.
    bool hasKeyboard() const;

    // What the cell's default action is called; null for none.
    const wchar_t* defaultAction(const GridPosition& cell) const;
    // False when there is none.
    bool doDefaultAction(const GridPosition& cell) const;
    // The focus goes there as if by the drafter. flags: of accSelect.
    HRESULT select(const GridPosition& cell, long flags) const;
    // As if the drafter had typed it. False when the cell or the owner refuses it.
    bool setValue(const GridPosition& cell, const std::wstring& text) const;

private:
    bool isShown(const GridPosition& cell) const;
    bool isSectionHead(const GridPosition& cell) const;
    bool canChange(const GridPosition& cell) const;
    bool isInView(const GridPosition& cell) const;
    // The part of the client area that shows the cell: headers stay, the other cells scroll beneath them.
    RECT viewOf(const GridPosition& cell) const;

    CGridCtrl* grid_;
};

}  // namespace tessary
