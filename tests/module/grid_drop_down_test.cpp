#include "framework/gdi.h"
#include "module/grid/grid_notifications.h"
#include "module/grid/in_place_list.h"
#include "tests/module/grid_window.h"
#include "tests/module/other_dialog.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tessary::testing {

namespace {

using Events = std::vector<GridEvent>;
constexpr bool editable = true;
constexpr bool choiceOnly = false;

std::vector<std::wstring> numbered(int count) {
    std::vector<std::wstring> choices;
    for (int i = 0; i < count; ++i)
        choices.push_back(L"choice " + std::to_wstring(i));
    return choices;
}

// The end of the editing as the drop-down reports it to the grid.
class LastReport final : public framework::Window {
public:
    explicit LastReport(const CGridCtrl& grid) { attach(grid.handle()); }
    int count = 0;
    std::wstring text;
    LPARAM key = -1;

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_NOTIFY) {
            const GridEditItem& item = reinterpret_cast<const GridEditNotification*>(lParam)->item;
            EXPECT_EQ(item.mask, 5U);
            ++count;
            text = item.text;
            key = item.parameter;
        }
        return Window::handleMessage(message, wParam, lParam);
    }
};

// A grid whose cell 1, 1 is a drop-down.
struct DropDown : ::testing::Test {
    void give(std::vector<std::wstring> choices, bool isEditable, const std::wstring& text) {
        window.fill(8, 3);
        window.grid.setCellChoices(1, 1, std::move(choices), isEditable);
        window.grid.setText(1, 1, text);
        window.grid.focusCell(1, 1);
    }
    void openByClick() {
        window.doubleClick(1, 1);
        ASSERT_TRUE(window.grid.dropDownEditor());
        window.takeEvents();
    }
    void openBy(UINT key) {
        window.press(key);
        ASSERT_TRUE(window.grid.dropDownEditor());
        window.takeEvents();
    }
    HWND combo() const {
        const auto* const editor = window.grid.dropDownEditor();
        return editor ? editor->handle() : nullptr;
    }
    HWND part(bool list) const {
        COMBOBOXINFO parts{};
        parts.cbSize = sizeof parts;
        GetComboBoxInfo(combo(), &parts);
        return list ? parts.hwndList : parts.hwndItem;
    }
    HWND list() const { return part(true); }
    RECT inGrid(HWND part) const {
        RECT area{};
        GetWindowRect(part, &area);
        MapWindowPoints(nullptr, window.grid.handle(), reinterpret_cast<POINT*>(&area), 2);
        return area;
    }
    LRESULT ask(UINT message) const { return SendMessageW(combo(), message, 0, 0); }
    bool isOpen() const { return ask(CB_GETDROPPEDSTATE) != 0; }
    std::wstring shown() const { return framework::textOf(combo()); }
    void clickChoice(int index) {
        RECT row{};
        SendMessageW(list(), LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&row));
        POINT at{row.left + 3, (row.top + row.bottom) / 2};
        MapWindowPoints(list(), window.grid.handle(), &at, 1);
        ASSERT_EQ(GetCapture(), list());
        window.clickAt(at);
    }
    GridWindow window{{400, 350}};
};

}  // namespace

TEST_F(DropDown, ListHasARowMoreThanChoicesAndFifteenAtMost) {
    for (const bool kind : {editable, choiceOnly}) {
        for (const auto& [count, rows] :
             {std::pair(3, 4), std::pair(30, 15), std::pair(14, 15), std::pair(0, 1)}) {
            SCOPED_TRACE(count);
            give(numbered(count), kind, L"");
            if (count == 0)
                window.grid.setDropDownColumn(1, kind);
            openByClick();
            RECT shownRows{};
            GetClientRect(list(), &shownRows);
            EXPECT_TRUE(IsWindowVisible(list()));
            EXPECT_EQ(shownRows.bottom, rows * window.grid.rowHeight());
            if (count > 0) {
                EXPECT_EQ(SendMessageW(list(), LB_GETITEMHEIGHT, 0, 0), window.grid.rowHeight());
            }
            window.press(VK_ESCAPE);
        }
    }
}

