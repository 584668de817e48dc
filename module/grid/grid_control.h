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

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessary {

class CInPlaceEdit;
class CInPlaceListForGridCell;
class GridAccessible;
class GridPainter;
class GridTextWidths;
class GridTitleTip;

// Makes the class known to dialog templates of this program or library. Any number of times.
void registerGridClass();

class CGridCtrl : public framework::Window {
public:
    static constexpr const wchar_t* className = L"MFCGridCtrl";
    static constexpr int cellMargin = 4;  // pixels between a cell's edges and its text
    static constexpr int textTop = 2;     // pixels between a cell's upper edge and its text

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
    // Shows or hides the rows under a section's head; a focused row among them hands the focus to the head.
    void setExpanded(int row, bool expanded);
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
    // Where in its area a cell's text stands: without margins, expand box, indentation and drop-down arrow.
    RECT textArea(int row, int column, const RECT& cell) const;
    // In the grid's font, in pixels.
    int textWidth(std::wstring_view text) const;
    HFONT font() const;
    int rowHeight() const;

    // ---- The focus (grid_focus.cpp). {-1, -1}: no cell has it.
    void focusCell(int row, int column);
    void moveFocusRow(int row) { focusCell(row, focus_.column); }
    int focusedRow() const { return focus_.row; }
    int focusedColumn() const { return focus_.column; }
    bool isSelected(int row, int column) const;
    // The first and the last selected cell; none when there are none. Hidden cells may be among them.
    std::pair<GridPosition, GridPosition> selectedBlock() const;

    // ---- Editing (grid_editing.cpp)
    // Opens the editor of the focused cell, whatever the owner answers to the begin of the edit: programs
    // that start an edit mean it.
    void editFocusedCell();
    bool isEditing() const { return editor_ != nullptr || list_ != nullptr; }
    void endEditing();
    // The open drop-down; null when there is none. For owners that replace its result.
    CInPlaceListForGridCell* dropDownEditor() const { return list_; }
    CInPlaceEdit* textEditor() const { return editor_; }

    // ---- The clipboard (grid_clipboard.cpp): the cells that are seen, as text with tabs and line breaks
    // False when nothing is selected or another program holds the clipboard; it then keeps what it had.
    bool copySelection() const;
    // Copies, and empties the text cells that may be edited.
    void cutSelection();
    // Enters the clipboard's block from the focused cell on, or from the first of several selected ones: one
    // cell after the other, as if it were typed. Cells that refuse it keep what they have; what reaches over
    // the grid's end is left out.
    void pasteAtFocus();

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onDestroyed() override;

private:
    friend class InPlaceEditor;
    friend class CInPlaceEdit;
    friend class CInPlaceListForGridCell;
    friend class GridAccessible;
    friend class GridPainter;
    friend class GridTitleTip;

    // ---- Editing
    // firstKey: the key or click (VK_LBUTTON) that starts it. The owner may refuse.
    void startEditing(int row, int column, UINT firstKey);
    void beginEdit(int row, int column, UINT firstKey, bool whateverTheAnswer);
    bool canEdit(int row, int column) const;
    void openEditor(int row, int column, UINT firstKey);
    LRESULT editorEnded(const GridPosition& position, const std::wstring& text, UINT lastKey);
    void picked(int row, int column, const std::wstring& text);
    // False when no editor is open.
    bool passOnToEditor(wchar_t character) const;
    // The editors' windows are gone, or being closed.
    void editorClosed(const framework::Window* editor);
    void toggleCheckBox(int row, int column);
    LRESULT notifyOwner(int code, int row, int column) const;
    LRESULT onCommand(WPARAM wParam, LPARAM lParam);
    LRESULT onDrawItem(WPARAM wParam, LPARAM lParam);

    // As if the drafter had typed it into the cell: the owner may refuse the edit, and is told its end. False
    // when the cell does not take the text (not editable, not one of its choices, refused).
    bool enterText(int row, int column, const std::wstring& text);
    bool enterCheck(int row, int column, std::wstring_view text);
    bool checkBoxAt(int row, int column) const;

    // ---- The matrix (grid_operations.cpp)
    void setColumnType(int column, GridColumnType type);
    // Cells are about to move, or to go.
    void endEditingForChange();
    // A focus that is not on a data cell of the matrix any more is none.
    void dropLostFocus();

    // ---- What operations tell the view (grid_layout.cpp). Cheap, as operations come by the hundred
    // thousand: the work is done once, when the grid paints or is asked for a place. Rows, columns, widths or
    // sections are others: the scroll ranges and all that is drawn are out of date.
    void layoutChanged();
    // One cell looks different.
    void cellChanged(int row, int column);

    // ---- Places (grid_layout.cpp). Rows that no collapsed section hides are numbered from the first one
    // below the header: their `index`.
    int shownRowCount() const;
    int indexOfRow(int row) const;  // of a row that is not shown: of the first shown one after it
    int rowOfIndex(int index) const;
    bool isDataCell(const GridPosition& cell) const;   // in the matrix, no header
    bool isShownCell(const GridPosition& cell) const;  // in the matrix, and neither row nor column is hidden
    SIZE headerSize() const;
    RECT dataArea() const;              // the client area without the headers
    int columnStart(int column) const;  // from the left, as if nothing were scrolled
    int neededColumnWidth(int column) const;
    RECT expandBox(int row, int column, const RECT& cell) const;
    RECT arrowArea(const RECT& cell) const;
    int indentation(int row, int column) const;
    bool hasArrow(int row, int column) const;  // the cell opens a drop-down
    void fontChanged();

    // ---- Scrolling (grid_scrolling.cpp), in pixels
    int pageRows() const;  // that fit below the header, at least 1
    POINT scrollEnd() const;
    // An open editor ends before its cell moves away; its owner may do anything then.
    void scrollTo(POINT offset);
    void scrollBy(int dx, int dy);
    // Brings the scroll bars up to date with the layout. Anything may be shown or hidden by it.
    void settleLayout();
    bool fitsWithoutScrollBars() const;
    void setScrollBar(int bar, int end, int page, int position);
    void drawScrollBars();
    LRESULT onScrollBar(int bar, WPARAM wParam);
    LRESULT onVerticalScroll(WPARAM wParam, LPARAM lParam);
    LRESULT onHorizontalScroll(WPARAM wParam, LPARAM lParam);
    LRESULT onWheel(WPARAM wParam, LPARAM lParam);
    LRESULT onHorizontalWheel(WPARAM wParam, LPARAM lParam);

    // ---- The focus (grid_focus.cpp)
    // Moves the focus as the drafter does, and tells the owner when the row is another one.
    void moveFocus(GridPosition to, bool extendSelection);
    void placeFocus(GridPosition to, bool extendSelection);
    // Where the focus goes when an editor was ended by that key; nowhere for Escape and 0.
    void moveFocusAfterEditing(UINT lastKey);
    // The next visible column that is no header, in that direction (1 or -1); -1 when there is none.
    int columnBeside(int column, int direction) const;
    // Where a key of the keyboard leads from the focus; the focus itself at an end of the grid.
    GridPosition destination(UINT key, bool control) const;
    GridPosition nextInReadingOrder(int direction) const;
    GridPosition firstDataCell() const;
    GridPosition lastDataCell() const;
    void selectAll();

    // ---- The mouse (grid_mouse.cpp)
    struct Press {
        enum class Kind { none, columnEdge, header, cells, checkBox };
        Kind kind = Kind::none;
        GridPosition cell;    // where it began; for an edge the column left of it
        int startX = 0;       // of the mouse, for an edge
        int startWidth = 0;   // of its column
        bool inside = false;  // the mouse is still over the cell
        POINT last{};         // where the mouse was seen last
    };
    int edgeAt(POINT at) const;  // the column that ends there, in the header; -1: none
    GridPosition nearestCell(POINT at) const;
    bool isOverCell(const GridPosition& cell, POINT at) const;
    void beginPress(Press::Kind kind, const GridPosition& cell, POINT at);
    void cancelPress();
    void extendPress(POINT at);
    bool takeKeyboard();
    bool pressHeader(POINT at);
    bool pressExpandBox(const GridPosition& cell, POINT at);
    void pressCell(const GridPosition& cell, POINT at, bool extend);
    void sortByHeader(int column);
    void toggleSection(int row);
    void expandByDrafter(int row, bool expanded);
    bool canToggle(const GridPosition& cell) const;
    LRESULT onButtonDown(WPARAM wParam, LPARAM lParam);
    LRESULT onDoubleClick(WPARAM wParam, LPARAM lParam);
    LRESULT onMouseMove(WPARAM wParam, LPARAM lParam);
    LRESULT onButtonUp(WPARAM wParam, LPARAM lParam);
    LRESULT onCaptureChanged(WPARAM wParam, LPARAM lParam);
    // Goes on scrolling while the mouse is held outside.
    void scrollForDrag();
    LRESULT onSetCursor(WPARAM wParam, LPARAM lParam);

    // ---- The keyboard (grid_keyboard.cpp)
    bool wantsKey(const MSG& message) const;
    bool controlKey(UINT key);
    bool treeKey(UINT key);
    bool editKey(UINT key);
    void clearSelectedCells();
    LRESULT onDialogCode(WPARAM wParam, LPARAM lParam);
    LRESULT onKeyDown(WPARAM wParam, LPARAM lParam);
    LRESULT onChar(WPARAM wParam, LPARAM lParam);

    // ---- The window (grid_control.cpp, grid_painting.cpp)
    LRESULT onPaint(WPARAM wParam, LPARAM lParam);
    LRESULT onPrintClient(WPARAM wParam, LPARAM lParam);
    LRESULT onEraseBackground(WPARAM wParam, LPARAM lParam);
    enum Timer : UINT_PTR { dragTimer = 1, thumbTimer };
    LRESULT onSize(WPARAM wParam, LPARAM lParam);
    LRESULT onTimer(WPARAM wParam, LPARAM lParam);
    LRESULT onSetFont(WPARAM wParam, LPARAM lParam);
    LRESULT onLooksChanged(WPARAM wParam, LPARAM lParam);
    LRESULT onGetObject(WPARAM wParam, LPARAM lParam);
    LRESULT onNotify(WPARAM wParam, LPARAM lParam);
    LRESULT onSettleLayout(WPARAM wParam, LPARAM lParam);
    struct Route;
    static const Route* routeOf(UINT message);

    // Expires with the grid, for what comes back from the owner or is still on its way.
    const std::shared_ptr<CGridCtrl*> self_ = std::make_shared<CGridCtrl*>(this);
    GridModel model_;
    GridPosition focus_, anchor_;  // anchor: where the selected block begins; the focus is its other corner
    bool listMode_ = false, singleRow_ = false, headerSort_ = false, editable_ = true, redraw_ = true;
    int sortColumn_ = -1;
    bool sortAscending_ = true;
    bool allSelected_ = false;     // whatever the anchor is; until the focus moves
    POINT scroll_{};               // what is scrolled out at the left and the top, in pixels
    int wheelRest_[2]{};           // of the wheels' movement, too little for a pixel so far
    bool layoutSettled_ = true;    // the scroll bars show the layout
    bool settling_ = false;        // they are being set
    mutable int rowHeight_ = 0;    // 0: not measured yet
    bool repaintPending_ = false;  // all of the window will be painted
    Press press_;
    mutable std::vector<int> shownRows_;  // by index, when sections can hide rows
    mutable bool shownRowsKnown_ = false;
    mutable std::unique_ptr<GridTextWidths> textWidths_;  // null: not measured yet in the present font
    CInPlaceEdit* editor_ = nullptr;                      // owns itself, until its window is destroyed
    CInPlaceListForGridCell* list_ = nullptr;             // likewise
    std::shared_ptr<GridAccessible> accessible_;          // screen readers may hold it longer; never null
    std::unique_ptr<GridTitleTip> titleTip_;              // never null
};

}  // namespace tessary
