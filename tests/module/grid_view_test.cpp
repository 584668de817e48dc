// Where the grid shows its cells, and how it scrolls.

#include "grid_window.h"
#include "module/grid/grid_notifications.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace tessary::testing {
namespace {

RECT clientOf(const CGridCtrl& grid) {
    RECT client{};
    GetClientRect(grid.handle(), &client);
    return client;
}

int firstSeenRow(const GridWindow& window) {
    const int header = window.grid.fixedRowCount() * window.grid.rowHeight();
    return window.grid.cellAt({2, header}).row;
}

// The data row at the lower edge of the window.
int lastSeenRow(const GridWindow& window) {
    return window.grid.cellAt({2, clientOf(window.grid).bottom - 1}).row;
}

SCROLLINFO scrollInfo(const GridWindow& window, int bar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(window.grid.handle(), bar, &info);
    return info;
}

// As the system does while the thumb is dragged: the position stands in the scroll bar, not in the message.
void dragThumbTo(GridWindow& window, int position) {
    SCROLLINFO info = scrollInfo(window, SB_VERT);
    info.fMask = SIF_POS;
    info.nPos = position;
    SetScrollInfo(window.grid.handle(), SB_VERT, &info, FALSE);
    SendMessageW(window.grid.handle(), WM_VSCROLL, MAKEWPARAM(SB_THUMBTRACK, position & 0xFFFF), 0);
    window.pump();
}

void expectHitsItsCells(const GridWindow& window) {
    const CGridCtrl& grid = window.grid;
    const RECT client = clientOf(grid);
    for (int row = 0; row < grid.rowCount(); ++row) {
        for (int column = 0; column < grid.columnCount(); ++column) {
            const auto area = grid.cellArea(row, column);
            if (!area)
                continue;
            const POINT corners[]{{area->left, area->top}, {area->right - 1, area->bottom - 1}};
            for (const POINT& corner : corners) {
                const GridPosition hit = grid.cellAt(corner);
                // What is scrolled beneath a header belongs to the header.
                const bool covered = hit.row < row && hit.row < grid.fixedRowCount();
                const bool coveredAtLeft = hit.column < column && hit.column < grid.fixedColumnCount();
                if (!PtInRect(&client, corner) || covered || coveredAtLeft)
                    continue;
                EXPECT_EQ(hit, (GridPosition{row, column})) << row << ", " << column << " hit " << hit.row;
            }
        }
    }
}

TEST(GridView, EveryPointOfACellHitsThatCellWhereverItIsScrolled) {
    GridWindow window({300, 150});
    window.fill(12, 6);
    window.grid.setColumnWidth(2, 0);
    window.grid.setFixedColumnCount(1);
    window.pump();
    expectHitsItsCells(window);
    window.grid.ensureVisible(8, 5);
    expectHitsItsCells(window);
    EXPECT_EQ(window.grid.cellArea(3, 2), std::nullopt) << "a hidden column has no place";
    EXPECT_EQ(window.grid.cellArea(12, 0), std::nullopt);
    EXPECT_EQ(window.grid.cellArea(-1, 0), std::nullopt);
    const RECT header = window.grid.cellArea(0, 0).value();
    EXPECT_EQ(header.left, 0);
    EXPECT_EQ(header.top, 0);
}

TEST(GridView, PointsBesideAllCellsHitNone) {
    GridWindow window({300, 200});
    window.fill(3, 2, 40);
    EXPECT_EQ(window.grid.cellAt({100, 5}), GridPosition{});
    EXPECT_EQ(window.grid.cellAt({5, 150}), GridPosition{});
    EXPECT_EQ(window.grid.cellAt({-1, 5}), GridPosition{});
    EXPECT_EQ(window.grid.cellAt({5, -1}), GridPosition{});
}

TEST(GridView, ALargerFontMakesHigherRows) {
    GridWindow window;
    window.fill(3, 2);
    const int before = window.grid.rowHeight();
    const framework::Font large(CreateFontW(-30, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0,
                                            0, 0, 0, L"MS Shell Dlg"));
    const int width = window.grid.textWidth(L"layer");
    SendMessageW(window.grid.handle(), WM_SETFONT, reinterpret_cast<WPARAM>(large.get()), TRUE);
    EXPECT_GT(window.grid.rowHeight(), before * 3 / 2);
    EXPECT_GT(window.grid.textWidth(L"layer"), width * 3 / 2);
    EXPECT_EQ(window.grid.cellArea(1, 0)->bottom, 2 * window.grid.rowHeight());
    SendMessageW(window.grid.handle(), WM_SETFONT, 0, FALSE);
}

TEST(GridView, TextsAreAsWideAsTheSystemDrawsThem) {
    GridWindow window;
    const framework::ClientContext context(window.grid.handle());
    const framework::Selected font(context.get(), window.grid.font());
    const std::wstring texts[]{L"",           L"Layer Name", L"Select color. . .",          L"iiiWWW",
                               L"\x416\x438", L"0.25 mm",    L"a\x0301\x0302 \x05d0\x05d1", L"\xd83d\xde00!"};
    for (const std::wstring& text : texts) {
        SIZE size{};
        GetTextExtentPoint32W(context.get(), text.data(), static_cast<int>(text.size()), &size);
        EXPECT_EQ(window.grid.textWidth(text), size.cx);
    }
}

TEST(GridView, AutoSizeFitsTheWidestTextAndLeavesHiddenColumns) {
    GridWindow window;
    window.fill(50, 4, 10);
    window.grid.setColumnWidth(1, 0);
    window.grid.setText(33, 2, L"the widest text of this column, by far");
    window.grid.setDropDownColumn(3, false);
    window.grid.autoSizeColumns();
    EXPECT_EQ(window.grid.columnWidth(1), 0);
    for (const int column : {0, 2, 3}) {
        int widest = 0;
        for (int row = 0; row < 50; ++row) {
            const RECT area = window.grid.cellArea(row, column).value();
            const RECT room = window.grid.textArea(row, column, area);
            widest = std::max(widest, window.grid.textWidth(window.grid.text(row, column)));
            EXPECT_LE(window.grid.textWidth(window.grid.text(row, column)), room.right - room.left);
        }
        EXPECT_LT(window.grid.columnWidth(column), widest + 40) << "no wider than it needs";
    }
    // The arrow of a focused drop-down does not cover its text.
    window.grid.focusCell(9, 3);
    const RECT room = window.grid.textArea(9, 3, window.grid.cellArea(9, 3).value());
    EXPECT_LE(window.grid.textWidth(window.grid.text(9, 3)), room.right - room.left);
}

TEST(GridView, TheLastVisibleColumnFillsTheWindow) {
    GridWindow window({400, 200});
    window.fill(5, 4, 50);
    window.grid.setColumnWidth(3, 0);
    window.grid.extendLastColumn();
    EXPECT_EQ(window.grid.cellArea(1, 2)->right, clientOf(window.grid).right);
    EXPECT_EQ(window.grid.columnWidth(3), 0);
    window.grid.setColumnWidth(0, 1000);
    window.grid.extendLastColumn();
    EXPECT_EQ(window.grid.columnWidth(0), 1000) << "it ends outside already";
}

TEST(GridView, ScrollBarsAreThereWhenTheyAreNeeded) {
    GridWindow window({300, 150});
    const auto bars = [&] {
        return GetWindowLongW(window.grid.handle(), GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL);
    };
    window.fill(3, 2);
    EXPECT_EQ(bars(), 0);
    window.grid.setRowCount(100);
    window.pump();
    EXPECT_EQ(bars(), WS_VSCROLL);
    // The vertical bar takes the room that the columns would just have fitted in.
    window.grid.setRowCount(3);
    window.pump();
    window.grid.setColumnWidth(1, static_cast<int>(clientOf(window.grid).right) - 80);
    window.pump();
    EXPECT_EQ(bars(), 0);
    window.grid.setRowCount(100);
    window.pump();
    EXPECT_EQ(bars(), WS_VSCROLL | WS_HSCROLL);
    window.grid.setColumnWidth(1, 0);
    window.grid.setRowCount(1);
    window.pump();
    EXPECT_EQ(bars(), 0);
    // Rows and columns that fill the window to the last pixel need none; one pixel more needs both.
    const RECT client = clientOf(window.grid);
    const int fitting = static_cast<int>(client.bottom) / window.grid.rowHeight();
    SetWindowPos(window.grid.handle(), nullptr, 0, 0, 300, fitting * window.grid.rowHeight() + 2,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    window.grid.setRowCount(fitting);
    window.grid.setColumnWidth(0, static_cast<int>(client.right));
    window.pump();
    EXPECT_EQ(bars(), 0);
    window.grid.setColumnWidth(0, static_cast<int>(client.right) + 1);
    window.pump();
    EXPECT_EQ(bars(), WS_VSCROLL | WS_HSCROLL);
    window.grid.setColumnWidth(0, static_cast<int>(client.right));
    window.pump();
    EXPECT_EQ(bars(), 0) << "neither bar stays because of the other";
}

TEST(GridView, AHundredThousandRowsScrollToTheLastByThumbWheelAndProgram) {
    GridWindow window({300, 200});
    window.grid.setRedraw(false);
    window.grid.setColumnCount(2);
    window.grid.setRowCount(100001);
    window.grid.setFixedRowCount(1);
    window.grid.setColumnWidth(0, 100);
    window.grid.setColumnWidth(1, 100);
    window.grid.setRedraw(true, true);
    window.pump();
    const SCROLLINFO info = scrollInfo(window, SB_VERT);
    const int end = info.nMax - static_cast<int>(info.nPage) + 1;
    EXPECT_GT(end, 0xFFFF) << "positions that a message cannot carry";
    dragThumbTo(window, end);
    EXPECT_EQ(window.grid.cellArea(100000, 0)->bottom <= clientOf(window.grid).bottom, true);
    dragThumbTo(window, end / 2);
    EXPECT_NEAR(firstSeenRow(window), 50000, 20);
    window.grid.scrollToTop(70000);
    EXPECT_EQ(firstSeenRow(window), 70000);
    EXPECT_EQ(scrollInfo(window, SB_VERT).nPos, 69999 * window.grid.rowHeight());
    UINT lines = 0;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    window.wheel(-WHEEL_DELTA);
    EXPECT_EQ(firstSeenRow(window), 70000 + static_cast<int>(lines));
    window.wheel(2 * WHEEL_DELTA);
    EXPECT_EQ(firstSeenRow(window), 70000 - static_cast<int>(lines));
    // A fine wheel's parts of a notch add up to it.
    for (int part = 0; part < 10; ++part)
        window.wheel(-WHEEL_DELTA / 10);
    EXPECT_EQ(firstSeenRow(window), 70000);
    window.grid.scrollToTop(100000);
    EXPECT_EQ(lastSeenRow(window) == 100000 || lastSeenRow(window) == -1, true);
    EXPECT_EQ(window.takeEvents().size(), 0u) << "scrolling moves no focus";
}

// What stands on the screen in the vertical scroll bar's place.
std::vector<COLORREF> scrollBarPixels(const GridWindow& window) {
    SCROLLBARINFO info{};
    info.cbSize = sizeof info;
    GetScrollBarInfo(window.grid.handle(), OBJID_VSCROLL, &info);
    RECT place{};
    GetWindowRect(window.grid.handle(), &place);
    const framework::WindowContext context(window.grid.handle());
    std::vector<COLORREF> pixels;
    const LONG x = (info.rcScrollBar.left + info.rcScrollBar.right) / 2 - place.left;
    for (LONG y = info.rcScrollBar.top; y < info.rcScrollBar.bottom; ++y)
        pixels.push_back(GetPixel(context.get(), x, y - place.top));
    return pixels;
}

TEST(GridView, TheThumbIsDrawnAfterTheRows) {
    GridWindow window({300, 200});
    window.fill(1000, 1);
    window.pump();
    const std::vector<COLORREF> top = scrollBarPixels(window);
    window.grid.scrollToTop(500);
    window.grid.scrollToTop(900);
    UpdateWindow(window.grid.handle());
    EXPECT_EQ(scrollBarPixels(window), top) << "the rows are there, and waited for nothing";
    EXPECT_TRUE(window.pumpUntil([&] { return scrollBarPixels(window) != top; }, 2000));
    const std::vector<COLORREF> drawn = scrollBarPixels(window);
    RedrawWindow(window.grid.handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    EXPECT_EQ(scrollBarPixels(window), drawn);
}

TEST(GridView, ScrollBarButtonsMoveByLinesAndPages) {
    GridWindow window({300, 200});
    window.fill(200, 8);
    const auto scroll = [&](UINT message, int code) {
        SendMessageW(window.grid.handle(), message, MAKEWPARAM(code, 0), 0);
        window.pump();
    };
    scroll(WM_VSCROLL, SB_LINEDOWN);
    EXPECT_EQ(firstSeenRow(window), 2);
    const int lastBefore = lastSeenRow(window);
    scroll(WM_VSCROLL, SB_PAGEDOWN);
    EXPECT_GT(firstSeenRow(window), 2);
    EXPECT_LE(firstSeenRow(window), lastBefore) << "no row is passed over";
    scroll(WM_VSCROLL, SB_PAGEUP);
    EXPECT_EQ(firstSeenRow(window), 2);
    scroll(WM_VSCROLL, SB_BOTTOM);
    EXPECT_EQ(window.grid.cellArea(199, 0)->bottom <= clientOf(window.grid).bottom, true);
    scroll(WM_VSCROLL, SB_TOP);
    EXPECT_EQ(firstSeenRow(window), 1);
    scroll(WM_HSCROLL, SB_BOTTOM);
    EXPECT_EQ(window.grid.cellArea(1, 7)->right, clientOf(window.grid).right);
    scroll(WM_HSCROLL, SB_TOP);
    EXPECT_EQ(window.grid.cellArea(1, 0)->left, 0);
    window.wheel(WHEEL_DELTA, true);
    EXPECT_LT(window.grid.cellArea(1, 0)->left, 0);
    EXPECT_EQ(window.grid.cellArea(0, 0)->left, window.grid.cellArea(1, 0)->left) << "headers move along";
    SendMessageW(window.grid.handle(), WM_MOUSEWHEEL, MAKEWPARAM(MK_SHIFT, WHEEL_DELTA), 0);
    EXPECT_EQ(window.grid.cellArea(1, 0)->left, 0);
}

TEST(GridView, ACellIsBroughtIntoViewByNoMoreThanItNeeds) {
    GridWindow window({300, 200});
    window.fill(100, 10);
    const RECT client = clientOf(window.grid);
    window.grid.ensureVisible(40, 6);
    RECT area = window.grid.cellArea(40, 6).value();
    EXPECT_LE(area.bottom, client.bottom);
    EXPECT_GT(area.bottom, client.bottom - window.grid.rowHeight() - 1);
    EXPECT_EQ(area.right, client.right);
    const RECT before = window.grid.cellArea(35, 5).value();
    window.grid.ensureVisible(35, 5);
    const RECT same = window.grid.cellArea(35, 5).value();
    EXPECT_TRUE(EqualRect(&before, &same)) << "it was seen already";
    window.grid.ensureVisible(10, 0);
    EXPECT_EQ(firstSeenRow(window), 10);
    EXPECT_EQ(window.grid.cellArea(10, 0)->left, 0);
    // Dialogs focus cells of hidden columns, which hold what the row stands for.
    window.grid.setColumnWidth(3, 0);
    window.grid.ensureVisible(90, 3);
    EXPECT_LE(window.grid.cellArea(90, 0)->bottom, client.bottom);
    window.grid.ensureVisible(10, 0);
    // A column wider than the window shows its beginning.
    window.grid.setColumnWidth(9, 900);
    window.grid.ensureVisible(10, 9);
    area = window.grid.cellArea(10, 9).value();
    EXPECT_EQ(area.left, 0);
}

TEST(GridView, FewerRowsOrColumnsLeaveNoEmptyViewBehind) {
    GridWindow window({300, 200});
    window.fill(500, 10);
    window.grid.ensureVisible(499, 9);
    window.grid.setRowCount(5);
    window.grid.setColumnCount(2);
    window.pump();
    EXPECT_EQ(firstSeenRow(window), 1);
    EXPECT_EQ(window.grid.cellArea(1, 0)->left, 0);
}

TEST(GridView, RowsUnderACollapsedSectionHaveNoPlace) {
    GridWindow window;
    showSections(window.grid);
    window.pump();
    const int height = window.grid.rowHeight();
    EXPECT_EQ(window.grid.cellArea(4, 0)->top, 4 * height);
    // The box before the section's title.
    window.clickAt(window.inCell(1, 0, {8, height / 2}));
    EXPECT_EQ(window.grid.cellArea(2, 0), std::nullopt);
    EXPECT_EQ(window.grid.cellArea(4, 0)->top, 2 * height);
    EXPECT_EQ(window.grid.cellAt({2, 2 * height + 2}).row, 4);
    window.clickAt(window.inCell(1, 0, {8, height / 2}));
    EXPECT_EQ(window.grid.cellArea(2, 0)->top, 2 * height);
}

TEST(GridView, EnormousWidthsAreNoFault) {
    GridWindow window;
    window.fill(3, 4, std::numeric_limits<int>::max());
    window.grid.ensureVisible(2, 3);
    window.press(VK_END);
    window.wheel(WHEEL_DELTA, true);
    window.clickAt({20, 20});
    EXPECT_EQ(window.grid.columnWidth(3), GridModel::widestColumn);
    window.grid.autoSizeColumns();
    EXPECT_LT(window.grid.columnWidth(3), 200);
}

TEST(GridView, NothingToShowIsNoFault) {
    GridWindow window({0, 0});
    window.fill(20, 3);
    window.press(VK_DOWN);
    window.press(VK_NEXT);
    window.grid.ensureVisible(19, 2);
    window.clickAt({0, 0});
    SetWindowPos(window.grid.handle(), nullptr, 0, 0, 200, 100, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    window.pump();
    window.grid.setRowCount(0);
    window.grid.setColumnCount(0);
    window.pump();
    for (const UINT key : {VK_DOWN, VK_END, VK_NEXT, VK_HOME, VK_RETURN, VK_DELETE, VK_F2, VK_SPACE})
        window.press(key);
    window.press('A', withControl);
    window.press(VK_END, withControl);
    window.clickAt({20, 20});
    window.doubleClickAt({20, 20});
    window.wheel(-WHEEL_DELTA);
    window.grid.autoSizeColumns();
    window.grid.extendLastColumn();
    window.grid.scrollToTop(3);
    EXPECT_EQ(window.grid.focusedRow(), -1);
    window.takeEvents();

    window.fill(5, 3, 0);  // all columns hidden
    for (const UINT key : {VK_DOWN, VK_END, VK_NEXT, VK_RETURN, VK_TAB})
        window.press(key);
    window.drag({10, 10}, {50, 60});
    window.grid.autoSizeColumns();
    window.grid.extendLastColumn();
    EXPECT_EQ(window.takeEvents().size(), 0u);
    EXPECT_EQ(window.grid.columnWidth(1), 0);
}

TEST(GridView, ChangesWhileRedrawIsOffAreSeenAfterwards) {
    GridWindow window;
    window.fill(3, 2);
    RECT update{};
    window.grid.setRedraw(false);
    window.grid.setText(1, 0, L"new");
    window.grid.setRowCount(300);
    window.grid.refresh();
    EXPECT_FALSE(GetUpdateRect(window.grid.handle(), &update, FALSE)) << "nothing is repainted meanwhile";
    window.grid.setRedraw(true, true);
    EXPECT_FALSE(GetUpdateRect(window.grid.handle(), &update, FALSE)) << "it was painted at once";
    EXPECT_GT(scrollInfo(window, SB_VERT).nMax, 0);
}

}  // namespace
}  // namespace tessary::testing
