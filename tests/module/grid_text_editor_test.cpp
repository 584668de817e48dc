#include "module/grid/grid_notifications.h"
#include "module/grid/in_place_edit.h"
#include "tests/module/grid_window.h"
#include "tests/module/other_dialog.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessary::testing {

namespace {

using Events = std::vector<GridEvent>;

HWND editorOf(const GridWindow& window) {
    return window.grid.textEditor() ? window.grid.textEditor()->handle() : nullptr;
}

std::wstring typed(const GridWindow& window) {
    return framework::textOf(editorOf(window));
}

// From where to where the editor's text is selected.
std::pair<DWORD, DWORD> selection(const GridWindow& window) {
    std::pair<DWORD, DWORD> range;
    SendMessageW(editorOf(window), EM_GETSEL, reinterpret_cast<WPARAM>(&range.first),
                 reinterpret_cast<LPARAM>(&range.second));
    return range;
}

// What the editors send to the grid, read on its way.
class ReportReader final : public framework::Window {
public:
    explicit ReportReader(const CGridCtrl& grid) { attach(grid.handle()); }

    struct Report {
        WPARAM sender;
        GridEditNotification notification;
        std::wstring text;
    };
    std::vector<Report> reports;

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_NOTIFY) {
            const auto& notification = *reinterpret_cast<const GridEditNotification*>(lParam);
            reports.push_back({wParam, notification, notification.item.text});
        }
        return Window::handleMessage(message, wParam, lParam);
    }
};

// The grid with three rows of data, and the focus on row 1, column 1.
struct TextEditor : ::testing::Test {
    TextEditor() {
        window.fill(4, 3);
        window.grid.focusCell(1, 1);
        window.takeEvents();
    }
    void openByClick(int row = 1, int column = 1) {
        window.doubleClick(row, column);
        ASSERT_TRUE(editorOf(window));
        window.takeEvents();
    }
    GridWindow window;
};

}  // namespace

TEST_F(TextEditor, TypedCharacterReplacesTheText) {
    window.type(L"a");
    EXPECT_EQ(typed(window), L"a");
    window.type(L"bc");
    window.press(VK_TAB);
    EXPECT_EQ(window.grid.text(1, 1), L"abc");
    EXPECT_EQ(window.takeEvents(), (Events{{gridBeginEdit, 1, 1, {}}, {gridEndEdit, 1, 1, {}}}));
}

TEST_F(TextEditor, CharactersOfEveryScriptOpenIt) {
    for (const std::wstring text : {L"\u00e4b", L"\u6f22\u5b57", L"\u20ac", L"\U0001F600", L"#1", L"'"}) {
        window.grid.focusCell(1, 1);
        window.type(text);
        EXPECT_EQ(typed(window), text);
        window.press(VK_RETURN);
        EXPECT_EQ(window.grid.text(1, 1), text);
    }
    // An input method commits more than one character before the first one is handled.
    window.grid.focusCell(2, 1);
    PostMessageW(window.grid.handle(), WM_CHAR, L'\u6f22', 1);
    PostMessageW(window.grid.handle(), WM_CHAR, L'a', 1);
    PostMessageW(window.grid.handle(), WM_CHAR, L'\u5b57', 1);
    window.pump();
    EXPECT_EQ(typed(window), L"\u6f22a\u5b57");
}

TEST_F(TextEditor, FirstKeyPlacesTheCaret) {
    using Range = std::pair<DWORD, DWORD>;
    window.press(VK_BACK);
    EXPECT_EQ(typed(window), L"r1c");
    EXPECT_EQ(selection(window), Range(3, 3));
    window.press(VK_ESCAPE);
    window.press(VK_RETURN);
    EXPECT_EQ(typed(window), L"r1c1");
    EXPECT_EQ(selection(window), Range(4, 4));
    window.press(VK_ESCAPE);
    openByClick();
    EXPECT_EQ(selection(window), Range(4, 4));
    window.press(VK_ESCAPE);
    window.type(L" ");
    EXPECT_EQ(typed(window), L"r1c1");
    EXPECT_EQ(selection(window), Range(0, 4));
    window.press(VK_ESCAPE);
    window.grid.editFocusedCell();
    EXPECT_EQ(selection(window), Range(0, 4));
}

TEST_F(TextEditor, KeepsLineBreaksOfATextThatIsNotChanged) {
    const std::wstring lines = L"first\r\nsecond\tthird";
    window.grid.setText(1, 1, lines);
    for (const UINT key : {VK_RETURN, VK_ESCAPE, VK_TAB}) {
        window.grid.focusCell(1, 1);
        window.grid.editFocusedCell();
        window.press(key);
        EXPECT_EQ(window.grid.text(1, 1), lines);
    }
}

