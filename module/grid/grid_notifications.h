#pragma once

// What a grid tells the window that owns it, by WM_NOTIFY with the grid's id. The records begin with the
// standard header.

#include <windows.h>

#include <cstdint>

namespace tessary {

constexpr int gridBeginEdit = -175;         // result -1 refuses the edit
constexpr int gridEndEdit = -176;           // the new text is in the cell; also after a check box was toggled
constexpr int gridSelectionChanged = -101;  // the drafter moved the focus to another row
constexpr int gridPicked = 1;               // a choice was picked in a drop-down, which is still open

constexpr LRESULT gridRefuse = -1;

struct GridNotification {
    NMHDR header;
    std::int32_t row;
    std::int32_t column;
};

struct GridPickNotification {
    NMHDR header;
    std::int32_t row;
    std::int32_t column;
    const wchar_t* text;  // the picked choice; valid during the notification
};

// What an editor over a cell sends to the grid when it ends, with gridEndEdit as the code.
struct GridEditItem {
    std::uint32_t mask;  // 5: text and parameter
    std::int32_t row;
    std::int32_t column;
    const wchar_t* text;  // valid during the notification
    LPARAM parameter;     // the key that ended the editing, 0 for none
};
struct GridEditNotification {
    NMHDR header;
    GridEditItem item;
};

}  // namespace tessary
