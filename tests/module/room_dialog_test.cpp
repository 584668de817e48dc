// The dialog that docs/dialogs.md shows as an example works as it says.

#include "tests/module/room_dialog.h"

#include "tests/host/dialog_driver.h"

using namespace drafthost::testing;
using tessary::CRoomDialog;

namespace {

using RoomDialog = DialogTest;
using Step = DialogDriver::Step;

// Typed on the grid or on the editor over it.
Step type(const wchar_t* text) {
    return [text](HWND) {
        for (const wchar_t* c = text; *c; ++c)
            PostMessageW(GetFocus(), WM_CHAR, *c, 1);
    };
}

Step focusGrid() {
    return [](HWND dialog) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, 1048)), TRUE);
    };
}

std::vector<std::pair<std::wstring, int>> edit(std::deque<Step> steps, std::intptr_t result) {
    CRoomDialog dialog(nullptr, {{L"Kitchen", 12}, {L"Hall", 30}});
    {
        const DialogDriver driver(std::move(steps));
        EXPECT_EQ(dialog.DoModal(), result);
    }
    std::vector<std::pair<std::wstring, int>> rooms;
    for (const tessary::Room& room : dialog.rooms())
        rooms.emplace_back(room.name, room.area);
    return rooms;
}

using Rooms = std::vector<std::pair<std::wstring, int>>;

}  // namespace

TEST_F(RoomDialog, RoomsAreEditedAndAddedAndTakenOverOnOK) {
    EXPECT_EQ(edit({focusGrid(), key(VK_RIGHT), type(L"14"), key(VK_RETURN), press(1060), type(L"Porch"),
                    press(IDOK)},
                   IDOK),
              (Rooms{{L"Kitchen", 14}, {L"Hall", 30}, {L"Porch", 1}}));
    EXPECT_EQ(edit({press(1060), type(L"Porch"), press(IDCANCEL)}, IDCANCEL),
              (Rooms{{L"Kitchen", 12}, {L"Hall", 30}}));
}

TEST_F(RoomDialog, AnAreaThatIsNoneGivesAMessageAndTheOldOneComesBack) {
    EXPECT_EQ(edit({focusGrid(), key(VK_RIGHT), type(L"large"), key(VK_RETURN),
                    [](HWND box) { EXPECT_EQ(textOf(GetDlgItem(box, 0xFFFF)).substr(0, 8), L"The area"); },
                    press(IDOK), press(IDOK)},
                   IDOK),
              (Rooms{{L"Kitchen", 12}, {L"Hall", 30}}));
}
