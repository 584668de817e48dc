#pragma once

// The example of docs/dialogs.md: a list of rooms, of which the drafter edits names and sizes.

#include "host/api/dialog.h"
#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"

#include <string>
#include <vector>

namespace tessary {

struct Room {
    std::wstring name;
    int area;  // square metres
};

class CRoomDialog final : public AcEdDialog {
public:
    CRoomDialog(HWND parent, std::vector<Room> rooms);

    // After OK the edited ones, otherwise those of the construction.
    const std::vector<Room>& rooms() const { return rooms_; }

protected:
    bool onInitDialog() override;
    void onOK() override;

private:
    void newRoom();
    LRESULT beginEdit(const GridNotification& edit);
    LRESULT edited(const GridNotification& edit);

    CGridCtrl grid_;
    std::vector<Room> rooms_;
    std::wstring textBefore_;  // of the cell that is edited
};

}  // namespace tessary
