// The grid under the mouse.

#include "grid_window.h"
#include "module/grid/grid_notifications.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tessary::testing {
namespace {

using Events = std::vector<GridEvent>;

GridEvent rowChanged(int row, int column) {
    return {gridSelectionChanged, row, column, {}};
}

GridPosition focusOf(const GridWindow& window) {
    return {window.grid.focusedRow(), window.grid.focusedColumn()};
}

// On the right edge of a header.
POINT edgeOf(const GridWindow& window, int column) {
    const RECT header = window.grid.cellArea(0, column).value();
    return {header.right - 1, (header.top + header.bottom) / 2};
}

TEST(GridMouse, AClickFocusesTheCellAndTellsOnlyOfAnotherRow) {
    GridWindow window;
    window.fill(6, 3);
    SetFocus(window.ownerControl(GridWindow::beforeId));
    window.click(2, 1);
    EXPECT_EQ(GetFocus(), window.grid.handle());
    EXPECT_EQ(focusOf(window), (GridPosition{2, 1}));
    window.click(2, 2);
    window.click(2, 2);
    EXPECT_EQ(focusOf(window), (GridPosition{2, 2}));
    window.click(4, 2);
    EXPECT_EQ(window.takeEvents(), (Events{rowChanged(2, 1), rowChanged(4, 2)}));
    // Programs that move the focus know it.
    window.grid.focusCell(1, 1);
    window.grid.moveFocusRow(3);
    EXPECT_EQ(focusOf(window), (GridPosition{3, 1}));
    window.click(3, 0);
    EXPECT_EQ(window.takeEvents(), Events{});
}

TEST(GridMouse, HeadersAndTheEmptySpaceTakeNoFocus) {
    GridWindow window;
    window.fill(4, 2, 50);
    window.grid.focusCell(2, 1);
    window.click(0, 0);
    window.clickAt({250, 30});
    window.clickAt({20, 170});
    window.doubleClick(0, 1);
    EXPECT_EQ(focusOf(window), (GridPosition{2, 1}));
    EXPECT_EQ(window.takeEvents(), Events{});
    window.grid.focusCell(0, 1);
    EXPECT_EQ(focusOf(window), GridPosition{}) << "a header row has no cell that can have it";
}

TEST(GridMouse, DraggingAndShiftSelectABlock) {
    GridWindow window;
    window.fill(8, 4);
    window.drag(window.middle(2, 1), window.middle(4, 2));
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{2, 1}, GridPosition{4, 2}}));
    EXPECT_TRUE(window.grid.isSelected(3, 1));
    EXPECT_FALSE(window.grid.isSelected(3, 3));
    EXPECT_FALSE(window.grid.isSelected(0, 1));
    window.click(1, 0, withShift);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{1, 0}, GridPosition{2, 1}}));
    EXPECT_EQ(focusOf(window), (GridPosition{1, 0}));
    window.click(5, 3);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{5, 3}, GridPosition{5, 3}}));
    window.takeEvents();
    window.press('A', withControl);
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{1, 0}, GridPosition{7, 3}}));
    EXPECT_EQ(focusOf(window), (GridPosition{5, 3}));
    EXPECT_EQ(window.takeEvents(), Events{});
    window.press(VK_LEFT);
    EXPECT_FALSE(window.grid.isSelected(1, 0));

    window.grid.setSingleRowSelection(true);
    window.drag(window.middle(2, 1), window.middle(6, 1));
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{6, 1}, GridPosition{6, 1}}));
}

TEST(GridMouse, ListModeSelectsWholeRows) {
    GridWindow window;
    window.fill(8, 4);
    window.grid.setFixedColumnCount(1);
    window.grid.setListMode(true);
    window.click(3, 2);
    EXPECT_TRUE(window.grid.isSelected(3, 1) && window.grid.isSelected(3, 3));
    EXPECT_FALSE(window.grid.isSelected(4, 2));
    window.click(5, 2, withShift);
    EXPECT_TRUE(window.grid.isSelected(4, 3) && window.grid.isSelected(5, 1));
    window.click(2, 0);
    EXPECT_EQ(focusOf(window), (GridPosition{2, 2})) << "the row's header stands for the row";
    // Lists are filled before anybody chose a column.
    window.grid.focusCell(-1, -1);
    window.grid.moveFocusRow(1);
    EXPECT_EQ(focusOf(window), (GridPosition{1, 1}));
}

