#include "tests/module/room_dialog.h"

#include "framework/instance.h"
#include "module/standards/list_grid.h"
#include "tests/module/room_dialog_ids.h"

namespace tessary {

namespace {

constexpr int idRooms = 1048;
constexpr int idNewRoom = 1060;
enum Column { nameColumn, areaColumn };

}  // namespace

CRoomDialog::CRoomDialog(HWND parent, std::vector<Room> rooms)
    : AcEdDialog(IDD_ROOMS, parent, framework::ownInstance()), rooms_(std::move(rooms)) {
    onButton(idNewRoom, &CRoomDialog::newRoom);
    onNotify(idRooms, gridBeginEdit, &CRoomDialog::beginEdit);
    onNotify(idRooms, gridEndEdit, &CRoomDialog::edited);
}

bool CRoomDialog::onInitDialog() {
    setDialogName(L"qn_tessary:Rooms");
    anchor(idRooms,
           framework::anchorLeft | framework::anchorTop | framework::anchorRight | framework::anchorBottom);
    anchor(IDOK, framework::anchorBottom);
    anchor(IDCANCEL, framework::anchorBottom);
    AcEdDialog::onInitDialog();
    setUpList(grid_, handle(), idRooms, {{L"Name"}, {L"Area"}});
    const FillingList filling(grid_);
    for (const Room& room : rooms_) {
        const int row = grid_.appendRow();
        grid_.setText(row, nameColumn, room.name);
        grid_.setText(row, areaColumn, std::to_wstring(room.area));
    }
    grid_.autoSizeColumns();
    grid_.extendLastColumn();
    grid_.focusCell(grid_.fixedRowCount(), nameColumn);
    return true;
}

void CRoomDialog::newRoom() {
    const int row = grid_.appendRow();
    grid_.setText(row, nameColumn, L"Room");
    grid_.setText(row, areaColumn, L"1");
    grid_.focusCell(row, nameColumn);
    grid_.ensureVisible(row, nameColumn);
    grid_.editFocusedCell();
}

LRESULT CRoomDialog::beginEdit(const GridNotification& edit) {
    textBefore_ = grid_.text(edit.row, edit.column);
    return 0;
}

LRESULT CRoomDialog::edited(const GridNotification& edit) {
    if (edit.column == areaColumn && leadingInteger(grid_.text(edit.row, edit.column)) <= 0) {
        grid_.setText(edit.row, edit.column, textBefore_);
        MessageBoxW(handle(), L"The area must be a number of square metres.", L"Rooms",
                    MB_OK | MB_ICONWARNING);
    }
    return 0;
}

void CRoomDialog::onOK() {
    grid_.endEditing();
    rooms_.clear();
    for (int row = grid_.fixedRowCount(); row < grid_.rowCount(); ++row)
        rooms_.push_back({grid_.text(row, nameColumn), leadingInteger(grid_.text(row, areaColumn))});
    end(IDOK);
}

}  // namespace tessary
