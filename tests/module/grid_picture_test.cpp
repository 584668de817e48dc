// What the grid looks like in each state. Where the variable TESSARY_PICTURES names a folder, the pictures
// are kept there, and tests/scripts/grid_pictures.py compares them with those it knows.

#include "framework/window_picture.h"
#include "grid_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace tessary::testing {
namespace {

using framework::WindowPicture;

std::uint32_t pixelOf(COLORREF color) {
    return static_cast<std::uint32_t>(GetRValue(color) << 16 | GetGValue(color) << 8 | GetBValue(color));
}

// The colour of the system with that number, as a pixel.
std::uint32_t systemPixel(int number) {
    return pixelOf(GetSysColor(number));
}

// A picture of the grid, which is kept under that name.
WindowPicture taken(GridWindow& window, const std::wstring& name) {
    window.pump();
    const WindowPicture picture = framework::takeWindowPicture(window.grid.handle());
    EXPECT_FALSE(picture.empty());
    if (const wchar_t* const folder = _wgetenv(L"TESSARY_PICTURES")) {
        std::wstring problem;
        const std::wstring file = std::wstring(folder) + L"\\" + name + L".png";
        EXPECT_TRUE(framework::savePicture(picture, file, problem))
            << std::string(problem.begin(), problem.end());
    }
    return picture;
}

// How much of a cell's inside has that colour, from 0 to 1.
double shareIn(const GridWindow& window, const WindowPicture& picture, int row, int column,
               std::uint32_t pixel) {
    RECT area = window.grid.cellArea(row, column).value();
    InflateRect(&area, -3, -3);
    constexpr int border = 1;
    int same = 0, all = 0;
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x, ++all)
            same += picture.at(x + border, y + border) == pixel;
    }
    return all == 0 ? 0 : static_cast<double>(same) / all;
}

