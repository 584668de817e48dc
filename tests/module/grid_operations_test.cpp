// What a program's operations do to the focus, to an open editor and to what is drawn.

#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"
#include "tests/module/grid_window.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tessary::testing {
namespace {

using Events = std::vector<GridEvent>;

std::vector<std::wstring> columnOf(const CGridCtrl& grid, int column) {
    std::vector<std::wstring> texts;
    for (int row = grid.fixedRowCount(); row < grid.rowCount(); ++row) {
        texts.push_back(grid.text(row, column));
    }
    return texts;
}

void expectFocus(const GridWindow& window, int row, int column) {
    EXPECT_EQ(row, window.grid.focusedRow());
    EXPECT_EQ(column, window.grid.focusedColumn());
}

TEST(GridOperations, theFocusStaysOnTheRowNumberWhenItsRowGoes) {
    GridWindow window;
    window.fill(4, 2);
    window.grid.focusCell(2, 1);
    window.takeEvents();
    window.grid.deleteFocusedRow();
    expectFocus(window, 2, 1);
    EXPECT_EQ(L"r3c1", window.grid.text(2, 1));
    EXPECT_EQ((Events{{gridSelectionChanged, 2, 1, L""}}), window.takeEvents())
        << "another row has the focus";
    window.grid.deleteFocusedRow();
    expectFocus(window, 1, 1);
    EXPECT_EQ((Events{{gridSelectionChanged, 1, 1, L""}}), window.takeEvents());
    window.grid.deleteFocusedRow();
    expectFocus(window, -1, -1);
    EXPECT_EQ(1, window.grid.rowCount());
    window.grid.deleteFocusedRow();
    EXPECT_EQ(1, window.grid.rowCount()) << "the header stays";
    EXPECT_EQ(Events(), window.takeEvents()) << "no row has the focus";
}

TEST(GridOperations, theFocusFollowsItsCellWhenAnotherRowGoes) {
    GridWindow window;
    window.fill(5, 2);
    window.grid.focusCell(3, 1);
    window.takeEvents();
    window.grid.deleteRow(1);
    expectFocus(window, 2, 1);
    EXPECT_EQ(L"r3c1", window.grid.text(2, 1));
    window.grid.deleteRow(3);
    window.grid.deleteRow(9);
    window.grid.deleteRow(-1);
    expectFocus(window, 2, 1);
    window.grid.deleteRow(2);
    expectFocus(window, 1, 1);
    window.grid.deleteRow(1);
    expectFocus(window, -1, -1);
    EXPECT_EQ(Events(), window.takeEvents()) << "a program's own doing is not reported";
}

TEST(GridOperations, sortingClearsTheFocusAndIsRemembered) {
    GridWindow window;
    window.fill(4, 2);
    window.grid.setText(1, 0, L"b");
    window.grid.setText(2, 0, L"c");
    window.grid.setText(3, 0, L"a");
    window.grid.focusCell(2, 1);
    window.takeEvents();
    window.grid.sortByColumn(compareGridTexts, 0, false);
    expectFocus(window, -1, -1);
    EXPECT_EQ((std::vector<std::wstring>{L"c", L"b", L"a"}), columnOf(window.grid, 0));
    EXPECT_EQ(L"head 0", window.grid.text(0, 0));
    EXPECT_EQ(0, window.grid.sortColumn());
    EXPECT_FALSE(window.grid.sortsAscending());
    EXPECT_EQ(Events(), window.takeEvents());
    window.grid.sortByColumn(compareGridTexts, 1, true);
    EXPECT_EQ((std::vector<std::wstring>{L"b", L"c", L"a"}), columnOf(window.grid, 0));
}

TEST(GridOperations, aSmallerMatrixHasNoFocusOutsideIt) {
    GridWindow window;
    window.fill(4, 3);
    window.grid.focusCell(3, 2);
    window.grid.setRowCount(3);
    expectFocus(window, -1, -1);
    window.grid.focusCell(2, 2);
    window.grid.setColumnCount(3);
    window.grid.setRowCount(7);
    expectFocus(window, 2, 2);
    window.grid.setColumnCount(2);
    expectFocus(window, -1, -1);
    window.grid.focusCell(1, 1);
    window.grid.setFixedRowCount(2);
    expectFocus(window, -1, -1);
    window.grid.focusCell(2, 1);
    window.grid.setRowCount(-1);
    expectFocus(window, -1, -1);
    EXPECT_EQ(0, window.grid.fixedRowCount());
    window.pump();
    EXPECT_EQ(nullptr, window.failure);
}

TEST(GridOperations, swappingMovesCellsAndNotTheFocus) {
    GridWindow window;
    window.fill(4, 2);
    window.grid.focusCell(1, 0);
    window.grid.setReadOnly(1, 1);
    window.grid.swapRows(1, 3);
    EXPECT_EQ((std::vector<std::wstring>{L"r3c0", L"r2c0", L"r1c0"}), columnOf(window.grid, 0));
    EXPECT_TRUE(window.grid.cell(3, 1)->isReadOnly());
    expectFocus(window, 1, 0);
    window.grid.swapRows(1, 4);
    EXPECT_EQ(L"r3c0", window.grid.text(1, 0));
}

TEST(GridOperations, aUniqueRowIsFocusedShownAndEditedWhenAsked) {
    GridWindow window;
    window.fill(61, 3);
    window.takeEvents();
    EXPECT_EQ(61, window.grid.addUniqueRow(L"New Layer", 1, 0));
    expectFocus(window, 61, 1);
    EXPECT_FALSE(window.grid.isEditing());
    RECT client{};
    GetClientRect(window.grid.handle(), &client);
    std::optional<RECT> area = window.grid.cellArea(61, 1);
    ASSERT_TRUE(area);
    EXPECT_LE(area->bottom, client.bottom);
    EXPECT_EQ(Events(), window.takeEvents());

    window.answer = [](const GridEvent&) { return gridRefuse; };
    EXPECT_EQ(2, window.grid.addUniqueRow(L"New Layer", 1, 0, true, 2));
    expectFocus(window, 2, 1);
    EXPECT_TRUE(window.grid.isEditing()) << "whatever the owner answers";
    EXPECT_EQ((Events{{gridBeginEdit, 2, 1, L""}}), window.takeEvents());
    window.type(L"x");
    window.press(VK_RETURN);
    EXPECT_EQ(L"x", window.grid.text(2, 1));
    EXPECT_EQ(L"-1", window.grid.text(2, 0));
    EXPECT_EQ(L"r60c2", window.grid.text(2, 2));
}

TEST(GridOperations, cellsAreReachedByColumnNames) {
    GridWindow window;
    window.fill(3, 2);
    window.grid.setColumnName(1, L"Value");
    window.grid.setTextByName(1, L"Value", L"new");
    window.grid.setTextByName(1, L"value", L"lost");
    window.grid.setTextByName(9, L"Value", L"lost");
    EXPECT_EQ(L"new", window.grid.textByName(1, L"Value"));
    EXPECT_EQ(L"new", window.grid.text(1, 1));
    EXPECT_EQ(L"", window.grid.textByName(1, L"value"));
    EXPECT_EQ(L"", window.grid.textByName(9, L"Value"));
}

TEST(GridOperations, collapsingHandsTheFocusToTheHead) {
    GridWindow window;
    window.grid.setColumnCount(3);
    window.grid.setFixedRowCount(1);
    window.grid.setRowCount(1);
    window.grid.setTreeColumn(0);
    EXPECT_EQ(1, window.grid.addSectionRow(L"General"));
    EXPECT_EQ(2, window.grid.addTreeRow());
    EXPECT_EQ(3, window.grid.addSectionRow(L"Other"));
    EXPECT_EQ(L"Other", window.grid.text(3, 2));
    window.grid.focusCell(2, 1);
    window.takeEvents();
    window.grid.setExpanded(1, false);
    expectFocus(window, 1, 1);
    EXPECT_FALSE(window.grid.cellArea(2, 1)) << "not shown";
    EXPECT_TRUE(window.grid.cellArea(3, 1));
    window.grid.setExpanded(1, true);
    EXPECT_TRUE(window.grid.cellArea(2, 1));
    window.grid.setExpanded(2, false);
    EXPECT_TRUE(window.grid.cellArea(2, 1)) << "no head";
    EXPECT_EQ(Events(), window.takeEvents());
    EXPECT_EQ(4, window.grid.addTreeRow());
    window.grid.setExpanded(1, false);
    window.grid.focusCell(3, 1);
    window.grid.deleteFocusedRow();
    expectFocus(window, 1, 1);
    EXPECT_FALSE(window.grid.cellArea(3, 1)) << "in the collapsed section";
}

// Each operation while the drafter has typed "typed" into row 2, column 1, of three rows
struct Operation {
    const char* name;
    void (*run)(CGridCtrl& grid);
    int row;  // where the typed text is afterwards; -1: nowhere
};

TEST(GridOperations, anOpenEditorEndsBeforeItsCellMoves) {
    const std::vector<Operation> operations{
        {"delete above", [](CGridCtrl& grid) { grid.deleteRow(1); }, 1},
        {"delete the edited row", [](CGridCtrl& grid) { grid.deleteFocusedRow(); }, -1},
        {"empty", [](CGridCtrl& grid) { grid.setRowCount(1); }, -1},
        {"drop the column", [](CGridCtrl& grid) { grid.setColumnCount(1); }, -1},
        {"swap", [](CGridCtrl& grid) { grid.swapRows(2, 3); }, 3},
        {"sort", [](CGridCtrl& grid) { grid.sortByColumn(compareGridTexts, 1, false); }, 1},
        {"insert", [](CGridCtrl& grid) { grid.addUniqueRow(L"r1c0", 0, 1, false, 1); }, 3},
        {"fix the row", [](CGridCtrl& grid) { grid.setFixedRowCount(3); }, 2},
    };
    for (const Operation& operation : operations) {
        GridWindow window;
        window.fill(4, 2);
        window.grid.focusCell(2, 1);
        window.type(L"typed");
        ASSERT_TRUE(window.grid.isEditing()) << operation.name;
        window.takeEvents();
        operation.run(window.grid);
        window.pump();
        EXPECT_FALSE(window.grid.isEditing()) << operation.name;
        EXPECT_EQ((Events{{gridEndEdit, 2, 1, L""}}), window.takeEvents(gridEndEdit)) << operation.name;
        EXPECT_EQ(nullptr, GetWindow(window.grid.handle(), GW_CHILD)) << operation.name;
        EXPECT_EQ(nullptr, window.failure);
        for (int row = 0; row < window.grid.rowCount(); ++row) {
            EXPECT_EQ(row == operation.row, window.grid.text(row, 1) == L"typed")
                << operation.name << ", row " << row;
        }
    }
}

TEST(GridOperations, anEditorStaysOpenWhileOtherCellsChange) {
    GridWindow window;
    window.fill(4, 3);
    window.grid.focusCell(2, 1);
    window.type(L"typed");
    window.takeEvents();
    window.grid.setText(2, 2, L"other");
    window.grid.setCellChoices(2, 2, {L"a", L"b"}, false);
    window.grid.makePlainCell(2, 2);
    window.grid.setReadOnly(1, 1);
    window.grid.appendRow();
    window.grid.setColumnChoices(2, {L"a"});
    window.grid.applyColumnChoices(2);
    window.pump();
    EXPECT_TRUE(window.grid.isEditing());
    EXPECT_EQ(Events(), window.takeEvents());
    window.press(VK_RETURN);
    EXPECT_EQ(L"typed", window.grid.text(2, 1));
}

TEST(GridOperations, anEditorEndsBeforeTheViewMovesBelowIt) {
    GridWindow window;
    window.fill(60, 3);
    const auto resize = [&] {
        SetWindowPos(window.grid.handle(), nullptr, 0, 0, 300, 100, SWP_NOMOVE | SWP_NOZORDER);
    };
    const std::vector<std::function<void()>> moves{[&] { window.grid.ensureVisible(50, 1); },
                                                   [&] { window.grid.scrollToTop(20); }, resize};
    for (std::size_t i = 0; i < moves.size(); ++i) {
        SCOPED_TRACE(i);
        window.grid.focusCell(1, 1);
        window.type(L"typed" + std::to_wstring(i));
        EXPECT_TRUE(window.grid.isEditing());
        window.takeEvents();
        moves[i]();
        EXPECT_FALSE(window.grid.isEditing());
        EXPECT_EQ((Events{{gridEndEdit, 1, 1, {}}}), window.takeEvents());
        EXPECT_EQ(L"typed" + std::to_wstring(i), window.grid.text(1, 1));
    }
}

TEST(GridOperations, anOwnerMayDeleteTheRowWhoseEditEnds) {
    GridWindow window;
    window.fill(4, 2);
    window.answer = [&](const GridEvent& event) -> LRESULT {
        if (event.code == gridEndEdit) {
            window.grid.deleteRow(event.row);
        }
        return 0;
    };
    window.grid.focusCell(3, 1);
    window.type(L"typed");
    window.press(VK_RETURN);
    window.pump();
    EXPECT_EQ((std::vector<std::wstring>{L"r1c1", L"r2c1"}), columnOf(window.grid, 1));
    EXPECT_FALSE(window.grid.isEditing());
    // Deleting the row that is being edited ends the edit, whose report deletes the row: once is enough.
    window.grid.focusCell(1, 1);
    window.type(L"typed");
    window.grid.deleteRow(2);
    window.pump();
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(nullptr, window.failure);
    EXPECT_EQ(2, window.grid.rowCount()) << "header and the row that moved up";
}

TEST(GridOperations, aGridWithoutAWindowTakesOperations) {
    CGridCtrl grid;
    grid.setColumnCount(3);
    grid.setFixedRowCount(1);
    grid.setRowCount(4);
    grid.setColumnWidth(1, 30);
    grid.setColumnChoicesFromText(1, L"a|b");
    grid.setText(2, 1, L"b");
    grid.sortByColumn(compareGridTexts, 1, false);
    EXPECT_EQ(L"b", grid.valueText(1, 1));
    grid.addUniqueRow(L"name", 0, 2, true);
    grid.deleteFocusedRow();
    grid.deleteRow(1);
    EXPECT_EQ(3, grid.rowCount());
}

}  // namespace
}  // namespace tessary::testing
