// The grid as a screen reader reads and drives it.

#include "tests/module/grid_window.h"

#include <gtest/gtest.h>

#include <oleacc.h>

#include <memory>
#include <set>

#include "module/grid/grid_notifications.h"
#include "module/grid/grid_title_tip.h"

namespace {

using namespace tessary;
using namespace tessary::testing;

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Object = std::unique_ptr<Interface, Release>;

VARIANT child(long number) {
    VARIANT which;
    VariantInit(&which);
    which.vt = VT_I4;
    which.lVal = number;
    return which;
}

Object<IAccessible> asAccessible(IUnknown* object) {
    void* found = nullptr;
    if (object)
        object->QueryInterface(__uuidof(IAccessible), &found);
    return Object<IAccessible>(static_cast<IAccessible*>(found));
}

std::wstring taken(BSTR text) {
    std::wstring copy = text ? text : L"(none)";
    SysFreeString(text);
    return copy;
}

struct Element {
    Object<IAccessible> object;
    long which = CHILDID_SELF;

    std::wstring name() const {
        BSTR text = nullptr;
        object->get_accName(child(which), &text);
        return taken(text);
    }
    std::wstring value() const {
        BSTR text = nullptr;
        object->get_accValue(child(which), &text);
        return taken(text);
    }
    std::wstring action() const {
        BSTR text = nullptr;
        object->get_accDefaultAction(child(which), &text);
        return taken(text);
    }
    long role() const {
        VARIANT result = child(0);
        object->get_accRole(child(which), &result);
        return result.lVal;
    }
    bool is(long state) const {
        VARIANT result = child(0);
        object->get_accState(child(which), &result);
        return (result.lVal & state) == state;
    }
    RECT place() const {
        long left = 0, top = 0, width = 0, height = 0;
        object->accLocation(&left, &top, &width, &height, child(which));
        return {left, top, left + width, top + height};
    }
    HRESULT select(long flags) const { return object->accSelect(flags, child(which)); }
    HRESULT act() const { return object->accDoDefaultAction(child(which)); }
    HRESULT setValue(const wchar_t* text) const {
        const BSTR copy = SysAllocString(text);
        const HRESULT result = object->put_accValue(child(which), copy);
        SysFreeString(copy);
        return result;
    }
};

class GridAccess : public ::testing::Test {
protected:
    enum Column { text, check, choice, hidden, refused };
    GridWindow window{{420, 200}};
    CGridCtrl& grid = window.grid;

    void SetUp() override {
        CoInitialize(nullptr);
        window.fill(30, 5);
        grid.setCheckBoxColumn(check);
        grid.setColumnChoicesFromText(choice, L"Round|Square");
        grid.applyColumnChoices(choice);
        for (int row = 1; row < 30; ++row) {
            grid.setText(row, check, row == 2 ? L"1" : L"0");
            grid.setText(row, choice, L"Round");
        }
        grid.setColumnWidth(hidden, 0);
        grid.focusCell(1, text);
        window.answer = [](const GridEvent& event) {
            return event.code == gridBeginEdit && event.column == refused ? gridRefuse : 0;
        };
        window.pump();
        window.takeEvents();
    }
    void TearDown() override { CoUninitialize(); }

