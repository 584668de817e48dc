#pragma once

// The drop-down over a cell of the grid.

#include "framework/window.h"

#include <string>
#include <vector>

namespace tessary {

class CGridCtrl;
class CInPlaceListForGridCell;

// The edit field of an editable drop-down. Return, Escape and Tab reach it and not the dialog's buttons.
class CComboEditForGridCell final : public framework::Window {
public:
    explicit CComboEditForGridCell(CInPlaceListForGridCell& owner) : owner_(owner) {}

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    CInPlaceListForGridCell& owner_;
};

// Deletes itself with its window.
class CInPlaceListForGridCell final : public framework::Window {
public:
    // Shows the combo box over the cell with its list open and gives it the focus. style: CBS_DROPDOWN or
    // CBS_DROPDOWNLIST. The choices and the initial text are the cell's. Null when the window could not be
    // made.
    static CInPlaceListForGridCell* open(CGridCtrl& grid, const RECT& area, DWORD style, int controlId,
                                         int row, int column, const std::vector<std::wstring>& choices,
                                         const std::wstring& initialText, UINT firstKey);
    void endEdit();
    // The editing ends with this text, whatever is in the combo box: for owners that answer a pick with a
    // dialog of their own.
    void setResultText(const std::wstring& text);

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;

private:
    friend class CComboEditForGridCell;
    explicit CInPlaceListForGridCell(CGridCtrl& grid) : edit_(*this), grid_(grid) {}

    CComboEditForGridCell edit_;
    CGridCtrl& grid_;
    int rows_ = 0;  // of the list that are shown
    std::wstring initText_;
    int row_ = -1;
    int column_ = -1;
    UINT lastChar_ = 0;
    bool exitOnArrows_ = false;
    bool cancelled_ = false;  // the list was closed without a choice
    bool hasResultText_ = false;
    std::wstring resultText_;
    bool inPick_ =
        false;  // a picked entry is being reported: the field's loss of focus does not end the editing
    bool picked_ = false;
};

}  // namespace tessary
