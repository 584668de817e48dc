#pragma once

// The spreadsheet-like control of the product's list dialogs. A dialog template places it as a control of
// class "MFCGridCtrl"; the dialog owns a CGridCtrl and attaches it when it is initialised. Rows and columns
// count from 0; the fixed rows and columns at the beginning are headers.
//
// What the drafter does is told to the owner (module/grid/grid_notifications.h). What a program does through
// this class is not, where nothing else is said.

#include "framework/gdi.h"
#include "framework/window.h"
#include "module/grid/grid_model.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

class CInPlaceEdit;
class CInPlaceListForGridCell;
class GridAccessible;
class GridTitleTip;

// Makes the class known to dialog templates of this program or library. Any number of times.
void registerGridClass();

class CGridCtrl : public framework::Window {
public:
    static constexpr const wchar_t* className = L"MFCGridCtrl";

    CGridCtrl();
    ~CGridCtrl() override;

    // Takes over the control with that id.
    void attachToControl(HWND dialog, int controlId);

    // ---- The matrix (grid_operations.cpp)
    const GridModel& model() const { return model_; }
    int rowCount() const { return model_.rowCount(); }
    int columnCount() const { return model_.columnCount(); }
    int fixedRowCount() const { return model_.fixedRowCount(); }
    int fixedColumnCount() const { return model_.fixedColumnCount(); }
    void setRowCount(int count);
    void setColumnCount(int count);
    void setFixedRowCount(int count);
    void setFixedColumnCount(int count);
    void setColumnWidth(int column, int width);  // pixels; 0 hides
    int columnWidth(int column) const { return model_.columnWidth(column); }

    void setCheckBoxColumn(int column);
    void setDropDownColumn(int column, bool editable);
    void setLookedUpColumn(int column);
    void setTreeColumn(int column);
    // "|One|Two": an editable drop-down; "One|Two": choices only.
    void setColumnChoicesFromText(int column, std::wstring_view text);
    void setColumnChoices(int column, std::vector<std::wstring> texts);
    void setColumnChoiceData(int column, std::vector<int> data);
    void applyColumnChoices(int column);
    void setCellChoices(int row, int column, std::vector<std::wstring> texts, bool editable);
    void makePlainCell(int row, int column);
    void setReadOnly(int row, int column);
    void setColumnName(int column, const std::wstring& name);

    const std::wstring& text(int row, int column) const { return model_.text(row, column); }
    std::wstring valueText(int row, int column) const { return model_.valueText(row, column); }
    void setText(int row, int column, std::wstring_view text);
    const std::wstring& textByName(int row, const std::wstring& name) const;
    void setTextByName(int row, const std::wstring& name, std::wstring_view text);
    // Null outside the matrix.
    const CGridCellBase* cell(int row, int column) const { return model_.cell(row, column); }

    int appendRow();
    void swapRows(int a, int b);
    void deleteRow(int row);
    // The row after takes the focus, or the one before when there is none; the owner is told, because another
    // row has the focus now. Nothing when no row that can be deleted has it.
    void deleteFocusedRow();
    int addUniqueRow(const std::wstring& baseName, int nameColumn, int keyColumn, bool startEditing = false,
                     int insertPosition = -1);
    int addSectionRow(const std::wstring& title);
    int addTreeRow();
    void sortByColumn(GridCompare compare, int column, bool ascending);
    int sortColumn() const { return sortColumn_; }
    bool sortsAscending() const { return sortAscending_; }

    // ---- What is seen (grid_layout.cpp, grid_painting.cpp)
    void setListMode(bool on);
    // Clicks on a header sort by its column.
    void setHeaderSort(bool on) { headerSort_ = on; }
    void setEditable(bool on) { editable_ = on; }
    void setSingleRowSelection(bool on) { singleRow_ = on; }
    // Fits visible columns to their widest text.
    void autoSizeColumns();
    void autoSizeColumn(int column);
    // Widens the last visible column to the end of the client area, if it ends before.
    void extendLastColumn();
    void ensureVisible(int row, int column);
    void scrollToTop(int row);  // the row becomes the first one below the header, as far as there are rows
    void setRedraw(bool on, bool now = false);
    void refresh();
    // Of a cell in client coordinates; nothing when it is hidden. May lie outside the client area.
    std::optional<RECT> cellArea(int row, int column) const;
    // The cell at a point of the client area, headers included; {-1, -1} beside all cells.
    GridPosition cellAt(POINT point) const;
    HFONT font() const;
    int rowHeight() const;

    // ---- The focus (grid_focus.cpp). {-1, -1}: no cell has it.
    void focusCell(int row, int column);
    void moveFocusRow(int row) { focusCell(row, focus_.column); }
    int focusedRow() const { return focus_.row; }
    int focusedColumn() const { return focus_.column; }
    bool isSelected(int row, int column) const;

    // ---- Editing (grid_editing.cpp)
    // Opens the editor of the focused cell, whatever the owner answers to the begin of the edit: programs
    // that start an edit mean it.
    void editFocusedCell();
    bool isEditing() const { return editor_ != nullptr || list_ != nullptr; }
    void endEditing();
    // The open drop-down; null when there is none. For owners that replace its result.
    CInPlaceListForGridCell* dropDownEditor() const { return list_; }
    CInPlaceEdit* textEditor() const { return editor_; }

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;

private:
    friend class CInPlaceEdit;
    friend class CInPlaceListForGridCell;
    friend class GridAccessible;
    friend class GridTitleTip;

    // ---- Editing
    // firstKey: the key or click (VK_LBUTTON) that starts it. The owner may refuse.
    void startEditing(int row, int column, UINT firstKey);
    bool canEdit(int row, int column) const;
    void openEditor(int row, int column, UINT firstKey);
    LRESULT editorEnded(const GridPosition& position, const std::wstring& text, UINT lastKey);
    void picked(int row, int column, const std::wstring& text);
    // The editors' windows are gone, or being closed.
    void editorClosed(const framework::Window* editor);
    void toggleCheckBox(int row, int column);
    LRESULT notifyOwner(int code, int row, int column) const;

    // ---- The rest of the private members stands with what uses it.
    // Moves the focus as the drafter does, and tells the owner when the row is another one.
    void moveFocus(GridPosition to, bool extendSelection);

    GridModel model_;
    GridPosition focus_, anchor_;  // anchor: where the selected block begins; the focus is its other corner
    bool listMode_ = false, singleRow_ = false, headerSort_ = false, editable_ = true, redraw_ = true;
    int sortColumn_ = -1;
    bool sortAscending_ = true;
    CInPlaceEdit* editor_ = nullptr;           // owns itself, until its window is destroyed
    CInPlaceListForGridCell* list_ = nullptr;  // likewise
};

}  // namespace tessary