TEST(GridMouse, DraggingOutsideScrollsOn) {
    GridWindow window({300, 150});
    window.fill(40, 3);
    window.mouseDown(window.middle(2, 1));
    window.takeEvents();
    window.mouseMove({100, 150 + 2 * window.grid.rowHeight()});
    EXPECT_TRUE(window.pumpUntil([&] { return window.grid.focusedRow() == 39; }));
    window.mouseMove({100, -5});
    EXPECT_TRUE(window.pumpUntil([&] { return window.grid.focusedRow() == 1; }));
    window.mouseUp({100, -5});
    EXPECT_EQ(window.grid.selectedBlock(), (std::pair{GridPosition{1, 1}, GridPosition{2, 1}}));
    EXPECT_NE(GetCapture(), window.grid.handle());
    int before = 2;
    for (const GridEvent& event : window.takeEvents(gridSelectionChanged)) {
        EXPECT_NE(event.row, before) << "each row is told once";
        before = event.row;
    }
    EXPECT_EQ(before, 1);
}

TEST(GridMouse, AnEdgeOfAHeaderResizesItsColumn) {
    GridWindow window;
    window.fill(4, 4);
    window.grid.setColumnWidth(1, 0);
    window.pump();
    POINT edge = edgeOf(window, 0);
    window.drag(edge, {edge.x + 37, edge.y});
    EXPECT_EQ(window.grid.columnWidth(0), 117);
    EXPECT_EQ(window.grid.columnWidth(1), 0) << "the hidden column stays hidden";
    EXPECT_EQ(window.grid.columnWidth(2), 80);
    edge = edgeOf(window, 2);
    window.drag(edge, {edge.x - 500, edge.y});
    EXPECT_GT(window.grid.columnWidth(2), 0) << "no column vanishes by dragging";
    EXPECT_EQ(window.takeEvents(), Events{});

    edge = edgeOf(window, 3);
    window.mouseDown(edge);
    window.mouseMove({edge.x + 20, edge.y});
    EXPECT_EQ(window.grid.columnWidth(3), 100);
    window.press(VK_ESCAPE);
    EXPECT_EQ(window.grid.columnWidth(3), 80);
    EXPECT_TRUE(window.takeCommands().empty()) << "Escape ended the dragging, not the dialog";
    window.mouseUp(edge);

    window.grid.setText(2, 3, L"a text that needs more room than there is");
    window.doubleClickAt(edgeOf(window, 3));
    const RECT room = window.grid.textArea(2, 3, window.grid.cellArea(2, 3).value());
    EXPECT_EQ(room.right - room.left, window.grid.textWidth(window.grid.text(2, 3)) + 1);
    EXPECT_EQ(window.grid.columnWidth(0), 117);
}

TEST(GridMouse, HeadersSortWhereTheyAreMadeTo) {
    GridWindow window;
    window.fill(4, 2);
    const auto texts = [&] {
        return window.grid.text(1, 1) + window.grid.text(2, 1) + window.grid.text(3, 1);
    };
    window.grid.setText(1, 1, L"b");
    window.grid.setText(2, 1, L"c");
    window.grid.setText(3, 1, L"a");
    window.click(0, 1);
    EXPECT_EQ(texts(), L"bca");
    window.grid.setHeaderSort(true);
    window.click(0, 1);
    EXPECT_EQ(texts(), L"abc");
    EXPECT_EQ(window.grid.sortColumn(), 1);
    window.click(0, 1);
    EXPECT_EQ(texts(), L"cba");
    EXPECT_FALSE(window.grid.sortsAscending());
    // Released elsewhere: nothing happens.
    window.drag(window.middle(0, 1), window.middle(2, 1));
    EXPECT_EQ(texts(), L"cba");
    window.click(0, 0);
    EXPECT_TRUE(window.grid.sortsAscending());
    EXPECT_EQ(window.takeEvents(), Events{});
}

TEST(GridMouse, ACheckBoxTogglesWhenTheButtonIsReleasedOverIt) {
    GridWindow window;
    window.fill(5, 3);
    window.grid.setCheckBoxColumn(1);
    for (int row = 1; row < 5; ++row)
        window.grid.setText(row, 1, L"0");
    window.grid.setReadOnly(3, 1);
    window.grid.focusCell(2, 1);
    const GridEvent toggled{gridEndEdit, 2, 1, {}};
    window.click(2, 1);
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1");
    EXPECT_EQ(window.takeEvents(), Events{toggled}) << "without asking the owner first";
    window.doubleClick(2, 1);
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1") << "twice";
    EXPECT_EQ(window.takeEvents(), (Events{toggled, toggled}));
    window.drag(window.middle(2, 1), window.middle(2, 2));
    EXPECT_EQ(window.grid.valueText(2, 1), L"-1");
    window.mouseDown(window.middle(2, 1));
    window.mouseMove(window.middle(1, 0));
    window.mouseMove(window.middle(2, 1));
    window.mouseUp(window.middle(2, 1));
    EXPECT_EQ(window.grid.valueText(2, 1), L"0") << "back over the box";
    window.takeEvents();
    window.click(3, 1);
    window.doubleClick(3, 1);
    EXPECT_EQ(window.grid.valueText(3, 1), L"0");
    EXPECT_EQ(window.takeEvents(), Events{rowChanged(3, 1)}) << "read-only";
}