TEST_F(DropDown, FieldLiesOverItsCell) {
    const auto offsets = [&](bool kind) {
        give(numbered(3), kind, L"");
        const RECT cell = window.grid.cellArea(1, 1).value();
        openByClick();
        RECT area = inGrid(combo());
        window.press(VK_ESCAPE);
        return std::vector<LONG>{area.left - cell.left, area.top - cell.top, area.right - cell.right};
    };
    EXPECT_EQ(offsets(editable), (std::vector<LONG>{-3, -2, 1}));
    EXPECT_EQ(offsets(choiceOnly), (std::vector<LONG>{-1, -3, 1}));
}

TEST_F(DropDown, ReachesNoFurtherThanTheGrid) {
    RECT client{};
    for (const bool kind : {editable, choiceOnly}) {
        give(numbered(12), kind, L"");
        window.grid.setCellChoices(6, 1, numbered(12), kind);
        window.grid.setColumnWidth(1, 700);
        window.pump();
        GetClientRect(window.grid.handle(), &client);
        const RECT cell = window.grid.cellArea(6, 1).value();
        window.grid.focusCell(6, 1);
        window.press(VK_RETURN);
        ASSERT_TRUE(combo());
        EXPECT_EQ(inGrid(combo()).right, client.right);
        // With a field, the rectangle of the cell and 13 rows ends where the grid does.
        const LONG top = kind == editable ? client.bottom - 14 * window.grid.rowHeight() : cell.top - 3;
        EXPECT_EQ(inGrid(combo()).top, top);
        window.press(VK_ESCAPE);
    }
}

TEST_F(DropDown, ListIsAsWideAsItsWidestChoice) {
    const std::wstring wide(30, L'm');
    give({L"i", wide}, editable, L"");
    window.grid.setColumnWidth(1, 30);
    openByClick();
    const framework::ClientContext context(combo());
    const framework::Selected font(context.get(), window.grid.font());
    SIZE text{}, zero{};
    GetTextExtentPoint32W(context.get(), wide.c_str(), 30, &text);
    GetTextExtentPoint32W(context.get(), L"0", 1, &zero);
    EXPECT_EQ(ask(CB_GETDROPPEDWIDTH), text.cx + GetSystemMetrics(SM_CXVSCROLL) + zero.cx);
    EXPECT_EQ(ask(CB_GETHORIZONTALEXTENT), 0);
    window.press(VK_ESCAPE);
    give({std::wstring(300, L'm')}, editable, L"");
    openByClick();
    EXPECT_EQ(ask(CB_GETDROPPEDWIDTH), 400);
    RECT area = inGrid(list());
    EXPECT_EQ(area.right - area.left, 400);
    // The width is set again with every opening.
    SendMessageW(combo(), CB_SHOWDROPDOWN, FALSE, 0);
    SendMessageW(combo(), CB_SETDROPPEDWIDTH, 300, 0);
    SendMessageW(combo(), CB_SHOWDROPDOWN, TRUE, 0);
    EXPECT_EQ(ask(CB_GETDROPPEDWIDTH), 400);
}

TEST_F(DropDown, ShowsTheCellsTextWhetherItIsAChoiceOrNot) {
    struct Case {
        bool kind;
        std::wstring text;
        int choice;
    };
    const std::vector<Case> cases{{editable, L"choice 1", 1},  {choiceOnly, L"choice 1", 1},
                                  {editable, L"other", -1},    {choiceOnly, L"other", -1},
                                  {editable, L"CHOICE 1", -1}, {choiceOnly, L"CHOICE 1", -1},
                                  {editable, L"choice", -1},   {editable, L"", -1},
                                  {choiceOnly, L"", -1},       {choiceOnly, L"choice 10", -1}};
    for (const auto& [kind, text, choice] : cases) {
        give(numbered(3), kind, text);
        openByClick();
        EXPECT_TRUE(isOpen());
        EXPECT_EQ(shown(), text);
        EXPECT_EQ(ask(CB_GETCURSEL), choice);
        SetFocus(window.ownerControl(GridWindow::afterId));
        window.pump();
        EXPECT_EQ(window.grid.text(1, 1), text) << "opened and left: the cell keeps its text";
        EXPECT_EQ(window.takeEvents(), (Events{{gridEndEdit, 1, 1, {}}}));
    }
}

