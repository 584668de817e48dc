// The base of modules' dialogs: where they stand, and what is kept of it.

#include "framework/instance.h"
#include "host/api/dialog.h"
#include "host/dialogs/dialog_place.h"
#include "host/dialogs/main_window.h"
#include "host/documents/profile.h"
#include "tests/host/dialog_test.h"
#include "tests/host/test_dialogs.h"

using namespace drafthost;
using namespace drafthost::testing;

namespace {

// Tests of this file may run at the same time.
const std::wstring kName = L"tests:HostDialog" + std::to_wstring(GetCurrentProcessId());

class PlacedDialog final : public AcEdDialog {
public:
    explicit PlacedDialog(UINT id = IDD_TEST_RESIZABLE, HWND parent = nullptr)
        : AcEdDialog(id, parent, framework::ownInstance()) {}
    using Dialog::templateSize;

private:
    bool onInitDialog() override {
        setDialogName(kName.c_str());
        anchor(IDC_TEST_LIST, framework::anchorLeft | framework::anchorTop | framework::anchorRight |
                                  framework::anchorBottom);
        return AcEdDialog::onInitDialog();
    }
};

// The place it was shown at, before `change` was made.
RECT show(PlacedDialog& dialog, const std::function<void(HWND)>& change = nullptr) {
    RECT shown{};
    const DialogDriver driver({[&](HWND window) {
                                   shown = placeOf(window);
                                   if (change)
                                       change(window);
                               },
                               press(IDCANCEL)});
    dialog.DoModal();
    return shown;
}

SIZE sizeOf(const RECT& area) {
    return {area.right - area.left, area.bottom - area.top};
}

bool inside(const RECT& area, const RECT& around) {
    return area.left >= around.left && area.top >= around.top && area.right <= around.right &&
           area.bottom <= around.bottom;
}

std::function<void(HWND)> moveTo(int left, int top, int width, int height) {
    return [=](HWND window) { SetWindowPos(window, nullptr, left, top, width, height, SWP_NOZORDER); };
}

class HostDialog : public HostDialogTest {
protected:
    HostDialog() { forgetPlace(kName); }
    ~HostDialog() override { forgetPlace(kName); }
    static void keep(const wchar_t* text) { ASSERT_TRUE(writeProfile(L"Dialogs", kName, text)); }
};

}  // namespace

TEST_F(HostDialog, StandsInTheMiddleUntilItIsMovedAndThenWhereItWasLeft) {
    PlacedDialog dialog;
    const RECT first = show(dialog);
    const RECT area = workAreaAround(first);
    EXPECT_LE(std::abs((first.left + first.right) - (area.left + area.right)), 1);
    EXPECT_LE(std::abs((first.top + first.bottom) - (area.top + area.bottom)), 1);
    EXPECT_FALSE(keptPlace(kName));

    const SIZE size = {sizeOf(first).cx + 40, sizeOf(first).cy + 21};
    show(dialog, moveTo(30, 20, size.cx, size.cy));
    int listWidth = 0;
    const RECT second = show(dialog, [&](HWND window) {
        listWidth = sizeOf(placeOf(GetDlgItem(window, IDC_TEST_LIST))).cx;
        ShowWindow(window, SW_MAXIMIZE);  // what is kept is the place to go back to
    });
    EXPECT_EQ(second.left, 30);
    EXPECT_EQ(second.top, 20);
    EXPECT_EQ(sizeOf(second).cx, size.cx);
    EXPECT_EQ(sizeOf(second).cy, size.cy);
    const RECT third = show(dialog, [&](HWND window) {
        EXPECT_EQ(sizeOf(placeOf(GetDlgItem(window, IDC_TEST_LIST))).cx, listWidth);
        SendMessageW(window, WM_SYSCOMMAND, SC_MINIMIZE, 0);
    });
    EXPECT_TRUE(EqualRect(&third, &second));
    const RECT last = show(dialog);
    EXPECT_TRUE(EqualRect(&last, &second));
}

TEST_F(HostDialog, APlaceThatNoScreenShowsIsMovedToWhereItIsVisibleAndStaysKept) {
    PlacedDialog dialog;
    const RECT area = workAreaAround(show(dialog));
    for (const wchar_t* kept : {L"-9000,-9000,400,300", L"90000,40,400,300", L"40,100000,400,300",
                                L"0,0,100000,100000", L"0,0,1,1"}) {
        keep(kept);
        const RECT place = show(dialog);
        EXPECT_TRUE(inside(place, area)) << place.left << "," << place.top;
        EXPECT_GE(sizeOf(place).cx, dialog.templateSize().cx);
        EXPECT_GE(sizeOf(place).cy, dialog.templateSize().cy);
        EXPECT_EQ(readProfile(L"Dialogs", kName), kept);
    }
}

