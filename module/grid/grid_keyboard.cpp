// The keyboard.

#include "module/grid/grid_control.h"

#include <algorithm>
#include <cwctype>

namespace tessary {

namespace {

bool isHeld(int key) {
    return GetKeyState(key) < 0;
}

// Control with Alt types characters on many keyboards.
bool isControlHeld() {
    return isHeld(VK_CONTROL) && !isHeld(VK_MENU);
}

bool leadsSomewhere(UINT key) {
    return key >= VK_PRIOR && key <= VK_DOWN;
}

// First keys of an edit that select the old text instead of being typed, as they are those of movements too.
bool isTakenForMovement(wchar_t character) {
    return character >= VK_PRIOR && character <= VK_DOWN;
}

}  // namespace

// Tab leaves the grid at its ends, at once where rows are selected whole, and always with Control. Return is
// the dialog's where it opens no editor.
bool CGridCtrl::wantsKey(const MSG& message) const {
    if (message.message == WM_CHAR && message.wParam != VK_TAB && message.wParam != VK_ESCAPE &&
        message.wParam != VK_RETURN)
        return true;
    switch (message.wParam) {
        case VK_TAB: return !listMode_ && !isControlHeld() && nextInReadingOrder(isHeld(VK_SHIFT) ? -1 : 1);
        case VK_RETURN: return isDataCell(focus_) && canEdit(focus_.row, focus_.column);
        case VK_ESCAPE: return press_.kind != Press::Kind::none;
        default: return false;
    }
}

LRESULT CGridCtrl::onDialogCode(WPARAM, LPARAM lParam) {
    LRESULT code = DLGC_WANTARROWS | DLGC_WANTCHARS;
    if (const auto* const message = reinterpret_cast<const MSG*>(lParam); message && wantsKey(*message))
        code |= DLGC_WANTMESSAGE;
    return code;
}

bool CGridCtrl::controlKey(UINT key) {
    if (!isControlHeld())
        return false;
    switch (key) {
        case 'A': selectAll(); return true;
        case 'C':
        case VK_INSERT: copySelection(); return true;
        case 'X': cutSelection(); return true;
        case 'V': pasteAtFocus(); return true;
        default: return false;
    }
}

// In the rows of a tree: plus and minus, and Left and Right where they are not needed to move.
bool CGridCtrl::treeKey(UINT key) {
    if (!isDataCell(focus_) || !model_.isSectionRow(focus_.row))
        return false;
    const auto* const head = dynamic_cast<const CGridTreeCell*>(cell(focus_.row, focus_.column));
    if (key == VK_ADD || (head && key == VK_RIGHT && !head->isExpanded()))
        expandByDrafter(focus_.row, true);
    else if (key == VK_SUBTRACT || (head && key == VK_LEFT && head->isExpanded()))
        expandByDrafter(focus_.row, false);
    else
        return false;
    return true;
}

bool CGridCtrl::editKey(UINT key) {
    if (!isDataCell(focus_) || isControlHeld())
        return false;
    if (key == VK_F2)
        startEditing(focus_.row, focus_.column, VK_RETURN);  // as Return: the caret at the end
    else if (key == VK_DELETE && isHeld(VK_SHIFT))
        cutSelection();
    else if (key == VK_DELETE)
        clearSelectedCells();
    else
        return false;
    return true;
}

// As if the drafter had emptied one after the other: the owner may refuse each. In list mode the cells are
// only shown.
void CGridCtrl::clearSelectedCells() {
    if (listMode_)
        return;
    const auto [first, last] = selectedBlock();
    const std::weak_ptr<CGridCtrl*> life = self_;
    for (int row = first.row; row <= last.row && first; ++row) {
        for (int column = first.column; column <= last.column; ++column) {
            if (life.expired() || !handle())
                return;
            if (isShownCell({row, column}) && !text(row, column).empty() &&
                cell(row, column)->kind() != GridColumnType::checkBox)
                enterText(row, column, {});
        }
    }
}

LRESULT CGridCtrl::onKeyDown(WPARAM wParam, LPARAM lParam) {
    const auto key = static_cast<UINT>(wParam);
    if (key == VK_ESCAPE && press_.kind != Press::Kind::none) {
        cancelPress();
        return 0;
    }
    if (controlKey(key) || treeKey(key) || editKey(key))
        return 0;
    if (key == VK_INSERT && isHeld(VK_SHIFT)) {
        pasteAtFocus();
        return 0;
    }
    GridPosition to;
    if (key == VK_TAB)
        to = nextInReadingOrder(isHeld(VK_SHIFT) ? -1 : 1);
    else if (leadsSomewhere(key))
        to = destination(key, isControlHeld());
    else
        return defaultHandling(WM_KEYDOWN, wParam, lParam);
    if (to)
        moveFocus(to, key != VK_TAB && isHeld(VK_SHIFT));
    return 0;
}

LRESULT CGridCtrl::onChar(WPARAM wParam, LPARAM) {
    const auto character = static_cast<wchar_t>(wParam);
    if (passOnToEditor(character) || !isDataCell(focus_))
        return 0;
    if (character < L' ' && character != VK_BACK && character != VK_RETURN)
        return 0;
    const GridPosition at = focus_;
    const std::weak_ptr<CGridCtrl*> life = self_;
    const bool isCheckBox = cell(at.row, at.column)->kind() == GridColumnType::checkBox;
    if (model_.isSectionRow(at.row) && (character == L'+' || character == L'-'))
        expandByDrafter(at.row, character == L'+');
    else if (isCheckBox && character == L' ')
        toggleCheckBox(at.row, at.column);
    else if (!isCheckBox)
        startEditing(at.row, at.column, character);
    if (!life.expired() && isTakenForMovement(character) && isEditing())
        PostMessageW(GetFocus(), WM_CHAR, wParam, 1);
    return 0;
}

}  // namespace tessary
