// The grid under the keyboard, in a dialog.

#include "grid_window.h"
#include "module/grid/grid_notifications.h"
#include "module/grid/in_place_edit.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessary::testing {
namespace {

using Events = std::vector<GridEvent>;
using Commands = std::vector<int>;

GridEvent rowChanged(int row, int column) {
    return {gridSelectionChanged, row, column, {}};
}

GridPosition focusOf(const GridWindow& window) {
    return {window.grid.focusedRow(), window.grid.focusedColumn()};
}

struct Step {
    UINT key;
    unsigned modifiers;
    GridPosition focus;  // afterwards
};

void expectSteps(GridWindow& window, const std::vector<Step>& steps) {
    int number = 0;
    for (const Step& step : steps) {
        window.press(step.key, step.modifiers);
        EXPECT_EQ(focusOf(window), step.focus)
            << "step " << number++ << ", key " << step.key << ": " << window.grid.focusedRow() << ", "
            << window.grid.focusedColumn();
    }
}

// A fixed column, a hidden one among the others: 0 fixed, 1, 2 hidden, 3, 4 hidden.
void fillWithHidden(GridWindow& window, int rows) {
    window.fill(rows, 5, 60);
    window.grid.setFixedColumnCount(1);
    window.grid.setColumnWidth(2, 0);
    window.grid.setColumnWidth(4, 0);
}

TEST(GridKeyboard, ArrowsStopAtTheEndsAndPassOverHiddenColumns) {
    GridWindow window;
    fillWithHidden(window, 6);
    expectSteps(window, {{VK_DOWN, 0, {1, 1}},
                         {VK_UP, 0, {1, 1}},
                         {VK_LEFT, 0, {1, 1}},
                         {VK_RIGHT, 0, {1, 3}},
                         {VK_RIGHT, 0, {1, 3}},
                         {VK_DOWN, withControl, {5, 3}},
                         {VK_DOWN, 0, {5, 3}},
                         {VK_HOME, 0, {5, 1}},
                         {VK_END, 0, {5, 3}},
                         {VK_LEFT, withControl, {5, 1}},
                         {VK_RIGHT, withControl, {5, 3}},
                         {VK_HOME, withControl, {1, 1}},
                         {VK_END, withControl, {5, 3}},
                         {VK_UP, withControl, {1, 3}}});
    EXPECT_EQ(window.takeEvents(), (Events{rowChanged(1, 1), rowChanged(5, 3), rowChanged(1, 1),
                                           rowChanged(5, 3), rowChanged(1, 3)}));
}

TEST(GridKeyboard, PagesMoveByWhatIsSeen) {
    GridWindow window({300, 200});
    window.fill(500, 3);
    window.grid.focusCell(1, 1);
    window.press(VK_NEXT);
    const int page = window.grid.focusedRow() - 1;
    EXPECT_GT(page, 5);
    EXPECT_LE(page * window.grid.rowHeight(), 200);
    window.press(VK_NEXT);
    EXPECT_EQ(window.grid.focusedRow(), 1 + 2 * page);
    const RECT area = window.grid.cellArea(1 + 2 * page, 1).value();
    EXPECT_TRUE(area.top >= window.grid.rowHeight() && area.bottom <= 200) << "the focus is in view";
    window.press(VK_END, withControl);
    window.press(VK_PRIOR);
    EXPECT_EQ(window.grid.focusedRow(), 499 - page);
    for (int times = 0; times < 60; ++times)
        window.press(VK_PRIOR);
    EXPECT_EQ(focusOf(window), (GridPosition{1, 0 + 2})) << "Control+End went to the last column";
}

TEST(GridKeyboard, ShiftExtendsTheSelection) {
    GridWindow window;
    window.fill(8, 4);
    window.grid.focusCell(2, 1);
    window.press(VK_DOWN, withShift);
    window.press(VK_RIGHT, withShift);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{2, 1}, GridPosition{3, 2}}));
    window.press(VK_HOME, withShift | withControl);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{1, 0}, GridPosition{2, 1}}));
    window.press(VK_DOWN);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{2, 0}, GridPosition{2, 0}}));
}

TEST(GridKeyboard, SelectingAllOfAGridThatItsOwnerEmptiesSelectsNothing) {
    GridWindow window;
    window.fill(4, 3);
    window.answer = [&](const GridEvent& event) -> LRESULT {
        if (event.code == gridSelectionChanged)
            window.grid.setRowCount(1);
        return 0;
    };
    window.grid.focusCell(-1, -1);
    window.press('A', withControl);
    EXPECT_EQ(window.grid.rowCount(), 1);
    window.grid.setRowCount(3);
    EXPECT_FALSE(window.grid.isSelected(1, 0));
}

