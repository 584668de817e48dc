// Cut, copy and paste, by the keys, through the system's clipboard.

#include "module/grid/tabbed_text.h"
#include "tests/module/grid_window.h"

#include <gtest/gtest.h>

#include <cstring>

#include "module/grid/grid_notifications.h"

namespace {

using namespace tessary;
using namespace tessary::testing;

// What another program would put there or find there. Waits for the clipboard: test programs that run at the
// same time use it too.
class OtherProgram {
public:
    void put(const std::wstring& text) const {
        open();
        EmptyClipboard();
        const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
        std::memcpy(GlobalLock(memory), text.c_str(), size);
        GlobalUnlock(memory);
        SetClipboardData(CF_UNICODETEXT, memory);
        CloseClipboard();
    }
    std::wstring take() const {
        open();
        const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
        const std::wstring text = memory ? static_cast<const wchar_t*>(GlobalLock(memory)) : L"(nothing)";
        if (memory)
            GlobalUnlock(memory);
        CloseClipboard();
        return text;
    }
    void empty() const {
        open();
        EmptyClipboard();
        CloseClipboard();
    }

private:
    static void open() {
        for (int tries = 0; tries < 500 && !OpenClipboard(nullptr); ++tries)
            Sleep(10);
    }
};

// A header, rows of text, a check box, an editable drop-down, a choice-only one and a hidden column.
class GridClipboard : public ::testing::Test {
protected:
    enum Column { text, check, free, choice, hidden, last };
    GridWindow window{{600, 300}};
    CGridCtrl& grid = window.grid;
    OtherProgram other;

    void SetUp() override {
        grid.setColumnCount(6);
        grid.setRowCount(5);
        grid.setFixedRowCount(1);
        grid.setCheckBoxColumn(check);
        grid.setColumnChoicesFromText(free, L"|red|green");
        grid.setColumnChoicesFromText(choice, L"Round|Square");
        for (const int column : {free, choice})
            grid.applyColumnChoices(column);
        for (int column = 0; column < 6; ++column)
            grid.setColumnWidth(column, column == hidden ? 0 : 80);
        for (int row = 1; row < 5; ++row) {
            grid.setText(row, text, L"t" + std::to_wstring(row));
            grid.setText(row, check, row == 2 ? L"1" : L"0");
            grid.setText(row, choice, L"Round");
            grid.setText(row, hidden, L"secret");
            grid.setText(row, last, L"l" + std::to_wstring(row));
        }
        window.takeEvents();
    }
    std::wstring rowText(int row) const {
        std::wstring joined;
        for (int column = 0; column < 6; ++column)
            joined += (column ? L"|" : L"") + grid.text(row, column);
        return joined;
    }
    void pasteAt(int row, int column, const std::wstring& content) {
        other.put(content);
        window.click(row, column);
        window.takeEvents();
        window.press('V', withControl);
    }
};

TEST(TabbedText, KeepsEveryCellThroughACopyAndAPaste) {
    const TextBlock block{{L"a", L"", L"b\tc"}, {L"say \"x\"", L"two\r\nlines", L"\""}, {L"", L"", L""}};
    const std::wstring copied = toTabbedText(block);
    EXPECT_EQ(copied, L"a\t\t\"b\tc\"\r\n\"say \"\"x\"\"\"\t\"two\r\nlines\"\t\"\"\"\"\r\n\t\t\r\n");
    EXPECT_EQ(fromTabbedText(copied), block);
}

TEST(TabbedText, ReadsWhatOtherProgramsWrite) {
    EXPECT_EQ(fromTabbedText(L""), TextBlock{});
    EXPECT_EQ(fromTabbedText(L"a"), (TextBlock{{L"a"}}));
    EXPECT_EQ(fromTabbedText(L"a\nb\r\rc\t"), (TextBlock{{L"a"}, {L"b"}, {L""}, {L"c", L""}}));
    EXPECT_EQ(fromTabbedText(L"\"open\tto the end"), (TextBlock{{L"open\tto the end"}}));
    EXPECT_EQ(fromTabbedText(L"\"a\"b\tc\"d"), (TextBlock{{L"ab", L"c\"d"}}));
    EXPECT_EQ(fromTabbedText(L"\r\n"), (TextBlock{{L""}}));
}

TEST_F(GridClipboard, CopiesTheSelectedBlockWithoutHiddenColumns) {
    window.click(1, text);
    window.click(2, last, withShift);
    window.press('C', withControl);
    EXPECT_EQ(other.take(), L"t1\t0\t\tRound\tl1\r\nt2\t1\t\tRound\tl2\r\n");
}

TEST_F(GridClipboard, LeavesTheClipboardAloneWhenNothingIsSelected) {
    other.put(L"kept");
    grid.focusCell(-1, -1);
    window.press('C', withControl);
    window.press('X', withControl);
    EXPECT_EQ(other.take(), L"kept");
    EXPECT_TRUE(window.takeEvents().empty());
}

TEST_F(GridClipboard, PastesCellByCellAndTellsTheOwnerOfEach) {
    pasteAt(2, text, L"new\t0\tblue\tsquare\tend\r\nnext");
    EXPECT_EQ(rowText(2), L"new|0|blue|Square|secret|end");
    EXPECT_EQ(rowText(3), L"next|0||Round|secret|l3");
    const std::vector<GridEvent> told{
        {gridBeginEdit, 2, text, L""}, {gridEndEdit, 2, text, L""},   {gridEndEdit, 2, check, L""},
        {gridBeginEdit, 2, free, L""}, {gridEndEdit, 2, free, L""},   {gridBeginEdit, 2, choice, L""},
        {gridEndEdit, 2, choice, L""}, {gridBeginEdit, 2, last, L""}, {gridEndEdit, 2, last, L""},
        {gridBeginEdit, 3, text, L""}, {gridEndEdit, 3, text, L""}};
    EXPECT_EQ(window.takeEvents(), told);
}

TEST_F(GridClipboard, ChecksBoxesByTheTextsThatOtherProgramsUse) {
    pasteAt(1, check, L"1\n0\ntrue\n-1");
    for (int row = 1; row < 5; ++row)
        EXPECT_EQ(grid.text(row, check), row == 2 ? L"0" : L"1") << row;
    pasteAt(1, check, L"FALSE\nmaybe\n\nFalse");
    EXPECT_EQ(grid.text(1, check), L"0");
    EXPECT_EQ(grid.text(2, check), L"0");
    EXPECT_EQ(grid.text(3, check), L"1");
    EXPECT_EQ(grid.text(4, check), L"0");
}

TEST_F(GridClipboard, LeavesCellsAloneThatRefuseTheText) {
    grid.setReadOnly(1, text);
    grid.setReadOnly(1, check);
    window.answer = [](const GridEvent& event) {
        return event.code == gridBeginEdit && event.row == 2 ? gridRefuse : 0;
    };
    pasteAt(1, text, L"a\t1\tb\toval\nc\t0\td\tSquare\ne");
    EXPECT_EQ(rowText(1), L"t1|0|b|Round|secret|l1");
    // A check box asks nobody before it changes.
    EXPECT_EQ(rowText(2), L"t2|0||Round|secret|l2");
    EXPECT_EQ(rowText(3), L"e|0||Round|secret|l3");
}

TEST_F(GridClipboard, CutsABlockOffAtTheGridsEnd) {
    pasteAt(4, last, L"in\tout\tout\nout\nout");
    EXPECT_EQ(rowText(4), L"t4|0||Round|secret|in");
    EXPECT_EQ(grid.rowCount(), 5);
    EXPECT_EQ(grid.columnCount(), 6);
}

TEST_F(GridClipboard, StopsWhereTheOwnerWantsAnotherText) {
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit && grid.text(event.row, event.column) == L"bad")
            grid.editFocusedCell();
        return LRESULT{0};
    };
    pasteAt(1, text, L"bad\nnever");
    EXPECT_TRUE(grid.isEditing());
    EXPECT_EQ(grid.text(2, text), L"t2");
}