void fillLayers(GridWindow& window) {
    const std::vector<std::vector<std::wstring>> rows{
        {L"Layer Name", L"Color", L"Linetype", L"Plot", L"Lineweight"},
        {L"M-DUCT-SUPPLY", L"5", L"Continuous", L"1", L"0.25 mm"},
        {L"M-DUCT-RETURN", L"3", L"HIDDEN", L"0", L"Default"},
        {L"E-LITE", L"40", L"Continuous", L"1", L"0.50 mm"},
        {L"E-POWR-CIRC-EMERGENCY", L"1", L"DASHDOT2", L"0", L"Default"},
        {L"P-SANR", L"110", L"Continuous", L"1", L"0.35 mm"}};
    const std::array<int, 5> widths{110, 45, 90, 40, 80};
    CGridCtrl& grid = window.grid;
    grid.setColumnCount(static_cast<int>(widths.size()));
    grid.setRowCount(static_cast<int>(rows.size()));
    grid.setFixedRowCount(1);
    grid.setCheckBoxColumn(3);
    grid.setColumnChoices(4, {L"Default", L"0.25 mm", L"0.35 mm", L"0.50 mm"});
    grid.setDropDownColumn(4, false);
    grid.applyColumnChoices(4);
    for (int column = 0; column < grid.columnCount(); ++column) {
        grid.setColumnWidth(column, widths[static_cast<std::size_t>(column)]);
        for (int row = 0; row < grid.rowCount(); ++row)
            grid.setText(row, column, rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
    }
}

class GridPictures : public ::testing::Test {
protected:
    GridPictures() { fillLayers(window); }
    double share(const WindowPicture& picture, int row, int column, std::uint32_t pixel) const {
        return shareIn(window, picture, row, column, pixel);
    }
    GridWindow window{{400, 140}};
};

TEST_F(GridPictures, PlainAndFocused) {
    const WindowPicture plain = taken(window, L"plain");
    EXPECT_GT(share(plain, 1, 0, systemPixel(COLOR_WINDOW)), 0.6);
    EXPECT_LT(share(plain, 1, 0, systemPixel(COLOR_WINDOW)), 0.98) << "there is text";
    EXPECT_GT(share(plain, 0, 0, systemPixel(COLOR_BTNFACE)), 0.6);
    window.grid.focusCell(2, 4);
    taken(window, L"focused-drop-down");
}

TEST_F(GridPictures, WhatIsPrintedIsWhatIsSeen) {
    const WindowPicture seen = framework::takeWindowPicture(window.grid.handle());
    RECT client{};
    GetClientRect(window.grid.handle(), &client);
    const framework::ClientContext screen(window.grid.handle());
    const framework::MemoryContext memory(screen.get(), client.right, client.bottom);
    SendMessageW(window.grid.handle(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory.get()), PRF_CLIENT);
    int different = 0;
    for (int y = 0; y < client.bottom; y += 3) {
        for (int x = 0; x < client.right; ++x)
            different += pixelOf(GetPixel(memory.get(), x, y)) != seen.at(x + 1, y + 1);
    }
    EXPECT_EQ(different, 0);
}

TEST_F(GridPictures, Selection) {
    window.drag(window.middle(2, 0), window.middle(4, 2));
    const WindowPicture active = taken(window, L"selection");
    EXPECT_GT(share(active, 3, 1, systemPixel(COLOR_HIGHLIGHT)), 0.5);
    EXPECT_GT(share(active, 4, 2, systemPixel(COLOR_WINDOW)), 0.5) << "the focused cell stands out";
    EXPECT_EQ(share(active, 5, 1, systemPixel(COLOR_HIGHLIGHT)), 0);
    SetFocus(window.ownerControl(GridWindow::afterId));
    const WindowPicture inactive = taken(window, L"selection-inactive");
    EXPECT_EQ(share(inactive, 3, 1, systemPixel(COLOR_HIGHLIGHT)), 0);
    EXPECT_LT(share(inactive, 3, 1, systemPixel(COLOR_WINDOW)), 0.5) << "it is still seen";
}

TEST_F(GridPictures, ListMode) {
    window.grid.setListMode(true);
    window.grid.focusCell(3, 0);
    const WindowPicture picture = taken(window, L"list-mode");
    for (int column = 0; column < 3; ++column)
        EXPECT_GT(share(picture, 3, column, systemPixel(COLOR_HIGHLIGHT)), 0.5);
}

TEST_F(GridPictures, CheckBoxes) {
    window.grid.setReadOnly(1, 3);
    const WindowPicture before = taken(window, L"check-boxes");
    window.mouseDown(window.middle(3, 3));
    const WindowPicture pushed = taken(window, L"check-box-pushed");
    EXPECT_NE(before.pixels, pushed.pixels);
    window.mouseMove(window.middle(3, 0));
    const WindowPicture left = taken(window, L"check-box-left");
    EXPECT_NE(left.pixels, pushed.pixels) << "the button would do nothing here";
    window.mouseUp(window.middle(3, 0));
}

TEST_F(GridPictures, Editors) {
    window.grid.focusCell(2, 0);
    window.grid.editFocusedCell();
    taken(window, L"text-editor");
    window.press(VK_ESCAPE);
    window.grid.focusCell(2, 4);
    window.grid.editFocusedCell();
    EXPECT_NE(window.grid.dropDownEditor(), nullptr);
    taken(window, L"drop-down");
    window.press(VK_ESCAPE);
}

// Where the first letter of a cell's text is dark: points from the cell's corner.
std::vector<std::pair<int, int>> firstLetter(const GridWindow& window, int row, int column) {
    constexpr int border = 1, widestLetter = 7;
    const WindowPicture picture = framework::takeWindowPicture(window.grid.handle());
    const RECT cell = window.grid.cellArea(row, column).value();
    const int start = static_cast<int>(window.grid.textArea(row, column, cell).left - cell.left);
    std::vector<std::pair<int, int>> dark;
    for (int y = 1; y < cell.bottom - cell.top - 1; ++y) {
        // From the cell's frame on, for a text that stands too far to the left.
        for (int x = 2; x < start + widestLetter; ++x) {
            const std::uint32_t pixel =
                picture.at(x + static_cast<int>(cell.left) + border, y + static_cast<int>(cell.top) + border);
            if (pixel == systemPixel(COLOR_WINDOWTEXT))
                dark.emplace_back(x, y);
        }
    }
    return dark;
}

TEST_F(GridPictures, TextDoesNotJumpWhenItsEditorOpens) {
    window.grid.setTreeColumn(2);  // whose texts are indented
    for (const int column : {0, 2}) {
        window.grid.focusCell(5, 4);
        window.pump();
        const auto shown = firstLetter(window, 2, column);
        EXPECT_GT(shown.size(), 10U);
        window.doubleClick(2, column);
        ASSERT_NE(window.grid.textEditor(), nullptr);
        window.pump();
        EXPECT_EQ(firstLetter(window, 2, column), shown);
        window.press(VK_ESCAPE);
    }
}

TEST_F(GridPictures, SortedHeaders) {
    window.grid.sortByColumn(compareGridTexts, 0, true);
    const WindowPicture up = taken(window, L"sorted-ascending");
    window.grid.sortByColumn(compareGridTexts, 0, false);
    const WindowPicture down = taken(window, L"sorted-descending");
    EXPECT_NE(up.pixels, down.pixels);
}

TEST_F(GridPictures, Disabled) {
    EnableWindow(window.grid.handle(), FALSE);
    const WindowPicture picture = taken(window, L"disabled");
    EXPECT_GT(share(picture, 1, 0, systemPixel(COLOR_BTNFACE)), 0.6);
    EXPECT_EQ(share(picture, 1, 0, systemPixel(COLOR_WINDOWTEXT)), 0);
}

TEST_F(GridPictures, ScrolledWithFixedColumns) {
    window.grid.setFixedColumnCount(1);
    window.grid.setColumnWidth(2, 200);
    for (int row = 6; row < 40; ++row) {
        window.grid.setRowCount(row + 1);
        window.grid.setText(row, 0, L"LAYER-" + std::to_wstring(row));
        window.grid.setText(row, 2, L"a linetype with a rather long name " + std::to_wstring(row));
    }
    window.grid.ensureVisible(30, 3);
    window.wheel(-WHEEL_DELTA / 10);
    taken(window, L"scrolled");
}

TEST_F(GridPictures, Sections) {
    window.grid.setRowCount(1);
    window.grid.setTreeColumn(0);
    int row = 0;
    for (const wchar_t* const title : {L"HVAC", L"Plumbing", L"Electrical"}) {
        window.grid.addSectionRow(title);
        for (int count = 0; count < 2; ++count) {
            row = window.grid.addTreeRow();
            window.grid.setText(row, 0, L"option " + std::to_wstring(row));
            window.grid.setText(row, 2, L"value");
        }
    }
    window.grid.setExpanded(4, false);
    const WindowPicture picture = taken(window, L"sections");
    EXPECT_GT(share(picture, 1, 2, systemPixel(COLOR_BTNFACE)), 0.5);
}

// Answers instead of the system when this program asks for a colour. Changing the system's own colours would
// change them for every program that runs at the same time.
DWORD WINAPI darkColor(int number) {
    switch (number) {
        case COLOR_WINDOW: return RGB(32, 32, 32);
        case COLOR_WINDOWTEXT: return RGB(235, 235, 235);
        case COLOR_BTNFACE: return RGB(56, 56, 56);
        case COLOR_BTNTEXT: return RGB(240, 240, 240);
        case COLOR_BTNSHADOW: return RGB(90, 90, 90);
        case COLOR_HIGHLIGHT: return RGB(255, 200, 60);
        case COLOR_HIGHLIGHTTEXT: return RGB(0, 0, 0);
        case COLOR_GRAYTEXT: return RGB(140, 140, 140);
        default: ADD_FAILURE() << "colour " << number; return 0;
    }
}

// Calls of GetSysColor that this program makes go through this pointer of its import table.
extern "C" DWORD(WINAPI* __imp_GetSysColor)(int);

class DarkColors {
public:
    DarkColors() : before_(replace(darkColor)) {}
    ~DarkColors() { replace(before_); }
    DarkColors(const DarkColors&) = delete;
    DarkColors& operator=(const DarkColors&) = delete;

private:
    using GetColor = DWORD(WINAPI*)(int);
    static GetColor replace(GetColor function) {
        DWORD protection = 0;
        VirtualProtect(&__imp_GetSysColor, sizeof(GetColor), PAGE_READWRITE, &protection);
        return std::exchange(__imp_GetSysColor, function);
    }
    GetColor before_;
};

TEST_F(GridPictures, AnotherColorScheme) {
    const DarkColors colors;
    window.drag(window.middle(2, 0), window.middle(3, 2));
    const WindowPicture picture = taken(window, L"dark-scheme");
    EXPECT_GT(share(picture, 1, 0, pixelOf(RGB(32, 32, 32))), 0.6);
    EXPECT_GT(share(picture, 2, 1, pixelOf(RGB(255, 200, 60))), 0.5);
    EXPECT_EQ(share(picture, 1, 0, pixelOf(RGB(255, 255, 255))), 0);
}

}  // namespace
}  // namespace tessary::testing