TEST(GridKeyboard, ListModeMovesByRows) {
    GridWindow window;
    fillWithHidden(window, 6);
    window.grid.setListMode(true);
    window.grid.focusCell(3, 3);
    expectSteps(window, {{VK_END, 0, {5, 3}}, {VK_HOME, 0, {1, 3}}, {VK_DOWN, 0, {2, 3}}});
    window.press(VK_TAB);
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId)) << "a list is one stop of Tab";
}

TEST(GridKeyboard, TabGoesThroughTheCellsAndOnToTheNextControl) {
    GridWindow window;
    fillWithHidden(window, 3);
    window.grid.focusCell(1, 1);
    expectSteps(window, {{VK_TAB, 0, {1, 3}}, {VK_TAB, 0, {2, 1}}, {VK_TAB, 0, {2, 3}}});
    window.press(VK_TAB);
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId));
    window.press(VK_TAB, withShift);
    EXPECT_EQ(GetFocus(), window.grid.handle());
    expectSteps(window,
                {{VK_TAB, withShift, {2, 1}}, {VK_TAB, withShift, {1, 3}}, {VK_TAB, withShift, {1, 1}}});
    window.press(VK_TAB, withShift);
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::beforeId));
    SetFocus(window.grid.handle());
    window.press(VK_TAB, withControl);
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId)) << "Control+Tab leaves from anywhere";
    // Without a focused cell there is nothing to go through.
    window.grid.focusCell(-1, -1);
    SetFocus(window.grid.handle());
    window.press(VK_TAB);
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId));
}

TEST(GridKeyboard, ReturnAndEscapeAreTheDialogsWhereTheGridHasNoUseForThem) {
    GridWindow window;
    window.fill(4, 2);
    window.press(VK_RETURN);
    EXPECT_EQ(window.takeCommands(), Commands{IDOK}) << "no cell has the focus";
    window.grid.focusCell(2, 1);
    window.press(VK_ESCAPE);
    EXPECT_EQ(window.takeCommands(), Commands{IDCANCEL});
    window.press(VK_RETURN);
    EXPECT_TRUE(window.grid.isEditing());
    window.press(VK_ESCAPE);
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(window.takeCommands(), Commands{}) << "the editor had them";
    window.grid.setReadOnly(2, 1);
    window.press(VK_RETURN);
    EXPECT_EQ(window.takeCommands(), Commands{IDOK});
    window.grid.setEditable(false);
    window.grid.focusCell(1, 0);
    window.press(VK_RETURN);
    window.press(VK_F2);
    window.type(L"x");
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(window.grid.text(1, 0), L"r1c0");
}

TEST(GridKeyboard, WhatEndsAnEditorMovesTheFocus) {
    GridWindow window;
    window.fill(5, 3);
    struct Case {
        UINT key;
        unsigned modifiers;
        GridPosition focus;
    };
    const Case cases[]{{VK_RETURN, 0, {3, 1}}, {VK_TAB, 0, {2, 2}},  {VK_TAB, withShift, {2, 0}},
                       {VK_UP, 0, {1, 1}},     {VK_DOWN, 0, {3, 1}}, {VK_LEFT, 0, {2, 0}},
                       {VK_RIGHT, 0, {2, 2}},  {VK_NEXT, 0, {4, 1}}, {VK_ESCAPE, 0, {2, 1}}};
    for (const Case& tried : cases) {
        window.grid.focusCell(2, 1);
        window.grid.setText(2, 1, L"old");
        window.type(L"ab");
        EXPECT_TRUE(window.grid.isEditing());
        window.press(tried.key, tried.modifiers);
        EXPECT_FALSE(window.grid.isEditing()) << tried.key;
        EXPECT_EQ(window.grid.text(2, 1), tried.key == VK_ESCAPE ? L"old" : L"ab") << tried.key;
        EXPECT_EQ(focusOf(window), tried.focus) << tried.key;
        EXPECT_EQ(GetFocus(), window.grid.handle());
        Events expected{{gridBeginEdit, 2, 1, {}}, {gridEndEdit, 2, 1, {}}};
        if (tried.focus.row != 2)
            expected.push_back(rowChanged(tried.focus.row, tried.focus.column));
        EXPECT_EQ(window.takeEvents(), expected) << tried.key;
    }
    EXPECT_EQ(window.takeCommands(), Commands{});
    // At the end of the grid there is nowhere to go.
    window.grid.focusCell(4, 2);
    window.type(L"z");
    window.press(VK_TAB);
    EXPECT_EQ(focusOf(window), (GridPosition{4, 2}));
    EXPECT_EQ(window.grid.text(4, 2), L"z");
}