TEST_F(DropDown, ListWithoutAFieldDrawsATextThatIsNoChoice) {
    const auto ink = [&](const std::wstring& text) {
        give(numbered(2), choiceOnly, text);
        openByClick();
        UpdateWindow(combo());
        RECT area{};
        GetClientRect(combo(), &area);
        const framework::ClientContext context(combo());
        int dark = 0;
        for (int y = 4; y < area.bottom - 4; ++y) {
            for (int x = 4; x < area.right - 24; ++x)
                dark += GetPixel(context.get(), x, y) == GetSysColor(COLOR_WINDOWTEXT);
        }
        SetFocus(window.grid.handle());
        window.pump();
        return dark;
    };
    EXPECT_GT(ink(L"something else"), ink(L"") + 20);
}

TEST_F(DropDown, PickIsReportedAndTheEditorStaysUntilItIsLeft) {
    for (const bool kind : {editable, choiceOnly}) {
        give(numbered(3), kind, L"choice 0");
        openByClick();
        LastReport report(window.grid);
        clickChoice(2);
        EXPECT_EQ(window.takeEvents(), (Events{{gridPicked, 1, 1, L"choice 2"}}));
        ASSERT_TRUE(window.grid.isEditing());
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(window.grid.text(1, 1), L"choice 0");
        window.press(VK_RETURN);
        EXPECT_EQ(window.takeEvents(gridEndEdit), (Events{{gridEndEdit, 1, 1, {}}}));
        EXPECT_EQ(report.key, VK_RETURN);
        EXPECT_EQ(window.grid.text(1, 1), L"choice 2");
        EXPECT_EQ(GetFocus(), window.grid.handle());
        EXPECT_TRUE(window.takeCommands().empty()) << "the dialog's OK was pressed";
    }
}

TEST_F(DropDown, TypingIntoAFieldReplacesTheText) {
    give(numbered(3), editable, L"choice 0");
    window.type(L"7");
    ASSERT_TRUE(combo());
    EXPECT_EQ(shown(), L"7");
    window.type(L"5");
    EXPECT_EQ(shown(), L"75");
    window.press(VK_TAB);
    EXPECT_EQ(window.grid.text(1, 1), L"75");
    EXPECT_EQ(window.grid.focusedColumn(), 2);
    window.grid.focusCell(1, 1);
    openBy(VK_BACK);
    EXPECT_EQ(shown(), L"7");
    window.press(VK_ESCAPE);
    window.type(L"\u6f22\u00e4");
    EXPECT_EQ(shown(), L"\u6f22\u00e4");
}

TEST_F(DropDown, FirstKeyPlacesTheCaretInTheField) {
    const auto selection = [&] {
        const LRESULT range = SendMessageW(part(false), EM_GETSEL, 0, 0);
        return std::pair<int, int>(LOWORD(range), HIWORD(range));
    };
    give(numbered(3), editable, L"other");
    openByClick();
    EXPECT_EQ(GetDlgCtrlID(part(false)), 1001);
    EXPECT_EQ(GetFocus(), part(false));
    EXPECT_EQ(selection(), std::pair(5, 5));
    window.press(VK_ESCAPE);
    openBy(VK_RETURN);
    EXPECT_EQ(selection(), std::pair(5, 5));
    window.press(VK_ESCAPE);
    window.grid.editFocusedCell();
    EXPECT_EQ(selection(), std::pair(0, 5));
}

TEST_F(DropDown, EscapeKeepsTheOldText) {
    for (const bool kind : {editable, choiceOnly}) {
        for (const std::wstring text : {L"choice 0", L"other"}) {
            for (const bool pick : {false, true}) {
                give(numbered(3), kind, text);
                openByClick();
                LastReport report(window.grid);
                if (pick)
                    clickChoice(1);
                else
                    window.press(VK_DOWN);
                window.press(VK_ESCAPE);
                EXPECT_EQ(report.count, 1);
                EXPECT_EQ(report.text, text);
                EXPECT_EQ(report.key, VK_ESCAPE);
                EXPECT_EQ(window.grid.text(1, 1), text);
                EXPECT_FALSE(window.grid.isEditing());
                EXPECT_EQ(GetFocus(), window.grid.handle());
            }
        }
    }
    EXPECT_TRUE(window.takeCommands().empty()) << "the dialog's Cancel was pressed";
}

