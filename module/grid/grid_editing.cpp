// Editing of cells: when an editor opens, and what its end does. Every notification lets the owner change or
// destroy the grid, so that what was known before is looked at again afterwards.

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"
#include "module/grid/in_place_edit.h"
#include "module/grid/in_place_list.h"

#include <utility>

namespace tessary {

namespace {

// What programs open an editor with: its text is selected, so that typing replaces it.
constexpr UINT programKey = VK_END;

}  // namespace

bool CGridCtrl::canEdit(int row, int column) const {
    const CGridCellBase* const edited = model_.cell(row, column);
    return editable_ && edited && !model_.isFixed(row, column) && !edited->isReadOnly() &&
           edited->kind() != GridColumnType::checkBox;
}

void CGridCtrl::startEditing(int row, int column, UINT firstKey) {
    beginEdit(row, column, firstKey, false);
}

void CGridCtrl::editFocusedCell() {
    beginEdit(focus_.row, focus_.column, programKey, true);
}

void CGridCtrl::beginEdit(int row, int column, UINT firstKey, bool whateverTheAnswer) {
    if (!handle() || !canEdit(row, column))
        return;
    const std::weak_ptr<CGridCtrl*> life = self_;
    endEditing();
    if (life.expired() || isEditing() || !canEdit(row, column))
        return;
    ensureVisible(row, column);
    const LRESULT answer = notifyOwner(gridBeginEdit, row, column);
    if (life.expired() || (answer == gridRefuse && !whateverTheAnswer))
        return;
    // An editor that the owner opened meanwhile is the one that it wants.
    if (handle() && !isEditing() && canEdit(row, column))
        openEditor(row, column, firstKey);
}

void CGridCtrl::openEditor(int row, int column, UINT firstKey) {
    const std::optional<RECT> area = cellArea(row, column);
    if (!area)
        return;
    const CGridCellBase& edited = *model_.cell(row, column);
    const std::wstring text = edited.shownText();
    const GridColumnType kind = edited.kind();
    if (kind != GridColumnType::editableDropDown && kind != GridColumnType::choiceDropDown) {
        CInPlaceEdit::open(*this, *area, 0, inPlaceEditorId, row, column, text, firstKey);
        return;
    }
    const std::vector<std::wstring> choices =
        edited.choices() ? edited.choices()->texts : std::vector<std::wstring>{};
    const DWORD style = kind == GridColumnType::editableDropDown ? CBS_DROPDOWN : CBS_DROPDOWNLIST;
    CInPlaceListForGridCell::open(*this, *area, style, inPlaceEditorId, row, column, choices, text, firstKey);
}

// Characters that were on their way when the editor opened, as an input method's. Those of keys that open or
// end an editor have done their work already.
bool CGridCtrl::passOnToEditor(wchar_t character) const {
    if (!isEditing())
        return false;
    if (character >= L' ')
        postCharacter(editor_ ? editor_->field() : list_->field(), character);
    return true;
}

void CGridCtrl::endEditing() {
    const std::weak_ptr<CGridCtrl*> life = self_;
    for (InPlaceEditor* const editor :
         {static_cast<InPlaceEditor*>(editor_), static_cast<InPlaceEditor*>(list_)}) {
        if (life.expired() || !editor || (editor != editor_ && editor != list_))
            continue;
        const auto keep = editor->shared_from_this();
        editor->endEdit();
        // While an end is being reported: the owner opened an editor and wants it closed again.
        editor->discard();
    }
}

void CGridCtrl::editorClosed(const framework::Window* editor) {
    if (editor == editor_)
        editor_ = nullptr;
    if (editor == list_)
        list_ = nullptr;
}

LRESULT CGridCtrl::editorEnded(const GridPosition& position, const std::wstring& text, UINT lastKey) {
    const std::weak_ptr<CGridCtrl*> life = self_;
    // What the cell holds may say more than what it shows: it stays unless the drafter changed that.
    if (const CGridCellBase* const edited = model_.cell(position.row, position.column);
        edited && edited->shownText() != text) {
        model_.setShownText(position.row, position.column, text);
    }
    cellChanged(position.row, position.column);
    const LRESULT result = notifyOwner(gridEndEdit, position.row, position.column);
    // An owner that edits a cell again wants the focus there.
    if (!life.expired() && handle() && !isEditing() && lastKey != 0)
        moveFocusAfterEditing(lastKey);
    return result;
}

void CGridCtrl::picked(int row, int column, const std::wstring& text) {
    if (!handle())
        return;
    const int id = GetDlgCtrlID(handle());
    const GridPickNotification notification{
        {handle(), static_cast<UINT_PTR>(id), static_cast<UINT>(gridPicked)}, row, column, text.c_str()};
    SendMessageW(GetParent(handle()), WM_NOTIFY, static_cast<WPARAM>(id),
                 reinterpret_cast<LPARAM>(&notification));
}

LRESULT CGridCtrl::notifyOwner(int code, int row, int column) const {
    if (!handle())
        return 0;
    const int id = GetDlgCtrlID(handle());
    const GridNotification notification{
        {handle(), static_cast<UINT_PTR>(id), static_cast<UINT>(code)}, row, column};
    return SendMessageW(GetParent(handle()), WM_NOTIFY, static_cast<WPARAM>(id),
                        reinterpret_cast<LPARAM>(&notification));
}

// No begin-edit is sent: an owner that refuses edits of the cell does not keep the drafter from toggling it.
void CGridCtrl::toggleCheckBox(int row, int column) {
    const CGridCellBase* const box = model_.cell(row, column);
    if (!box || box->kind() != GridColumnType::checkBox || model_.isFixed(row, column) || box->isReadOnly())
        return;
    model_.setText(row, column, box->text() == L"0" ? L"1" : L"0");
    cellChanged(row, column);
    notifyOwner(gridEndEdit, row, column);
}

// What the editors' windows tell their parent.
LRESULT CGridCtrl::onCommand(WPARAM wParam, LPARAM lParam) {
    if (!list_ || reinterpret_cast<HWND>(lParam) != list_->handle())
        return defaultHandling(WM_COMMAND, wParam, lParam);
    list_->notified(HIWORD(wParam));
    return 0;
}

LRESULT CGridCtrl::onDrawItem(WPARAM wParam, LPARAM lParam) {
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (!list_ || item.hwndItem != list_->handle())
        return defaultHandling(WM_DRAWITEM, wParam, lParam);
    list_->draw(item);
    return TRUE;
}

}  // namespace tessary