TEST_F(TextEditor, CoversItsCellInTheGridsFont) {
    const RECT cell = window.grid.cellArea(1, 1).value();
    openByClick();
    RECT area{};
    GetWindowRect(editorOf(window), &area);
    MapWindowPoints(nullptr, window.grid.handle(), reinterpret_cast<POINT*>(&area), 2);
    EXPECT_TRUE(EqualRect(&area, &cell));
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(editorOf(window), GWL_STYLE));
    EXPECT_EQ(style & 0x50000080, 0x50000080U);
    EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageW(editorOf(window), WM_GETFONT, 0, 0)), window.grid.font());
    EXPECT_EQ(GetFocus(), editorOf(window));
}

TEST_F(TextEditor, GrowsWithItsTextAsFarAsTheGridGoes) {
    const auto width = [&] {
        RECT area{};
        GetClientRect(editorOf(window), &area);
        return area.right;
    };
    const RECT cell = window.grid.cellArea(1, 1).value();
    RECT client{};
    GetClientRect(window.grid.handle(), &client);
    openByClick();
    window.type(L"wwwwwwwwwwwwwwww");
    EXPECT_GT(width(), cell.right - cell.left);
    const LONG before = width();
    window.press(VK_BACK);
    EXPECT_LT(width(), before);
    window.type(std::wstring(100, L'w'));
    EXPECT_EQ(cell.left + width(), client.right);
}

TEST_F(TextEditor, EndIsReportedWithTheKeyAndTheText) {
    ReportReader reader(window.grid);
    window.type(L"new");
    const HWND editor = editorOf(window);
    window.press(VK_DOWN);
    ASSERT_EQ(reader.reports.size(), 1U);
    const auto& [sender, notification, text] = reader.reports[0];
    EXPECT_EQ(notification.header.hwndFrom, editor);
    EXPECT_EQ(notification.header.idFrom, sender);
    EXPECT_EQ(static_cast<int>(notification.header.code), -176);
    EXPECT_EQ(notification.item.mask, 5U);
    EXPECT_EQ(notification.item.row, 1);
    EXPECT_EQ(notification.item.column, 1);
    EXPECT_EQ(notification.item.parameter, VK_DOWN);
    EXPECT_EQ(text, L"new");
    EXPECT_FALSE(IsWindow(editor));
    EXPECT_EQ(GetFocus(), window.grid.handle());
}

TEST_F(TextEditor, EscapeKeepsTheOldText) {
    for (const bool byClick : {false, true}) {
        ReportReader reader(window.grid);
        if (byClick)
            openByClick();
        window.type(L"xyz");
        window.press(VK_ESCAPE);
        ASSERT_EQ(reader.reports.size(), 1U);
        EXPECT_EQ(reader.reports[0].text, L"r1c1");
        EXPECT_EQ(reader.reports[0].notification.item.parameter, VK_ESCAPE);
        EXPECT_EQ(window.grid.text(1, 1), L"r1c1");
        EXPECT_EQ(window.grid.focusedRow(), 1);
        EXPECT_EQ(window.grid.focusedColumn(), 1);
    }
    EXPECT_TRUE(window.takeCommands().empty()) << "the dialog's Cancel was pressed";
}

TEST_F(TextEditor, ArrowAndPageKeysEndWhatTypingOpened) {
    for (const UINT key : {VK_PRIOR, VK_NEXT, VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN}) {
        ReportReader reader(window.grid);
        window.grid.focusCell(2, 1);
        window.type(L"k");
        window.press(key);
        ASSERT_EQ(reader.reports.size(), 1U) << key;
        EXPECT_EQ(reader.reports[0].notification.item.parameter, static_cast<LPARAM>(key));
    }
    window.type(L"k");
    window.press(VK_HOME);
    EXPECT_TRUE(window.grid.isEditing());
}

TEST_F(TextEditor, ArrowsMoveTheCaretOfWhatAClickOpened) {
    openByClick();
    window.press(VK_LEFT);
    window.press(VK_LEFT);
    EXPECT_EQ(selection(window).first, 2U);
    window.press(VK_RIGHT);
    EXPECT_EQ(selection(window).first, 3U);
    ReportReader reader(window.grid);
    window.press(VK_LEFT, withControl);
    ASSERT_EQ(reader.reports.size(), 1U);
    EXPECT_EQ(reader.reports[0].notification.item.parameter, VK_LEFT);
    EXPECT_FALSE(window.grid.isEditing());
}