TEST_F(DropDown, ArrowsLeaveWhatAKeyOpenedAndMoveInWhatAClickOpened) {
    give(numbered(3), choiceOnly, L"choice 0");
    LastReport report(window.grid);
    openBy(VK_RETURN);
    window.press(VK_DOWN);
    EXPECT_EQ(report.key, VK_DOWN);
    EXPECT_EQ(window.grid.focusedRow(), 2);
    EXPECT_EQ(window.grid.text(1, 1), L"choice 0");
    openByClick();
    window.press(VK_DOWN);
    EXPECT_EQ(window.takeEvents(), (Events{{gridPicked, 1, 1, L"choice 1"}}));
    ASSERT_TRUE(window.grid.isEditing());
    window.press(VK_RIGHT, withControl);
    EXPECT_EQ(report.key, VK_RIGHT);
    EXPECT_EQ(window.grid.text(1, 1), L"choice 1");
    EXPECT_EQ(window.grid.focusedColumn(), 2);
}

TEST_F(DropDown, ControlAndAnArrowLeaveTheField) {
    for (const UINT key : {VK_PRIOR, VK_NEXT, VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN}) {
        give(numbered(3), editable, L"other");
        openByClick();
        LastReport report(window.grid);
        window.press(VK_LEFT);
        EXPECT_EQ(report.count, 0);
        window.press(key, withControl);
        EXPECT_EQ(report.key, static_cast<LPARAM>(key));
        EXPECT_FALSE(window.grid.isEditing());
    }
}

TEST_F(DropDown, ReleaseOfTheKeyThatOpenedItDoesNotEndIt) {
    for (const bool kind : {editable, choiceOnly}) {
        give(numbered(3), kind, L"choice 0");
        window.keyDown(VK_RETURN);
        window.keyUp(VK_RETURN);
        ASSERT_TRUE(window.grid.isEditing());
        EXPECT_TRUE(isOpen());
        window.press(VK_RETURN);
        EXPECT_FALSE(window.grid.isEditing());
    }
}

TEST_F(DropDown, ClosingTheListWithoutAChoiceEndsAListWithoutAField) {
    give(numbered(3), choiceOnly, L"choice 1");
    openByClick();
    window.clickAt({5, 300});
    EXPECT_FALSE(window.grid.isEditing());
    EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 1U);
    EXPECT_EQ(window.grid.text(1, 1), L"choice 1");
    give(numbered(3), editable, L"choice 1");
    openByClick();
    SendMessageW(combo(), CB_SHOWDROPDOWN, FALSE, 0);
    window.pump();
    EXPECT_TRUE(window.grid.isEditing());
}

TEST_F(DropDown, DialogButtonsDoNotHearItsKeys) {
    give(numbered(3), editable, L"choice 1");
    SetWindowTextW(window.ownerControl(GridWindow::afterId), L"&After");
    openByClick();
    PostMessageW(GetFocus(), WM_SYSKEYDOWN, 'A', 0x20000001);
    window.pump();
    EXPECT_EQ(GetFocus(), part(false));
    EXPECT_TRUE(window.takeCommands().empty());
}

// As a dialog answers "Select color. . .": another dialog, then its text instead of the choice.
TEST_F(DropDown, OwnerMayAskInADialogAndSetTheResult) {
    for (const bool byKey : {false, true}) {
        give({L"Select. . ."}, editable, L"12");
        openByClick();
        LastReport report(window.grid);
        int ends = 0;
        window.answer = [&](const GridEvent& event) -> LRESULT {
            ends += event.code == gridEndEdit;
            if (event.code != gridPicked)
                return 0;
            EXPECT_TRUE(showOtherDialog(window.owner()));
            EXPECT_EQ(ends, 0) << "the dialog took the focus and ended the editing";
            CInPlaceListForGridCell* const editor = window.grid.dropDownEditor();
            if (!editor)
                return 0;
            const HWND box = editor->handle();
            editor->setResultText(L"77");
            editor->endEdit();
            EXPECT_TRUE(IsWindow(box)) << "the combo box went while it still worked on the pick";
            EXPECT_EQ(window.grid.text(1, 1), L"77");
            return 0;
        };
        if (byKey)
            window.press(VK_DOWN);
        else
            clickChoice(0);
        window.answer = nullptr;
        EXPECT_EQ(window.takeEvents(), (Events{{gridPicked, 1, 1, L"Select. . ."}, {gridEndEdit, 1, 1, {}}}));
        EXPECT_EQ(report.count, 1);
        EXPECT_EQ(window.grid.text(1, 1), L"77");
        EXPECT_FALSE(window.grid.isEditing());
        EXPECT_EQ(GetFocus(), window.grid.handle());
        EXPECT_EQ(GetCapture(), nullptr);
        EXPECT_EQ(GetWindow(window.grid.handle(), GW_CHILD), nullptr);
    }
}

