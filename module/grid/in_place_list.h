#pragma once

// The drop-down over a cell of the grid.

#include "module/grid/in_place_editor.h"

#include <string>
#include <vector>

namespace tessary {

class CInPlaceListForGridCell;

// The edit field of an editable drop-down. Return, Escape and Tab reach it and not the dialog's buttons. It
// goes with the drop-down.
class CComboEditForGridCell final : public framework::Window {
public:
    explicit CComboEditForGridCell(CInPlaceListForGridCell& owner) : owner_(owner) {}

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    CInPlaceListForGridCell& owner_;
};

// The list that drops down.
class DropDownListForGridCell final : public framework::Window {
public:
    // The click that opened the editor is not over yet: its release is none of the list's.
    void ignoreRelease() { ignoresRelease_ = true; }
    // height: of the part that shows rows, in pixels, however many choices there are.
    void keepOpenHeight(HWND combo, int height) {
        combo_ = combo;
        height_ = height;
    }

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void keepHeight(WINDOWPOS& place) const;

    bool ignoresRelease_ = false;
    HWND combo_ = nullptr;
    int height_ = 0;
};

// An editable drop-down ends when its field loses the focus, one of choices only when it loses the focus
// itself or its list is closed without a choice. Owners ask the grid for it again after anything that handles
// messages.
class CInPlaceListForGridCell final : public InPlaceEditor {
public:
    // Shows the combo box over the cell with its list open and gives it the focus. area: of the cell, in
    // client coordinates of the grid. style: CBS_DROPDOWN or CBS_DROPDOWNLIST. The initial text need not be
    // among the choices. firstKey: what started the editing, as for CInPlaceEdit. Null when the window could
    // not be made or did not keep the focus.
    static CInPlaceListForGridCell* open(CGridCtrl& grid, const RECT& area, DWORD style, int controlId,
                                         int row, int column, const std::vector<std::wstring>& choices,
                                         const std::wstring& initialText, UINT firstKey);
    // The editing ends with this text, whatever is in the combo box: for owners that answer a pick with a
    // dialog of their own.
    void setResultText(const std::wstring& text);

    HWND field() const override;
    // A notification of the combo box to its parent.
    void notified(int code);
    // Of the cell's text, when it is not among the choices of a list without a field.
    void draw(const DRAWITEMSTRUCT& item) const;

protected:
    std::wstring result() override;
    void closeWindow() override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    friend class CComboEditForGridCell;
    CInPlaceListForGridCell(CGridCtrl& grid, DWORD style, int row, int column,
                            const std::vector<std::wstring>& choices, const std::wstring& initialText,
                            UINT firstKey);

    bool isChoiceOnly() const { return (style_ & 3) == CBS_DROPDOWNLIST; }
    RECT placeOver(const RECT& cell, const RECT& client) const;
    void fill(HFONT font, int cellHeight);
    void dropDown();
    int measuredListWidth() const;
    void showText();
    bool isDropped() const;
    bool isPart(HWND window) const;
    LRESULT onKeyDown(WPARAM key, LPARAM data);
    LRESULT onKeyUp(WPARAM key, LPARAM data);
    LRESULT onKillFocus(HWND next, LPARAM lParam);
    LRESULT onGetText(UINT message, WPARAM capacity, LPARAM buffer);
    void picked();

    CComboEditForGridCell edit_;
    DropDownListForGridCell list_;
    const DWORD style_;
    const std::vector<std::wstring> choices_;
    const int initialChoice_;  // -1: the text is none
    int rows_ = 0;             // of the list that are shown
    int listWidth_ = 0;
    bool releasePending_;     // the key that opened the editor is still down
    bool cancelled_ = false;  // the list was closed without a choice
    bool hasResultText_ = false;
    std::wstring resultText_;
    bool inPick_ = false;  // a pick is being reported: the field's loss of focus does not end the editing
    bool picked_ = false;
};

}  // namespace tessary
