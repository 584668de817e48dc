#pragma once

// Shows the whole text of a cell that is too narrow for it, over the cell, while the mouse is there.

#include <windows.h>

#include <string>

#include "module/grid/grid_model.h"

namespace tessary {

class CGridCtrl;

class GridTitleTip {
public:
    static constexpr const wchar_t* className = L"ZTitleTip";

    explicit GridTitleTip(CGridCtrl& grid) : grid_(grid) {}
    ~GridTitleTip();
    GridTitleTip(const GridTitleTip&) = delete;
    GridTitleTip& operator=(const GridTitleTip&) = delete;

    // Every message of the grid's window, before the grid handles it.
    void observe(UINT message, LPARAM lParam);
    void hide();
    // Null while nothing is shown. The window's text is what is shown. The mouse reaches what lies beneath.
    HWND handle() const { return tip_; }

private:
    void mouseMoved(POINT point);
    // textArea: of the cell, in client coordinates.
    void show(const std::wstring& text, const RECT& textArea);

    CGridCtrl& grid_;
    HWND tip_ = nullptr;  // owned by the grid's dialog, which may destroy it
    GridPosition cell_;   // whose text is shown
};

}  // namespace tessary
