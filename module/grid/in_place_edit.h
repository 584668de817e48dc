#pragma once

// The text editor over a cell of the grid.

#include "module/grid/in_place_editor.h"

#include <string>

namespace tessary {

// Ends when it loses the focus.
class CInPlaceEdit final : public InPlaceEditor {
public:
    // Shows the editor and gives it the focus. area: of the cell, in client coordinates of the grid.
    // firstKey: what started the editing, a key, a character or VK_LBUTTON for a click; the keys 33 to 40 are
    // those of the keyboard and not the characters with these codes. Null when the window could not be made
    // or did not keep the focus.
    static CInPlaceEdit* open(CGridCtrl& grid, const RECT& area, DWORD style, int controlId, int row,
                              int column, const std::wstring& initialText, UINT firstKey);

protected:
    std::wstring result() override { return text(); }
    void closeWindow() override;
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    using InPlaceEditor::InPlaceEditor;
    LRESULT onChar(WPARAM character, LPARAM data);
    void placeText(int leftMargin);
    void paintFrame() const;
    void fitWidth();

    RECT rect_{};         // of the cell, as far as the grid shows it
    int leftMargin_ = 0;  // pixels between its left edge and the text
};

}  // namespace tessary
