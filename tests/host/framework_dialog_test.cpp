// Modal dialogs of the framework, with real windows.

#include "framework/dialog.h"
#include "framework/exception.h"
#include "framework/gdi.h"
#include "framework/instance.h"
#include "framework/window.h"
#include "framework/window_picture.h"
#include "tests/host/dialog_test.h"
#include "tests/host/test_dialogs.h"

#include <memory>

using namespace framework;
using namespace drafthost::testing;

namespace {

using FrameworkDialog = HostDialogTest;
using FrameworkWindow = HostDialogTest;
using Step = DialogDriver::Step;

class TestDialog : public Dialog {
public:
    explicit TestDialog(UINT id = IDD_TEST_RESIZABLE, HWND parent = nullptr)
        : Dialog(id, parent, ownInstance()) {
        onButton(IDC_TEST_THROW, &TestDialog::pressed);
    }
    using Dialog::templateSize;
    std::function<void()> atStart, atThrow, atDestroy;

protected:
    bool onInitDialog() override {
        anchor(IDC_TEST_BOX, anchorLeft | anchorTop | anchorRight | anchorBottom);
        anchor(IDC_TEST_LIST, anchorLeft | anchorTop | anchorRight | anchorBottom);
        anchor(IDC_TEST_EDIT, anchorLeft | anchorBottom);
        anchor(IDC_TEST_THROW, anchorRight | anchorBottom);
        anchor(IDOK, anchorBottom);
        anchor(IDCANCEL, anchorBottom);
        if (atStart)
            atStart();
        return true;
    }
    INT_PTR handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_DESTROY && atDestroy)
            atDestroy();
        return Dialog::handleMessage(message, wParam, lParam);
    }

private:
    void pressed() {
        if (atThrow)
            atThrow();
    }
};

std::intptr_t run(TestDialog& dialog, std::deque<Step> steps) {
    const DialogDriver driver(std::move(steps));
    return dialog.DoModal();
}

class Complaint final : public CException {
public:
    explicit Complaint(bool& deleted) : deleted_(deleted) {}
    BOOL GetErrorMessage(LPWSTR buffer, UINT capacity) override {
        return wcscpy_s(buffer, capacity, L"complaint") == 0;
    }
    void Delete() override {
        deleted_ = true;
        delete this;
    }

private:
    bool& deleted_;
};

RECT inDialog(HWND dialog, int id) {
    RECT place = placeOf(GetDlgItem(dialog, id));
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// As pictures have it.
std::uint32_t systemColor(int which) {
    const COLORREF color = GetSysColor(which);
    return static_cast<std::uint32_t>(GetRValue(color) << 16 | GetGValue(color) << 8 | GetBValue(color));
}

void resize(HWND dialog, int byWidth, int byHeight) {
    const RECT place = placeOf(dialog);
    SetWindowPos(dialog, nullptr, 0, 0, place.right - place.left + byWidth,
                 place.bottom - place.top + byHeight, SWP_NOMOVE | SWP_NOZORDER);
}

void expectPlace(const RECT& actual, const RECT& before, LONG left, LONG top, LONG right, LONG bottom) {
    const RECT moved = {actual.left - before.left, actual.top - before.top, actual.right - before.right,
                        actual.bottom - before.bottom};
    EXPECT_EQ(moved.left, left);
    EXPECT_EQ(moved.top, top);
    EXPECT_EQ(moved.right, right);
    EXPECT_EQ(moved.bottom, bottom);
}

}  // namespace

TEST_F(FrameworkDialog, AnswersWhatItWasEndedWith) {
    TestDialog dialog;
    EXPECT_EQ(run(dialog, {press(IDOK)}), IDOK);
    EXPECT_EQ(run(dialog, {press(IDCANCEL)}), IDCANCEL);
    EXPECT_EQ(run(dialog, {key(VK_RETURN)}), IDOK);
    EXPECT_EQ(run(dialog, {key(VK_ESCAPE)}), IDCANCEL);
    EXPECT_EQ(run(dialog, {[](HWND window) { PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0); }}), IDCANCEL);
    EXPECT_EQ(dialog.handle(), nullptr);

    struct Ends : TestDialog {
        void onOK() override { end(0); }
    } ends;
    EXPECT_EQ(run(ends, {press(IDOK)}), 0);
    struct EndsAtOnce : TestDialog {
        bool onInitDialog() override {
            end(42);
            return true;
        }
    } endsAtOnce;
    EXPECT_EQ(endsAtOnce.DoModal(), 42);
}