TEST_F(TextEditor, TabAndReturnEndAndStayInTheGrid) {
    window.type(L"one");
    window.press(VK_TAB);
    EXPECT_EQ(window.grid.focusedColumn(), 2);
    window.type(L"two");
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 1), L"one");
    EXPECT_EQ(window.grid.text(1, 2), L"two");
    EXPECT_EQ(GetFocus(), window.grid.handle());
    EXPECT_TRUE(window.takeCommands().empty()) << "the dialog's OK was pressed";
}

TEST_F(TextEditor, ClicksElsewhereEndIt) {
    window.type(L"left");
    window.click(2, 2);
    EXPECT_EQ(window.grid.text(1, 1), L"left");
    EXPECT_EQ(window.grid.focusedRow(), 2);
    window.type(L"again");
    SetFocus(window.ownerControl(GridWindow::afterId));
    EXPECT_EQ(window.grid.text(2, 2), L"again");
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId));
    EXPECT_FALSE(window.grid.isEditing());
}

TEST_F(TextEditor, MnemonicsDoNotLeaveIt) {
    SetWindowTextW(window.ownerControl(GridWindow::afterId), L"&After");
    openByClick();
    PostMessageW(editorOf(window), WM_SYSKEYDOWN, 'A', 0x20000001);
    window.pump();
    EXPECT_TRUE(window.takeCommands().empty());
    EXPECT_EQ(GetFocus(), editorOf(window));
    EXPECT_EQ(SendMessageW(editorOf(window), WM_GETDLGCODE, 0, 0) & DLGC_WANTALLKEYS, DLGC_WANTALLKEYS);
}

TEST_F(TextEditor, CellsThatCannotBeEditedStayAsTheyAre) {
    window.grid.setCheckBoxColumn(2);
    window.grid.setReadOnly(2, 1);
    for (const auto& [row, column] : {std::pair(2, 1), std::pair(1, 2)}) {
        window.grid.focusCell(row, column);
        window.type(L"a");
        window.doubleClick(row, column);
        window.grid.editFocusedCell();
        EXPECT_FALSE(window.grid.isEditing());
    }
    window.doubleClick(0, 1);
    EXPECT_FALSE(window.grid.isEditing());
    window.grid.setEditable(false);
    window.doubleClick(1, 1);
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_TRUE(window.takeEvents(gridBeginEdit).empty());
}

TEST_F(TextEditor, OwnerMayRefuseWhatTheDrafterStartsOnly) {
    window.answer = [](const GridEvent& event) { return event.code == gridBeginEdit ? gridRefuse : 0; };
    window.type(L"a");
    window.doubleClick(1, 1);
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(window.takeEvents(gridBeginEdit),
              (Events{{gridBeginEdit, 1, 1, {}}, {gridBeginEdit, 1, 1, {}}}));
    window.grid.editFocusedCell();
    EXPECT_TRUE(window.grid.isEditing());
    EXPECT_EQ(window.takeEvents(), (Events{{gridBeginEdit, 1, 1, {}}}));
}

TEST_F(TextEditor, OwnerSeesTheNewTextInTheCell) {
    std::wstring seen;
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit)
            seen = window.grid.text(1, 1);
        return 0;
    };
    window.type(L"new");
    window.press(VK_RETURN);
    EXPECT_EQ(seen, L"new");
}

// A dialog that refuses a name says so, puts the old one back and has it edited again.
TEST_F(TextEditor, OwnerMayAskAndEditTheSameCellAgain) {
    int boxes = 0;
    bool nested = false;
    window.answer = [&](const GridEvent& event) {
        if (event.code != gridEndEdit || boxes >= 2)
            return 0;
        nested = nested || window.grid.isEditing();
        // The second question comes while the editor is open again already.
        boxes += showOtherDialog(window.owner());
        window.grid.setText(1, 1, L"old");
        window.grid.editFocusedCell();
        boxes += showOtherDialog(window.owner());
        window.grid.setText(1, 1, L"older");
        window.grid.editFocusedCell();
        return 0;
    };
    window.type(L"bad/name");
    window.press(VK_TAB);
    EXPECT_EQ(boxes, 2);
    EXPECT_FALSE(nested);
    EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 1U);
    EXPECT_EQ(typed(window), L"older");
    EXPECT_EQ(GetFocus(), editorOf(window));
    EXPECT_EQ(window.grid.focusedColumn(), 1);
    window.type(L"good");
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 1), L"good");
    EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 1U);
}

