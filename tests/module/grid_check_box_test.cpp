#include "module/grid/grid_notifications.h"
#include "tests/module/grid_window.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tessary::testing {

namespace {

using Events = std::vector<GridEvent>;

// Column 1 holds check boxes, none of them checked; row 2's is read-only.
struct CheckBox : ::testing::Test {
    CheckBox() {
        window.grid.setRowCount(0);
        window.grid.setColumnCount(3);
        window.grid.setCheckBoxColumn(1);
        window.fill(4, 3);
        for (int row = 1; row < 4; ++row)
            window.grid.setText(row, 1, L"0");
        window.grid.setReadOnly(2, 1);
        window.grid.focusCell(1, 0);
        window.takeEvents();
    }
    std::wstring value(int row) const { return window.grid.valueText(row, 1); }
    GridWindow window;
};

}  // namespace

TEST_F(CheckBox, TextsOtherThanZeroCheckIt) {
    for (const auto& [text, checked] :
         {std::pair(L"1", L"-1"), std::pair(L"0", L"0"), std::pair(L"-1", L"-1"), std::pair(L"", L"-1"),
          std::pair(L"no", L"-1"), std::pair(L"00", L"-1")}) {
        window.grid.setText(1, 1, text);
        EXPECT_EQ(value(1), checked) << text;
    }
}

TEST_F(CheckBox, ReleaseOverItTogglesAndTellsTheOwnerOnce) {
    window.mouseDown(window.middle(1, 1));
    EXPECT_EQ(value(1), L"0");
    window.mouseUp(window.middle(1, 1));
    EXPECT_EQ(value(1), L"-1");
    EXPECT_EQ(window.takeEvents(gridEndEdit), (Events{{gridEndEdit, 1, 1, {}}}));
    window.click(1, 1);
    EXPECT_EQ(value(1), L"0");
    EXPECT_EQ(window.takeEvents(), (Events{{gridEndEdit, 1, 1, {}}})) << "no begin of an edit is told";
    EXPECT_FALSE(window.grid.isEditing());
}

TEST_F(CheckBox, ReleaseElsewhereLeavesIt) {
    window.drag(window.middle(1, 1), window.middle(3, 2));
    window.drag(window.middle(3, 2), window.middle(1, 1));
    EXPECT_EQ(value(1), L"0");
    EXPECT_EQ(value(3), L"0");
    EXPECT_TRUE(window.takeEvents(gridEndEdit).empty());
}

TEST_F(CheckBox, DoubleClickTogglesOnceMore) {
    window.doubleClick(3, 1);
    EXPECT_EQ(value(3), L"0");
    EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 2U) << "the first click, and the double click";
}

TEST_F(CheckBox, NothingHappensToAReadOnlyOne) {
    window.click(2, 1);
    window.doubleClick(2, 1);
    window.type(L" ");
    EXPECT_EQ(value(2), L"0");
    EXPECT_EQ(window.takeEvents(), (Events{{gridSelectionChanged, 2, 1, {}}}));
}

TEST_F(CheckBox, OwnerThatRefusesEditsDoesNotStopIt) {
    window.answer = [](const GridEvent&) { return gridRefuse; };
    window.click(1, 1);
    EXPECT_EQ(value(1), L"-1");
    EXPECT_TRUE(window.takeEvents(gridBeginEdit).empty());
}

TEST_F(CheckBox, OwnerSeesTheNewStateAndMayDoAnything) {
    const std::vector<std::function<void()>> deeds{
        [&] { window.grid.deleteRow(1); }, [&] { window.fill(2, 1); }, [&] { window.destroyOwner(); }};
    for (const auto& deed : deeds) {
        std::wstring seen;
        window.answer = [&](const GridEvent& event) {
            if (event.code == gridEndEdit) {
                seen = value(1);
                deed();
            }
            return 0;
        };
        window.grid.setRowCount(0);
        window.grid.setColumnCount(3);
        window.grid.setCheckBoxColumn(1);
        window.fill(4, 3);
        window.grid.setText(1, 1, L"0");
        window.click(1, 1);
        EXPECT_EQ(seen, L"-1");
    }
}

TEST_F(CheckBox, IsDrawnAnewWhenItToggles) {
    const auto pixels = [&] {
        UpdateWindow(window.grid.handle());
        const RECT area = window.grid.cellArea(1, 1).value();
        const framework::ClientContext context(window.grid.handle());
        std::vector<COLORREF> colors;
        for (int y = area.top; y < area.bottom; ++y) {
            for (int x = area.left; x < area.right; ++x)
                colors.push_back(GetPixel(context.get(), x, y));
        }
        return colors;
    };
    window.grid.focusCell(1, 1);
    const auto unchecked = pixels();
    window.mouseDown(window.middle(1, 1));
    EXPECT_NE(pixels(), unchecked) << "it is not seen that the box is pressed";
    window.mouseUp(window.middle(1, 1));
    const auto checked = pixels();
    EXPECT_NE(checked, unchecked);
    window.click(1, 1);
    EXPECT_EQ(pixels(), unchecked);
}

}  // namespace tessary::testing