TEST(GridMouse, ADoubleClickStartsEditing) {
    GridWindow window;
    window.fill(4, 2);
    window.doubleClick(2, 1);
    EXPECT_TRUE(window.grid.isEditing());
    EXPECT_EQ(window.takeEvents(), (Events{rowChanged(2, 1), {gridBeginEdit, 2, 1, {}}}));
    // A click on another cell ends it there.
    window.click(3, 0);
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(window.takeEvents(), (Events{{gridEndEdit, 2, 1, {}}, rowChanged(3, 0)}));
    // Scrolling, too: the editor would lie over another cell.
    window.grid.setRowCount(100);
    window.doubleClick(2, 1);
    EXPECT_TRUE(window.grid.isEditing());
    window.wheel(-WHEEL_DELTA);
    EXPECT_FALSE(window.grid.isEditing());
}

TEST(GridMouse, TheArrowOfTheFocusedDropDownOpensIt) {
    GridWindow window;
    window.fill(4, 2);
    window.grid.setCellChoices(2, 1, {L"one", L"two"}, false);
    const RECT area = window.grid.cellArea(2, 1).value();
    const POINT arrow{area.right - 6, (area.top + area.bottom) / 2};
    window.clickAt(arrow);
    EXPECT_FALSE(window.grid.isEditing()) << "the first click shows the arrow";
    window.clickAt(arrow);
    EXPECT_NE(window.grid.dropDownEditor(), nullptr);
}

// The owner may do anything when it is told of something.
TEST(GridMouse, AnOwnerThatClosesWhileTheMouseIsHeldIsNoFault) {
    GridWindow window;
    window.fill(40, 3);
    window.mouseDown(window.middle(2, 1));
    window.answer = [&](const GridEvent&) -> LRESULT {
        window.destroyOwner();
        return 0;
    };
    window.mouseMove(window.middle(3, 1));
    EXPECT_EQ(window.grid.handle(), nullptr);
    EXPECT_EQ(window.grid.focusedRow(), 3);
    // The object goes on without a window.
    window.grid.focusCell(1, 1);
    window.grid.setText(1, 1, L"x");
    window.grid.setColumnWidth(1, 20);
    window.grid.autoSizeColumns();
    window.grid.extendLastColumn();
    window.grid.ensureVisible(30, 2);
    window.grid.setRedraw(true, true);
}

TEST(GridMouse, AnOwnerThatEmptiesTheGridDuringAClickIsNoFault) {
    for (const int code : {gridSelectionChanged, gridBeginEdit, gridEndEdit}) {
        GridWindow window;
        window.fill(10, 3);
        window.grid.setCheckBoxColumn(2);
        window.answer = [&](const GridEvent& event) -> LRESULT {
            if (event.code == code)
                window.grid.setRowCount(1);
            return 0;
        };
        const POINT text = window.middle(5, 1), box = window.middle(6, 2), other = window.middle(7, 0);
        window.doubleClickAt(text);
        window.mouseDown(box);
        window.mouseUp(box);
        window.drag(other, text);
        EXPECT_EQ(window.grid.rowCount(), 1);
        EXPECT_EQ(window.grid.focusedRow(), -1);
    }
}

TEST(GridMouse, ALostCaptureEndsTheDragging) {
    GridWindow window;
    window.fill(10, 3);
    window.mouseDown(window.middle(2, 1));
    SetCapture(window.ownerControl(GridWindow::afterId));
    ReleaseCapture();
    window.mouseMove(window.middle(5, 1));
    EXPECT_EQ(window.grid.focusedRow(), 2);
    const POINT edge = edgeOf(window, 1);
    window.mouseDown(edge);
    window.mouseMove({edge.x + 30, edge.y});
    EXPECT_EQ(window.grid.columnWidth(1), 110);
    SetCapture(window.ownerControl(GridWindow::afterId));
    ReleaseCapture();
    EXPECT_EQ(window.grid.columnWidth(1), 80);
}

}  // namespace
}  // namespace tessary::testing
