#pragma once

// The text editor over a cell of the grid.

#include "framework/window.h"

#include <string>

namespace tessary {

class CGridCtrl;

// Ends when it loses the focus: sends its end-edit notification to the grid and closes. Deletes itself with
// its window.
class CInPlaceEdit final : public framework::Window {
public:
    // Shows the editor and gives it the focus. firstKey: what started the editing, VK_LBUTTON for a click.
    // Null when the window could not be made.
    static CInPlaceEdit* open(CGridCtrl& grid, const RECT& area, DWORD style, int controlId, int row,
                              int column, const std::wstring& initialText, UINT firstKey);
    void endEdit();

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;

private:
    explicit CInPlaceEdit(CGridCtrl& grid) : grid_(grid) {}

    CGridCtrl& grid_;
    std::wstring initText_;
    int row_ = -1;
    int column_ = -1;
    UINT lastChar_ = 0;          // the key that ended the editing; 0: none did
    bool exitOnArrows_ = false;  // not when a click opened the editor: arrows then move the caret
    RECT rect_{};
};

}  // namespace tessary