TEST_F(DropDown, EndsOnceWhateverTheOwnerDoesMeanwhile) {
    const std::vector<std::function<void()>> deeds{
        [&] { window.grid.endEditing(); },
        [&] { window.grid.deleteRow(1); },
        [&] { window.fill(3, 2); },
        [&] { window.grid.setRowCount(1); },
        [&] { window.grid.makePlainCell(1, 1); },
        [&] { EnableWindow(window.owner(), FALSE); },
        [&] { SetFocus(window.ownerControl(GridWindow::afterId)); },
    };
    for (const bool kind : {editable, choiceOnly}) {
        for (const int code : {gridPicked, gridEndEdit}) {
            for (std::size_t i = 0; i < deeds.size(); ++i) {
                SCOPED_TRACE(std::to_string(kind) + " " + std::to_string(code) + " " + std::to_string(i));
                EnableWindow(window.owner(), TRUE);
                give(numbered(3), kind, L"choice 0");
                SetFocus(window.grid.handle());
                openByClick();
                bool done = false;
                window.answer = [&](const GridEvent& event) {
                    if (event.code == code && !std::exchange(done, true))
                        deeds[i]();
                    return 0;
                };
                clickChoice(1);
                SetFocus(window.grid.handle());
                window.pump();
                if (window.grid.isEditing())
                    window.grid.endEditing();
                window.pump();
                EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 1U);
                EXPECT_EQ(GetWindow(window.grid.handle(), GW_CHILD), nullptr) << "an editor stayed";
                window.answer = nullptr;
            }
        }
    }
}

TEST_F(DropDown, SameCellMayBeEditedAgainWhenItEnded) {
    give(numbered(3), editable, L"choice 0");
    openByClick();
    bool again = true;
    window.answer = [&](const GridEvent& event) {
        if (event.code == gridEndEdit && std::exchange(again, false))
            window.grid.editFocusedCell();
        return 0;
    };
    window.type(L"bad");
    window.press(VK_RETURN);
    ASSERT_TRUE(combo());
    EXPECT_EQ(GetFocus(), part(false));
    window.type(L"good");
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 1), L"good");
    EXPECT_EQ(window.takeEvents(gridEndEdit).size(), 2U);
}

TEST_F(DropDown, DialogMayGoWhileItIsTold) {
    for (const auto& [kind, byMouse] : {std::pair(editable, false), std::pair(choiceOnly, false),
                                        std::pair(editable, true), std::pair(choiceOnly, true)}) {
        for (const int code : {gridBeginEdit, gridPicked, gridEndEdit}) {
            SCOPED_TRACE(code);
            GridWindow other;
            other.fill(4, 2);
            other.grid.setCellChoices(1, 1, numbered(3), kind);
            other.answer = [&](const GridEvent& event) {
                if (event.code == code)
                    other.destroyOwner();
                return 0;
            };
            other.doubleClick(1, 1);
            if (byMouse && GetCapture())
                other.clickAt(other.middle(3, 1));  // in the list, which covers the rows below
            else if (code != gridBeginEdit)
                other.press(VK_DOWN);
            if (code == gridEndEdit)
                SetFocus(other.grid.handle());
            other.pump();
            EXPECT_FALSE(other.grid.handle());
            EXPECT_FALSE(other.grid.isEditing());
        }
    }
}

TEST_F(DropDown, LookedUpColumnsTakeTheDatum) {
    window.fill(3, 2);
    window.grid.setColumnChoices(1, {L"red", L"green", L"red"});
    window.grid.setColumnChoiceData(1, {10, 20, 30});
    window.grid.setLookedUpColumn(1);
    window.grid.applyColumnChoices(1);
    window.grid.setText(1, 1, L"10");
    window.grid.setText(2, 1, L"99");
    openByClick();
    EXPECT_EQ(shown(), L"red");
    clickChoice(1);
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 1), L"20");
    window.grid.setText(1, 1, L"30");
    openByClick();
    window.press(VK_RETURN);
    EXPECT_EQ(window.grid.text(1, 1), L"30") << "another choice with the same text";
    window.doubleClick(2, 1);
    window.press(VK_ESCAPE);
    EXPECT_EQ(window.grid.text(2, 1), L"99") << "a datum that is not listed was lost";
}

}  // namespace tessary::testing