TEST_F(FrameworkDialog, SaysWhenItCannotBeCreated) {
    EXPECT_EQ(TestDialog(IDD_TEST_MISSING).DoModal(), -1);
    EXPECT_EQ(TestDialog(IDD_TEST_UNKNOWN_CLASS).DoModal(), -1);
    const HWND gone =
        CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    EXPECT_EQ(Dialog(IDD_TEST_PLAIN, gone, ownInstance()).DoModal(), -1);

    TestDialog open;
    std::intptr_t second = 0;
    open.atThrow = [&] { second = open.DoModal(); };
    EXPECT_EQ(run(open, {press(IDC_TEST_THROW), press(IDOK)}), IDOK);
    EXPECT_EQ(second, -1);
}

TEST_F(FrameworkDialog, ExceptionsOfHandlersComeOutOfDoModal) {
    TestDialog dialog;
    dialog.atThrow = [] { throw 17; };
    EXPECT_THROW(run(dialog, {press(IDC_TEST_THROW)}), int);
    EXPECT_EQ(dialog.handle(), nullptr);

    dialog.atStart = [] { throw std::string("at start"); };
    EXPECT_THROW(dialog.DoModal(), std::string);
    dialog.atStart = nullptr;

    bool deleted = false, secondDeleted = false;
    dialog.atThrow = [&] { throw static_cast<CException*>(new Complaint(deleted)); };
    dialog.atDestroy = [&] { throw static_cast<CException*>(new Complaint(secondDeleted)); };
    try {
        run(dialog, {press(IDC_TEST_THROW)});
        ADD_FAILURE() << "nothing was thrown";
    } catch (CException* exception) {
        EXPECT_TRUE(secondDeleted);  // what follows from the first failure is nobody's
        EXPECT_FALSE(deleted);
        exception->Delete();
    }
    dialog.atThrow = dialog.atDestroy = nullptr;
    EXPECT_EQ(run(dialog, {press(IDOK)}), IDOK);  // it can be shown again
}

TEST_F(FrameworkDialog, ExceptionsPassThroughNestedDialogsAndControls) {
    TestDialog outer;
    const auto showInner = [&] {
        TestDialog inner(IDD_TEST_RESIZABLE, outer.handle());
        inner.atThrow = [] { throw 3; };
        inner.DoModal();
    };
    outer.atThrow = showInner;
    EXPECT_THROW(run(outer, {press(IDC_TEST_THROW), press(IDC_TEST_THROW)}), int);

    bool caught = false;
    outer.atThrow = [&] {
        try {
            showInner();
        } catch (int) {
            caught = true;
        }
    };
    EXPECT_EQ(run(outer, {press(IDC_TEST_THROW), press(IDC_TEST_THROW), press(IDOK)}), IDOK);
    EXPECT_TRUE(caught);

    struct Throwing : Window {
        LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_CHAR)
                throw 5L;
            return defaultHandling(message, wParam, lParam);
        }
    } edit;
    TestDialog dialog;
    dialog.atStart = [&] { edit.attach(dialog.control(IDC_TEST_EDIT)); };
    EXPECT_THROW(
        run(dialog, {[](HWND window) { PostMessageW(GetDlgItem(window, IDC_TEST_EDIT), WM_CHAR, L'x', 1); }}),
        long);
    EXPECT_EQ(edit.handle(), nullptr);
}