TEST_F(GridClipboard, SurvivesAnOwnerThatGoesDuringAPaste) {
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit)
            window.destroyOwner();
        return LRESULT{0};
    };
    pasteAt(1, text, L"a\tb\tc\nd");
    EXPECT_EQ(grid.text(2, text), L"t2");
    EXPECT_EQ(window.failure, nullptr);
}

TEST_F(GridClipboard, CutsTextsAndLeavesTheOthers) {
    window.click(1, text);
    window.click(2, last, withShift);
    window.takeEvents();
    window.press('X', withControl);
    EXPECT_EQ(other.take(), L"t1\t0\t\tRound\tl1\r\nt2\t1\t\tRound\tl2\r\n");
    EXPECT_EQ(rowText(1), L"|0||Round|secret|");
    EXPECT_EQ(rowText(2), L"|1||Round|secret|");
    window.press('V', withControl);
    EXPECT_EQ(rowText(1), L"t1|0||Round|secret|l1");
    EXPECT_EQ(rowText(2), L"t2|1||Round|secret|l2");
}

TEST_F(GridClipboard, DoesNothingWhenTheClipboardIsEmptyOrBusy) {
    other.empty();
    window.click(1, text);
    window.takeEvents();
    window.press('V', withControl);
    EXPECT_TRUE(window.takeEvents().empty());
    other.put(L"there");
    OpenClipboard(window.owner());  // another window of the program holds it
    window.press('V', withControl);
    window.press('X', withControl);
    CloseClipboard();
    EXPECT_EQ(rowText(1), L"t1|0||Round|secret|l1");
    EXPECT_EQ(other.take(), L"there");
}

}  // namespace