TEST_F(TextEditor, ClickIntoAnotherCellDoesNotTakeTheFocusFromWhatIsEditedAgain) {
    bool again = true;
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit && std::exchange(again, false))
            window.grid.editFocusedCell();
        return 0;
    };
    window.type(L"bad");
    window.click(2, 2);
    EXPECT_EQ(typed(window), L"bad");
    EXPECT_EQ(GetFocus(), editorOf(window));
    EXPECT_EQ(window.grid.focusedRow(), 1);
}

TEST_F(TextEditor, ClickIsOverWhenTheOwnerPutsTheFocusElsewhere) {
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit)
            SetFocus(window.ownerControl(GridWindow::afterId));
        return 0;
    };
    window.type(L"new");
    window.mouseDown(window.middle(2, 2));
    EXPECT_EQ(GetFocus(), window.ownerControl(GridWindow::afterId));
    EXPECT_EQ(window.grid.focusedRow(), 1);
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(TextEditor, EndsOnceWhateverTheOwnerDoesMeanwhile) {
    const std::vector<std::function<void()>> deeds{
        [&] { window.grid.endEditing(); },
        [&] { window.grid.deleteRow(1); },
        [&] { window.grid.setRowCount(1); },
        [&] { window.fill(3, 2); },
        [&] { window.grid.setColumnCount(0); },
        [&] { EnableWindow(window.owner(), FALSE); },
        [&] { SetFocus(window.ownerControl(GridWindow::afterId)); },
        [&] {
            window.grid.editFocusedCell();
            window.grid.deleteRow(1);
        },
        // Opened again, and left for another control.
        [&] {
            window.grid.editFocusedCell();
            SetFocus(window.ownerControl(GridWindow::afterId));
        },
    };
    for (std::size_t i = 0; i < deeds.size(); ++i) {
        SCOPED_TRACE(i);
        EnableWindow(window.owner(), TRUE);
        window.fill(4, 3);
        SetFocus(window.grid.handle());
        window.grid.focusCell(1, 1);
        window.takeEvents();
        bool done = false;
        window.answer = [&](const GridEvent& event) {
            if (event.code == gridEndEdit && !std::exchange(done, true))
                deeds[i]();
            return 0;
        };
        window.type(L"new");
        window.press(VK_TAB);
        EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 1U);
        EXPECT_FALSE(window.grid.isEditing());
        EXPECT_EQ(GetWindow(window.grid.handle(), GW_CHILD), nullptr) << "an editor stayed";
        window.answer = nullptr;
    }
}

// What was typed while the owner still looked at the text before is not lost.
TEST_F(TextEditor, TextOfAnEditorThatWasLeftMeanwhileIsKept) {
    bool first = true;
    window.answer = [&](const GridEvent& event) {
        if (event.code != gridEndEdit || !std::exchange(first, false))
            return 0;
        window.grid.focusCell(2, 2);
        window.grid.editFocusedCell();
        window.type(L"typed");
        SetFocus(window.ownerControl(GridWindow::afterId));
        return 0;
    };
    window.type(L"one");
    window.press(VK_TAB);
    EXPECT_EQ(window.grid.text(1, 1), L"one");
    EXPECT_EQ(window.grid.text(2, 2), L"typed");
    EXPECT_EQ(window.takeEvents(gridEndEdit), (Events{{gridEndEdit, 1, 1, {}}, {gridEndEdit, 2, 2, {}}}));
    EXPECT_FALSE(window.grid.isEditing());
}

TEST_F(TextEditor, DialogMayGoWhileItIsTold) {
    for (const int code : {gridBeginEdit, gridEndEdit}) {
        GridWindow other;
        other.fill(3, 3);
        other.grid.focusCell(1, 1);
        other.answer = [&](const GridEvent& event) {
            if (event.code == code)
                other.destroyOwner();
            return 0;
        };
        other.type(L"n");
        if (code == gridEndEdit)
            PostMessageW(GetFocus(), WM_CHAR, VK_TAB, 1);
        other.pump();
        EXPECT_FALSE(other.grid.handle());
        EXPECT_FALSE(other.grid.isEditing());
    }
}

TEST_F(TextEditor, GridMayGoBeforeItsWindow) {
    const HWND dialog = window.owner();
    auto grid = std::make_unique<CGridCtrl>();
    window.grid.detach();
    grid->attach(GetDlgItem(dialog, GridWindow::gridId));
    grid->setColumnCount(2);
    grid->setRowCount(2);
    grid->setColumnWidth(0, 80);
    grid->focusCell(1, 0);
    grid->editFocusedCell();
    const HWND editor = grid->textEditor()->handle();
    grid.reset();
    SendMessageW(editor, WM_CHAR, VK_TAB, 1);
    EXPECT_FALSE(IsWindow(editor));
}

}  // namespace tessary::testing
