// Windows and graphics objects that grids and dialogs leave behind when they are used again and again. A
// process has no more than ten thousand of either.

#include "framework/window_picture.h"
#include "tests/host/dialog_driver.h"
#include "tests/module/grid_window.h"
#include "tests/module/room_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace tessary::testing {
namespace {

// GetGuiResources is not to be relied on: not every version of the platform counts. This table of the
// system's is mapped into each process and has an entry for each graphics object.
int graphicsObjects() {
    struct Entry {
        std::uint64_t object;
        std::uint16_t process, lock, unique;
        std::uint8_t type, flags;  // type 0: a free entry
        std::uint64_t user;
    };
    static_assert(sizeof(Entry) == 24);
    constexpr unsigned long blockOfThread = 0x60, tableInBlock = 0xF8;
    constexpr int entries = 0x4000;
    const auto* const block = reinterpret_cast<const std::byte*>(__readgsqword(blockOfThread));
    const Entry* const table = *reinterpret_cast<const Entry* const*>(block + tableInBlock);
    return static_cast<int>(
        std::count_if(table, table + entries, [](const Entry& entry) { return entry.type != 0; }));
}

BOOL CALLBACK countWindow(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

BOOL CALLBACK countWithChildren(HWND window, LPARAM count) {
    EnumChildWindows(window, countWindow, count);
    return countWindow(window, count);
}

int windows() {
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), countWithChildren, reinterpret_cast<LPARAM>(&count));
    return count;
}

// The first uses may load what stays for good.
void expectNothingLeft(int times, const std::function<void()>& use) {
    use();
    use();
    const int graphicsBefore = graphicsObjects(), windowsBefore = windows();
    for (int i = 0; i < times; ++i)
        use();
    EXPECT_EQ(graphicsObjects(), graphicsBefore);
    EXPECT_EQ(windows(), windowsBefore);
}

TEST(GridResources, TheCountSeesWhatIsLeft) {
    const GridWindow first;  // the system adds windows of its own to a thread's first one
    const int graphicsBefore = graphicsObjects(), windowsBefore = windows();
    const framework::Brush brush(CreateSolidBrush(RGB(1, 2, 3)));
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(graphicsObjects(), graphicsBefore + 1);
    EXPECT_EQ(windows(), windowsBefore + 1);
    DestroyWindow(window);
}

TEST(GridResources, EditingLeavesNothingBehind) {
    GridWindow window;
    window.fill(4, 3);
    window.grid.setColumnChoicesFromText(1, L"|One|Two");
    window.grid.setColumnChoicesFromText(2, L"One|Two");
    for (int column = 0; column < 3; ++column) {
        SCOPED_TRACE(column);
        expectNothingLeft(50, [&] {
            window.doubleClick(1, column);
            EXPECT_TRUE(window.grid.isEditing());
            window.press(VK_ESCAPE);
            window.pump();
        });
    }
}

TEST(GridResources, PaintingLeavesNothingBehind) {
    GridWindow window;
    window.fill(40, 3, 20);  // texts are cut off
    window.grid.setHeaderSort(true);
    window.grid.setCheckBoxColumn(1);
    expectNothingLeft(50, [&] {
        window.click(0, 0);
        window.click(3, 1);
        EXPECT_FALSE(framework::takeWindowPicture(window.owner()).empty());
    });
}

TEST(GridResources, DialogsLeaveNothingBehind) {
    drafthost::testing::useOwnDesktop();
    expectNothingLeft(40, [] {
        using drafthost::testing::DialogDriver;
        const DialogDriver driver({[](HWND dialog) { UpdateWindow(dialog); },
                                   [](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }});
        CRoomDialog rooms(nullptr, {{L"Office", 20}, {L"Corridor", 7}});
        EXPECT_EQ(rooms.DoModal(), IDCANCEL);
    });
}

}  // namespace
}  // namespace tessary::testing