TEST_F(FrameworkDialog, EndsWhenTheProgramEndsAndLeavesTheMessageToTheProgram) {
    TestDialog outer;
    std::intptr_t innerResult = 0;
    outer.atThrow = [&] { innerResult = TestDialog(IDD_TEST_RESIZABLE, outer.handle()).DoModal(); };
    EXPECT_EQ(run(outer, {press(IDC_TEST_THROW), [](HWND) { PostQuitMessage(7); }}), IDCANCEL);
    EXPECT_EQ(innerResult, IDCANCEL);
    MSG message{};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);

    EXPECT_EQ(run(outer, {[](HWND window) {
                      DestroyWindow(window);
                      PostQuitMessage(0);
                  }}),
              IDCANCEL);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST_F(FrameworkDialog, AnchorsHoldThroughEveryChangeOfSize) {
    TestDialog dialog;
    std::map<int, RECT> before;
    const int ids[] = {IDC_TEST_BOX, IDC_TEST_LIST, IDC_TEST_EDIT, IDC_TEST_THROW, IDOK};
    const auto expectGrown = [&](HWND window, LONG x, LONG y) {
        expectPlace(inDialog(window, IDC_TEST_BOX), before[IDC_TEST_BOX], 0, 0, x, y);
        expectPlace(inDialog(window, IDC_TEST_EDIT), before[IDC_TEST_EDIT], 0, y, 0, y);
        expectPlace(inDialog(window, IDC_TEST_THROW), before[IDC_TEST_THROW], x, y, x, y);
        expectPlace(inDialog(window, IDOK), before[IDOK], x / 2, y, x / 2, y);
    };
    const auto growth = [&](HWND window) {
        const RECT place = placeOf(window);
        return SIZE{place.right - place.left - dialog.templateSize().cx,
                    place.bottom - place.top - dialog.templateSize().cy};
    };
    run(dialog, {[&](HWND window) {
                     for (const int id : ids)
                         before[id] = inDialog(window, id);
                     for (int i = 0; i < 50; ++i)
                         resize(window, 1, 0);  // halves of a pixel must not be lost
                     resize(window, 1, 33);
                     expectGrown(window, 51, 33);
                     SendMessageW(window, WM_SYSCOMMAND, SC_MINIMIZE, 0);
                     SendMessageW(window, WM_SYSCOMMAND, SC_RESTORE, 0);
                     expectGrown(window, 51, 33);
                     ShowWindow(window, SW_MAXIMIZE);
                     const RECT client = [&] {
                         RECT area{};
                         GetClientRect(window, &area);
                         return area;
                     }();
                     EXPECT_LE(inDialog(window, IDC_TEST_THROW).right, client.right);
                     EXPECT_GT(inDialog(window, IDC_TEST_THROW).left, before[IDC_TEST_THROW].left + 51);
                     ShowWindow(window, SW_RESTORE);
                     expectGrown(window, 51, 33);
                     resize(window, -5000, -5000);  // no smaller than the template
                     EXPECT_EQ(growth(window).cx, 0);
                     EXPECT_EQ(growth(window).cy, 0);
                     expectGrown(window, 0, 0);
                 },
                 press(IDOK)});
}

TEST_F(FrameworkDialog, ControlsAreNotErasedWhenTheDialogIsResized) {
    TestDialog dialog;
    struct Counting : Window {
        int erased = 0, painted = 0;
        LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
            erased += message == WM_ERASEBKGND;
            painted += message == WM_PAINT;
            return defaultHandling(message, wParam, lParam);
        }
    } edit;
    dialog.atStart = [&] { edit.attach(dialog.control(IDC_TEST_EDIT)); };
    run(dialog,
        {[&](HWND window) {
             UpdateWindow(window);
             RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
             edit.erased = edit.painted = 0;
             const HWND box = GetDlgItem(window, IDC_TEST_BOX);
             RECT inside{};
             GetClientRect(box, &inside);
             inside = {inside.right - 8, inside.bottom - 8, inside.right - 4, inside.bottom - 4};
             FillRect(ClientContext(box).get(), &inside, Brush(CreateSolidBrush(RGB(1, 2, 3))).get());
             resize(window, 40, 0);  // the edit field stays where it is
             RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
             EXPECT_EQ(edit.erased, 0);
             EXPECT_EQ(edit.painted, 0);
             // What was left in the group box, which paints no inside, goes.
             MapWindowPoints(box, nullptr, reinterpret_cast<POINT*>(&inside), 2);
             const RECT place = placeOf(window);
             EXPECT_EQ(takeWindowPicture(window).at(inside.left - place.left + 1, inside.top - place.top + 1),
                       systemColor(COLOR_3DFACE));
         },
         press(IDOK)});
}