TEST(GridKeyboard, EveryPrintableCharacterThatOpensAnEditorIsTyped) {
    GridWindow window;
    window.fill(3, 2);
    // The codes of the first ones are those of keys that move.
    for (const wchar_t character : std::wstring_view(L"!\"#$%&'(a0-\xe9\x416")) {
        window.grid.focusCell(1, 1);
        window.type(std::wstring(1, character) + L"x");
        ASSERT_TRUE(window.grid.isEditing());
        window.press(VK_RETURN);
        EXPECT_EQ(window.grid.text(1, 1), std::wstring(1, character) + L"x") << int(character);
    }
    window.grid.focusCell(1, 0);
    window.press(VK_F2);
    window.type(L"!");
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 0), L"r1c0!");
    window.grid.focusCell(1, 0);
    window.press(VK_BACK);
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 0), L"r1c0");
}

TEST(GridKeyboard, SpaceTogglesACheckBoxAndOtherKeysDoNot) {
    GridWindow window;
    window.fill(4, 2);
    window.grid.setCheckBoxColumn(1);
    window.grid.setText(2, 1, L"0");
    window.grid.focusCell(2, 1);
    window.press(VK_SPACE);
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1");
    EXPECT_EQ(window.takeEvents(), (Events{{gridEndEdit, 2, 1, {}}}));
    window.type(L"x");
    window.press(VK_DELETE);
    window.press(VK_F2);
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1");
    window.grid.setReadOnly(2, 1);
    window.press(VK_SPACE);
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1");
    EXPECT_EQ(window.takeEvents(), Events{});
}

TEST(GridKeyboard, DeleteEmptiesTheSelectedCellsThatMayBeEdited) {
    GridWindow window;
    window.fill(5, 4);
    window.grid.setColumnWidth(2, 0);
    window.grid.setReadOnly(2, 1);
    window.answer = [](const GridEvent& event) -> LRESULT {
        return event.code == gridBeginEdit && event.row == 3 ? gridRefuse : 0;
    };
    window.grid.focusCell(1, 1);
    window.press(VK_DOWN, withShift);
    window.press(VK_DOWN, withShift);
    window.press(VK_RIGHT, withShift);
    window.press(VK_DELETE);
    EXPECT_EQ(window.grid.text(1, 1), L"");
    EXPECT_EQ(window.grid.text(1, 3), L"");
    EXPECT_EQ(window.grid.text(1, 2), L"r1c2") << "hidden";
    EXPECT_EQ(window.grid.text(2, 1), L"r2c1") << "read-only";
    EXPECT_EQ(window.grid.text(2, 3), L"");
    EXPECT_EQ(window.grid.text(3, 1), L"r3c1") << "refused";
    window.grid.setListMode(true);
    window.press(VK_DELETE);
    EXPECT_EQ(window.grid.text(4, 3), L"r4c3");
    EXPECT_FALSE(window.grid.isEditing());
}

TEST(GridKeyboard, SectionsOpenAndCloseByKeys) {
    GridWindow window;
    showSections(window.grid);
    const auto isShown = [&](int row) { return window.grid.cellArea(row, 0).has_value(); };
    window.grid.focusCell(1, 0);
    window.press(VK_LEFT);
    EXPECT_FALSE(isShown(2));
    expectSteps(window, {{VK_DOWN, 0, {4, 0}}, {VK_UP, 0, {1, 0}}, {VK_RIGHT, 0, {1, 0}}});
    EXPECT_TRUE(isShown(2));
    window.press(VK_RIGHT);
    EXPECT_EQ(focusOf(window), (GridPosition{1, 1})) << "it is open already";
    window.type(L"-");
    EXPECT_FALSE(isShown(3));
    window.press(VK_ADD);
    EXPECT_TRUE(isShown(3));
    window.press(VK_SUBTRACT);
    EXPECT_FALSE(isShown(3));
    window.press(VK_END, withControl);
    EXPECT_EQ(focusOf(window), (GridPosition{6, 2}));
    window.takeEvents();
    // The mouse closes the section that the focus is in: its head takes the focus.
    window.clickAt(window.inCell(4, 0, {8, window.grid.rowHeight() / 2}));
    EXPECT_EQ(focusOf(window), (GridPosition{4, 2}));
    EXPECT_EQ(window.takeEvents(), Events{rowChanged(4, 2)});
}

}  // namespace
}  // namespace tessary::testing