    Object<IAccessible> table() const {
        void* object = nullptr;
        AccessibleObjectFromWindow(grid.handle(), static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                   &object);
        return Object<IAccessible>(static_cast<IAccessible*>(object));
    }
    Element row(int number) const {
        IDispatch* found = nullptr;
        table()->get_accChild(child(number + 1), &found);
        Element element{asAccessible(found)};
        if (found)
            found->Release();
        return element;
    }
    Element cell(int row, int column) const { return {std::move(this->row(row).object), column + 1}; }
    // What a screen reader gets for the elements of a VARIANT: row and column, column -1 for whole rows.
    static std::set<long> numbersIn(VARIANT& result) {
        std::set<long> numbers;
        if (result.vt == VT_I4)
            numbers.insert(result.lVal);
        if (result.vt == VT_UNKNOWN) {
            void* found = nullptr;
            result.punkVal->QueryInterface(__uuidof(IEnumVARIANT), &found);
            const Object<IEnumVARIANT> all(static_cast<IEnumVARIANT*>(found));
            for (VARIANT next = child(0); all->Next(1, &next, nullptr) == S_OK; VariantClear(&next))
                numbers.insert(next.vt == VT_I4 ? next.lVal : -1);
        }
        VariantClear(&result);
        return numbers;
    }
};

TEST_F(GridAccess, IsATableOfRowsOfCells) {
    const auto grid_ = table();
    EXPECT_EQ((Element{table()}).role(), ROLE_SYSTEM_TABLE);
    long count = 0;
    EXPECT_EQ(grid_->get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 30);
    EXPECT_EQ(row(3).object->get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(row(3).role(), ROLE_SYSTEM_ROW);
    EXPECT_EQ(row(3).name(), L"r3c0");
    EXPECT_EQ(cell(0, 2).role(), ROLE_SYSTEM_COLUMNHEADER);
    EXPECT_EQ(cell(1, text).role(), ROLE_SYSTEM_CELL);
    EXPECT_EQ(cell(1, check).role(), ROLE_SYSTEM_CHECKBUTTON);
    EXPECT_EQ(cell(1, choice).role(), ROLE_SYSTEM_DROPLIST);
    EXPECT_EQ(cell(7, text).name(), L"head 0");
    EXPECT_EQ(cell(7, text).value(), L"r7c0");
    EXPECT_EQ(cell(2, check).value(), L"1");
    IDispatch* parent = nullptr;
    EXPECT_EQ(row(3).object->get_accParent(&parent), S_OK);
    EXPECT_EQ((Element{asAccessible(parent)}).role(), ROLE_SYSTEM_TABLE);
    parent->Release();
}

TEST_F(GridAccess, TakesItsNameFromItsTextOrFromTheLabelBefore) {
    EXPECT_EQ((Element{table()}).name(), L"");
    const HWND label = CreateWindowExW(0, L"Static", L"&Layers:", WS_CHILD, 0, 0, 10, 10, window.owner(),
                                       nullptr, nullptr, nullptr);
    SetWindowPos(grid.handle(), label, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    EXPECT_EQ((Element{table()}).name(), L"Layers:");
    SetWindowTextW(grid.handle(), L"Own name");
    EXPECT_EQ((Element{table()}).name(), L"Own name");
}

TEST_F(GridAccess, TellsStates) {
    grid.setReadOnly(3, text);
    EXPECT_TRUE(cell(1, text).is(STATE_SYSTEM_FOCUSED | STATE_SYSTEM_SELECTED | STATE_SYSTEM_FOCUSABLE));
    EXPECT_FALSE(cell(2, text).is(STATE_SYSTEM_FOCUSED));
    EXPECT_FALSE(cell(2, text).is(STATE_SYSTEM_SELECTED));
    EXPECT_TRUE(cell(2, text).is(STATE_SYSTEM_SELECTABLE));
    EXPECT_TRUE(cell(2, check).is(STATE_SYSTEM_CHECKED));
    EXPECT_FALSE(cell(2, check).is(STATE_SYSTEM_READONLY));
    EXPECT_FALSE(cell(1, check).is(STATE_SYSTEM_CHECKED));
    EXPECT_TRUE(cell(3, text).is(STATE_SYSTEM_READONLY));
    EXPECT_TRUE(cell(2, hidden).is(STATE_SYSTEM_INVISIBLE));
    EXPECT_FALSE(cell(2, text).is(STATE_SYSTEM_INVISIBLE));
    EXPECT_TRUE(cell(25, text).is(STATE_SYSTEM_OFFSCREEN));
    EXPECT_TRUE(row(25).is(STATE_SYSTEM_OFFSCREEN));
    EXPECT_FALSE(cell(1, text).is(STATE_SYSTEM_OFFSCREEN));
    EXPECT_FALSE(cell(0, text).is(STATE_SYSTEM_SELECTABLE));
    grid.scrollToTop(20);
    EXPECT_TRUE(cell(1, text).is(STATE_SYSTEM_OFFSCREEN)) << "beneath the header";
    EXPECT_FALSE(cell(0, text).is(STATE_SYSTEM_OFFSCREEN));
    EnableWindow(grid.handle(), FALSE);
    EXPECT_TRUE(cell(1, text).is(STATE_SYSTEM_UNAVAILABLE));
}

TEST_F(GridAccess, SaysWhereCellsAreAndWhatIsAtAPoint) {
    RECT area = *grid.cellArea(2, choice);
    MapWindowPoints(grid.handle(), nullptr, reinterpret_cast<POINT*>(&area), 2);
    const RECT told = cell(2, choice).place();
    EXPECT_TRUE(EqualRect(&told, &area));
    VARIANT hit = child(0);
    EXPECT_EQ(table()->accHitTest(area.left + 3, area.top + 3, &hit), S_OK);
    ASSERT_EQ(hit.vt, VT_DISPATCH);
    Element under{asAccessible(hit.pdispVal)};
    VariantClear(&hit);
    EXPECT_EQ(under.name(), L"r2c0");
    EXPECT_EQ(under.object->accHitTest(area.left + 3, area.top + 3, &hit), S_OK);
    EXPECT_EQ(hit.lVal, choice + 1);
    EXPECT_EQ(table()->accHitTest(area.left - 5000, area.top, &hit), S_FALSE);
    const RECT none = cell(2, hidden).place();
    EXPECT_TRUE(IsRectEmpty(&none));
}

TEST_F(GridAccess, MovesTheFocusAsTheDrafterDoes) {
    EXPECT_EQ(cell(4, choice).select(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION), S_OK);
    EXPECT_EQ(window.takeEvents(), (std::vector<GridEvent>{{gridSelectionChanged, 4, choice, L""}}));
    EXPECT_EQ(cell(6, choice).select(SELFLAG_TAKEFOCUS | SELFLAG_EXTENDSELECTION), S_OK);
    EXPECT_TRUE(grid.isSelected(5, choice));
    VARIANT result = child(0);
    EXPECT_EQ(table()->get_accSelection(&result), S_OK);
    EXPECT_EQ(result.vt, VT_UNKNOWN) << "three rows";
    EXPECT_EQ(numbersIn(result), std::set<long>{-1});
    EXPECT_EQ(row(5).object->get_accSelection(&result), S_OK);
    EXPECT_EQ(numbersIn(result), std::set<long>{choice + 1});
    EXPECT_EQ(row(9).object->get_accSelection(&result), S_OK);
    EXPECT_EQ(numbersIn(result), std::set<long>{});
    EXPECT_EQ(cell(0, text).select(SELFLAG_TAKEFOCUS), E_INVALIDARG);
    EXPECT_EQ(cell(4, hidden).select(SELFLAG_TAKEFOCUS), E_INVALIDARG);
    EXPECT_EQ(cell(4, text).select(SELFLAG_ADDSELECTION), E_INVALIDARG);
    EXPECT_EQ(grid.focusedRow(), 6);
    EXPECT_EQ(row(8).select(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION), S_OK);
    EXPECT_EQ(grid.focusedRow(), 8);
    EXPECT_EQ(grid.focusedColumn(), choice);
}

TEST_F(GridAccess, LeadsFromTheTableToTheCellWithTheFocus) {
    window.click(3, choice);
    VARIANT result = child(0);
    EXPECT_EQ(table()->get_accFocus(&result), S_OK);
    ASSERT_EQ(result.vt, VT_DISPATCH);
    Element focused{asAccessible(result.pdispVal)};
    VariantClear(&result);
    EXPECT_EQ(focused.name(), L"r3c0");
    EXPECT_EQ(focused.object->get_accFocus(&result), S_OK);
    EXPECT_EQ(result.lVal, choice + 1);
    SetFocus(window.ownerControl(GridWindow::afterId));
    EXPECT_EQ(table()->get_accFocus(&result), S_FALSE);
}

TEST_F(GridAccess, ActsAsTheDrafterDoes) {
    EXPECT_EQ(cell(3, check).action(), L"Check");
    EXPECT_EQ(cell(3, check).act(), S_OK);
    EXPECT_EQ(cell(3, check).action(), L"Uncheck");
    EXPECT_EQ(window.takeEvents(gridEndEdit), (std::vector<GridEvent>{{gridEndEdit, 3, check, L""}}));
    EXPECT_EQ(cell(3, text).action(), L"Edit");
    EXPECT_EQ(cell(3, text).act(), S_OK);
    EXPECT_TRUE(grid.isEditing());
    grid.endEditing();
    window.pump();
    EXPECT_EQ(cell(3, refused).act(), S_OK);
    EXPECT_FALSE(grid.isEditing()) << "the owner refused";
    grid.setReadOnly(4, text);
    EXPECT_EQ(cell(4, text).action(), L"(none)");
    EXPECT_EQ(cell(4, text).act(), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(cell(0, text).act(), DISP_E_MEMBERNOTFOUND);
}

TEST_F(GridAccess, EntersValuesWhereTheOwnerAllowsIt) {
    EXPECT_EQ(cell(3, text).setValue(L"said"), S_OK);
    EXPECT_EQ(window.takeEvents(),
              (std::vector<GridEvent>{{gridBeginEdit, 3, text, L""}, {gridEndEdit, 3, text, L""}}));
    EXPECT_EQ(grid.text(3, text), L"said");
    EXPECT_EQ(cell(3, refused).setValue(L"no"), E_ACCESSDENIED);
    EXPECT_EQ(cell(3, choice).setValue(L"Oval"), E_ACCESSDENIED);
    EXPECT_EQ(cell(3, choice).setValue(L"Square"), S_OK);
    EXPECT_EQ(cell(3, hidden).setValue(L"x"), E_ACCESSDENIED);
    EXPECT_EQ(grid.text(3, choice), L"Square");
    EXPECT_EQ(grid.text(3, hidden), L"r3c3");
}

TEST_F(GridAccess, ShowsSectionsAsBranches) {
    CGridCtrl& tree = window.grid;
    tree.setRowCount(1);
    tree.setTreeColumn(0);
    const int section = tree.addSectionRow(L"Walls");
    const int below = tree.addTreeRow();
    EXPECT_EQ(cell(section, 0).role(), ROLE_SYSTEM_OUTLINEITEM);
    EXPECT_TRUE(cell(section, 0).is(STATE_SYSTEM_EXPANDED));
    EXPECT_EQ(cell(section, 0).action(), L"Collapse");
    EXPECT_EQ(cell(section, 0).act(), S_OK);
    EXPECT_TRUE(cell(section, 0).is(STATE_SYSTEM_COLLAPSED));
    EXPECT_TRUE(row(below).is(STATE_SYSTEM_INVISIBLE));
    EXPECT_EQ(cell(section, 0).act(), S_OK);
    EXPECT_FALSE(row(below).is(STATE_SYSTEM_INVISIBLE));
}

TEST_F(GridAccess, OutlivesItsRowsAndTheGrid) {
    const auto all = table();
    const Element last = row(29);
    grid.deleteRow(29);
    long count = 0;
    EXPECT_EQ(last.object->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
    const Element first = row(1);
    window.destroyOwner();
    EXPECT_EQ(all->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(first.select(SELFLAG_TAKEFOCUS), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(first.act(), CO_E_OBJNOTCONNECTED);
    VARIANT result = child(0);
    EXPECT_EQ(all->get_accFocus(&result), CO_E_OBJNOTCONNECTED);
}

TEST_F(GridAccess, RefusesChildrenThatAreNotThere) {
    VARIANT result = child(0);
    BSTR text_ = nullptr;
    EXPECT_EQ(table()->get_accState(child(31), &result), E_INVALIDARG);
    EXPECT_EQ(table()->get_accState(child(-1), &result), E_INVALIDARG);
    EXPECT_EQ(row(1).object->get_accName(child(6), &text_), E_INVALIDARG);
    VARIANT other;
    VariantInit(&other);
    EXPECT_EQ(table()->get_accName(other, &text_), E_INVALIDARG);
    EXPECT_EQ(table()->get_accName(child(0), nullptr), E_POINTER);
}

// ---- What is announced

struct Announced {
    long object, which;
};
std::vector<Announced> announced;

void CALLBACK note(HWINEVENTHOOK, DWORD, HWND, LONG object, LONG which, DWORD, DWORD) {
    announced.push_back({object, which});
}

TEST_F(GridAccess, AnnouncesTheCellThatTakesTheFocus) {
    announced.clear();
    const HWINEVENTHOOK hook =
        SetWinEventHook(EVENT_OBJECT_FOCUS, EVENT_OBJECT_FOCUS, nullptr, note, GetCurrentProcessId(),
                        GetCurrentThreadId(), WINEVENT_OUTOFCONTEXT);
    ASSERT_NE(hook, nullptr);
    window.press(VK_DOWN);
    const bool heard = window.pumpUntil([] { return !announced.empty() && announced.back().object > 0; });
    UnhookWinEvent(hook);
    ASSERT_TRUE(heard);
    // The ids lead to the cell, as a screen reader follows them.
    IAccessible* found = nullptr;
    VARIANT which = child(0);
    ASSERT_EQ(AccessibleObjectFromEvent(grid.handle(), static_cast<DWORD>(announced.back().object),
                                        static_cast<DWORD>(announced.back().which), &found, &which),
              S_OK);
    Element element{Object<IAccessible>(found), which.lVal};
    EXPECT_EQ(element.value(), L"r2c0");
    EXPECT_TRUE(element.is(STATE_SYSTEM_FOCUSED));
}

// ---- The tip over clipped texts

HWND tip() {
    return FindWindowW(GridTitleTip::className, nullptr);
}

TEST_F(GridAccess, ShowsClippedTextsInATipUntilSomethingHappens) {
    const std::wstring longText = L"a text that is far too long for the column of its cell";
    grid.setText(2, text, longText);
    const auto rest = [&] { window.mouseMove(window.middle(2, text), 0); };
    window.mouseMove(window.middle(1, text), 0);
    EXPECT_EQ(tip(), nullptr) << "a text that fits";
    const std::vector<std::function<void()>> ends{[&] { window.mouseMove(window.middle(3, text), 0); },
                                                  [&] { PostMessageW(grid.handle(), WM_MOUSELEAVE, 0, 0); },
                                                  [&] {
                                                      window.wheel(-WHEEL_DELTA);
                                                      grid.scrollToTop(1);
                                                  },
                                                  [&] { window.press(VK_DOWN); },
                                                  [&] {
                                                      SetFocus(window.ownerControl(GridWindow::afterId));
                                                      SetFocus(grid.handle());
                                                  },
                                                  [&] { window.click(2, text); }};
    for (std::size_t i = 0; i < ends.size(); ++i) {
        window.mouseMove(window.middle(3, text), 0);
        rest();
        ASSERT_NE(tip(), nullptr) << i;
        EXPECT_EQ(framework::textOf(tip()), longText);
        EXPECT_EQ(GetFocus(), grid.handle()) << i;
        ends[i]();
        window.pump();
        EXPECT_EQ(tip(), nullptr) << i;
    }
    EXPECT_EQ(grid.focusedRow(), 2) << "the click went through the tip to the cell";
}

TEST_F(GridAccess, KeepsTheTipOnTheMonitor) {
    grid.setText(2, text, std::wstring(3000, L'w'));
    const int right = GetSystemMetrics(SM_CXSCREEN), bottom = GetSystemMetrics(SM_CYSCREEN);
    SetWindowPos(window.owner(), nullptr, right - 100, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    window.mouseMove(window.middle(2, text), 0);
    ASSERT_NE(tip(), nullptr);
    RECT area{};
    GetWindowRect(tip(), &area);
    EXPECT_GE(area.left, 0);
    EXPECT_LE(area.right, right);
    EXPECT_LE(area.bottom, bottom);
    window.destroyOwner();
    EXPECT_EQ(tip(), nullptr);
}

}  // namespace