TEST_F(FrameworkWindow, PicturesShowTheWindowWithItsFrameAndControls) {
    TestDialog dialog;
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / (L"picture" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(folder);
    run(dialog,
        {[&](HWND window) {
             SetWindowTextW(GetDlgItem(window, IDC_TEST_EDIT), L"MMMM");
             const WindowPicture picture = takeWindowPicture(window);
             const RECT place = placeOf(window);
             ASSERT_EQ(picture.width, place.right - place.left);
             ASSERT_EQ(picture.height, place.bottom - place.top);
             RECT edit = placeOf(GetDlgItem(window, IDC_TEST_EDIT));
             OffsetRect(&edit, -place.left, -place.top);
             std::set<std::uint32_t> colors;
             for (int y = edit.top; y < edit.bottom; ++y)
                 for (int x = edit.left; x < edit.right; ++x)
                     colors.insert(picture.at(x, y));
             EXPECT_TRUE(colors.contains(systemColor(COLOR_WINDOW)));
             EXPECT_TRUE(colors.contains(systemColor(COLOR_WINDOWTEXT)));
             std::wstring problem;
             const std::wstring file = (folder / L"dialog.png").wstring();
             ASSERT_TRUE(saveWindowPicture(window, file, problem)) << problem.size();
             ASSERT_TRUE(saveWindowPicture(window, file, problem));  // over the old one
             std::ifstream stream(std::filesystem::path(file), std::ios::binary);
             char header[24] = {};
             stream.read(header, sizeof header);
             EXPECT_EQ(std::string(header, 8), "\x89PNG\r\n\x1a\n");
             EXPECT_EQ(static_cast<unsigned char>(header[18]) * 256 + static_cast<unsigned char>(header[19]),
                       picture.width);
             EXPECT_FALSE(saveWindowPicture(window, (folder / L"none" / L"x.png").wstring(), problem));
             EXPECT_FALSE(problem.empty());
             EXPECT_FALSE(saveWindowPicture(window, folder.wstring(), problem));
         },
         press(IDOK)});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);  // nothing half-written
    std::filesystem::remove_all(folder);
}

TEST_F(FrameworkWindow, PicturesShowTheListThatIsDroppedDown) {
    TestDialog dialog(IDD_TEST_PLAIN);
    run(dialog, {[](HWND window) {
                     const HWND combo = GetDlgItem(window, IDC_TEST_COMBO);
                     for (const wchar_t* text : {L"MMMM", L"WWWW"})
                         SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
                     const WindowPicture closed = takeWindowPicture(window);
                     SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
                     const WindowPicture open = takeWindowPicture(window);
                     COMBOBOXINFO info{};
                     info.cbSize = sizeof info;
                     ASSERT_TRUE(GetComboBoxInfo(combo, &info));
                     const RECT place = placeOf(window), list = placeOf(info.hwndList);
                     const int x = list.left - place.left, y = list.top - place.top;
                     EXPECT_EQ(closed.at(x + 20, y + 4), systemColor(COLOR_3DFACE));
                     std::set<std::uint32_t> colors;
                     for (int column = 2; column < 60; ++column)
                         colors.insert(open.at(x + column, y + 8));
                     EXPECT_TRUE(colors.contains(systemColor(COLOR_WINDOW)));
                     EXPECT_TRUE(colors.contains(systemColor(COLOR_WINDOWTEXT)));
                     SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
                 },
                 press(IDOK)});
}