TEST_F(HostDialog, GarbageInTheProfileCountsAsNothing) {
    PlacedDialog dialog;
    const RECT usual = show(dialog);
    for (const wchar_t* kept : {L"", L",,,", L"10,10,400", L"10,10,400,300,", L"10,10,-400,300", L"10,10,0,0",
                                L"1e3,10,400,300", L"99999999999999999999,1,400,300",
                                L"2147483647,2147483647,2147483647,2147483647", L"\x0664,1,2,3"}) {
        keep(kept);
        const RECT place = show(dialog);
        EXPECT_TRUE(EqualRect(&place, &usual));
    }
    const DWORD number = 7;
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, (profileKey() + L"\\Dialogs").c_str(), kName.c_str(),
                              REG_DWORD, &number, sizeof number),
              ERROR_SUCCESS);
    EXPECT_FALSE(keptPlace(kName));
}

TEST_F(HostDialog, OnlyResizableDialogsGetAKeptSize) {
    keep(L"50,60,900,700");
    PlacedDialog dialog(IDD_TEST_PLAIN);
    const RECT place = show(dialog);
    EXPECT_EQ(place.left, 50);
    EXPECT_EQ(place.top, 60);
    EXPECT_EQ(sizeOf(place).cx, dialog.templateSize().cx);
    EXPECT_EQ(sizeOf(place).cy, dialog.templateSize().cy);
}

TEST_F(HostDialog, OneThatIsLargerThanTheScreenKeepsAllItsControlsAndShowsItsCaption) {
    PlacedDialog dialog(IDD_TEST_HUGE);
    RECT client{}, button{};
    const RECT place = show(dialog, [&](HWND window) {
        GetClientRect(window, &client);
        button = placeOf(GetDlgItem(window, IDOK));
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&button), 2);
    });
    const RECT area = workAreaAround(place);
    EXPECT_EQ(place.left, area.left);
    EXPECT_EQ(place.top, area.top);
    EXPECT_LT(button.right, client.right);
    EXPECT_LT(button.bottom, client.bottom);
}

TEST_F(HostDialog, BelongsToTheMainWindowThatIsRegistered) {
    EXPECT_EQ(adsw_acadMainWnd(), nullptr);
    const HWND owner = CreateWindowExW(0, L"Static", L"", WS_POPUP | WS_VISIBLE, 11, 13, 500, 400, nullptr,
                                       nullptr, nullptr, nullptr);
    registerMainWindow(owner);
    ASSERT_EQ(adsw_acadMainWnd(), owner);
    PlacedDialog dialog(IDD_TEST_PLAIN, adsw_acadMainWnd());
    const RECT place = show(dialog, [&](HWND window) {
        EXPECT_EQ(GetWindow(window, GW_OWNER), owner);
        EXPECT_FALSE(IsWindowEnabled(owner));
    });
    EXPECT_TRUE(IsWindowEnabled(owner));
    EXPECT_LE(std::abs((place.left + place.right) - (11 + 11 + 500)), 1);
    EXPECT_LE(std::abs((place.top + place.bottom) - (13 + 13 + 400)), 1);
    DestroyWindow(owner);
    EXPECT_EQ(adsw_acadMainWnd(), nullptr);
    registerMainWindow(nullptr);
}

TEST(DialogPlace, IsMovedAndShrunkByNoMoreThanItTakes) {
    const RECT area = {100, 50, 1100, 850};
    const SIZE smallest = {200, 100};
    const struct {
        RECT place, fitted;
    } cases[] = {
        {{200, 100, 500, 400}, {200, 100, 500, 400}},     {{0, 0, 300, 200}, {100, 50, 400, 250}},
        {{1000, 800, 1300, 1000}, {800, 650, 1100, 850}}, {{0, 0, 5000, 5000}, {100, 50, 1100, 850}},
        {{300, 300, 310, 310}, {300, 300, 500, 400}},     {{1090, 840, 1095, 845}, {900, 750, 1100, 850}},
    };
    for (const auto& [place, expected] : cases) {
        const RECT result = fitted(place, smallest, area);
        EXPECT_TRUE(EqualRect(&result, &expected)) << result.left << " " << result.top;
    }
    // Larger fonts on a small screen: the top left corner, with the caption, is what must be seen.
    const RECT result = fitted({0, 0, 1500, 900}, {1500, 900}, area);
    const RECT expected = {100, 50, 1600, 950};
    EXPECT_TRUE(EqualRect(&result, &expected));
}
