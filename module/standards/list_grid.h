#pragma once

// Grids as the customization dialogs use them: lists under one row of headers.

#include "module/grid/grid_control.h"

#include <initializer_list>
#include <string>

namespace tessary {

struct ListColumn {
    const wchar_t* header;  // also the column's name, unless it is empty
    bool visible = true;
};

// Takes over the control and makes it an empty list. autoSizeColumns fits the visible columns later.
void setUpList(CGridCtrl& grid, HWND dialog, int controlId, std::initializer_list<ListColumn> columns,
               int fixedColumns = 0);

// Takes all rows but the headers away.
void clearList(CGridCtrl& grid);

// Makes the last column as wide as its texts need and, where there is more room, as the grid has room. Of use
// when the grid's size changes; nothing before setUpList.
void fitLastColumn(CGridCtrl& grid);

// The number that the text begins with, 0 when it begins with none. What fits no 32-bit integer becomes the
// nearest one that does.
int leadingInteger(const std::wstring& text);

// Painting is suspended as long as this object lives.
class FillingList {
public:
    explicit FillingList(CGridCtrl& grid) : grid_(grid) { grid_.setRedraw(false); }
    ~FillingList() { grid_.setRedraw(true, true); }
    FillingList(const FillingList&) = delete;
    FillingList& operator=(const FillingList&) = delete;

private:
    CGridCtrl& grid_;
};

}  // namespace tessary
