#pragma once

// What the editors over a cell of the grid have in common: which keys end them, and how their end is
// reported.

#include "framework/window.h"

#include <memory>
#include <string>

namespace tessary {

class CGridCtrl;

// Control id of the editor in its grid.
constexpr int inPlaceEditorId = 8;

// A child window of the grid that holds itself until its window is destroyed. Owners of the grid may do
// anything while they are told of an end: end the editing again, show a message box, which takes the focus,
// edit the same cell again, change or destroy the grid.
class InPlaceEditor : public framework::Window, public std::enable_shared_from_this<InPlaceEditor> {
public:
    // Reports the end with the editor's text to the grid and closes the editor. Does nothing the second time,
    // nor while the end of any editor of the program is being reported: a loss of focus to a message box
    // about the entered text is no end.
    void endEdit();
    // Closes the editor without a report.
    void discard();
    // Something was entered that the cell does not show.
    bool isChanged() { return result() != initText_; }

    int row() const { return row_; }
    int column() const { return column_; }
    bool isEnded() const { return ended_; }
    // The window that the drafter types into: this one, or a part of it.
    virtual HWND field() const { return handle(); }

protected:
    InPlaceEditor(CGridCtrl& grid, int row, int column, const std::wstring& initialText, UINT firstKey);

    // The text that the editing ends with.
    virtual std::wstring result() = 0;
    // When the end has been reported.
    virtual void closeWindow() = 0;

    // Keeps the object until its window is gone.
    void holdItself() { self_ = shared_from_this(); }
    // True when that key leads out of the editor, to another cell.
    bool leavesBy(UINT key) const;
    // Gives the focus back to the grid, which ends the editing.
    void leave(UINT key);
    // Gives the focus to the grid when the editor has it: the window is about to go.
    void handFocusBack();
    void onDestroyed() override;

    // Null when the grid is gone.
    CGridCtrl* grid() const;
    HWND gridWindow() const { return GetParent(handle()); }

    const std::wstring initText_;
    const int row_;
    const int column_;
    const UINT firstKey_;      // what started the editing: a key, a character or VK_LBUTTON for a click
    UINT lastChar_ = 0;        // the key that ended it; 0: none did
    const bool exitOnArrows_;  // not when a click opened the editor: arrows then move the caret

private:
    void report();

    std::weak_ptr<CGridCtrl*> grid_;
    std::shared_ptr<InPlaceEditor> self_;
    bool ended_ = false;
};

// Places the caret of a text field as the key that started the editing asks for, and has a character typed.
// spaceAndTabSelect: these two select the text and are not typed, as the arrows do.
void startTyping(HWND field, UINT firstKey, bool spaceAndTabSelect);
// Handles a character as if it had just been typed.
void postCharacter(HWND field, UINT character);
// When a key was pressed with Alt: takes its character away, which would reach the dialog's mnemonics before
// the field.
void dropSystemCharacter(HWND field);

}  // namespace tessary
