#include "framework/anchors.h"

namespace framework {

namespace {

SIZE clientSize(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

// One direction: start and end of the control after the space has grown.
void place(LONG& start, LONG& end, bool toStart, bool toEnd, LONG growth) {
    if (toEnd)
        end += growth;
    else if (!toStart)
        end += growth / 2;
    if (toEnd && !toStart)
        start += growth;
    else if (!toEnd && !toStart)
        start += growth / 2;
}

}  // namespace

void Anchors::add(HWND dialog, int controlId, unsigned edges) {
    dialog_ = dialog;
    const HWND control = GetDlgItem(dialog, controlId);
    if (!control)
        return;
    RECT area{};
    GetWindowRect(control, &area);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    controls_.push_back({control, edges, area, clientSize(dialog)});
}

void Anchors::apply() const {
    if (controls_.empty())
        return;
    const SIZE client = clientSize(dialog_);
    HDWP positions = BeginDeferWindowPos(static_cast<int>(controls_.size()));
    for (const Anchored& anchored : controls_) {
        RECT area = anchored.area;
        place(area.left, area.right, anchored.edges & anchorLeft, anchored.edges & anchorRight,
              client.cx - anchored.client.cx);
        place(area.top, area.bottom, anchored.edges & anchorTop, anchored.edges & anchorBottom,
              client.cy - anchored.client.cy);
        if (positions) {
            positions =
                DeferWindowPos(positions, anchored.control, nullptr, area.left, area.top,
                               area.right - area.left, area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
    if (positions)
        EndDeferWindowPos(positions);
    InvalidateRect(dialog_, nullptr, TRUE);
}

}  // namespace framework
