#include "framework/anchors.h"

#include <algorithm>
#include <cwchar>

namespace framework {

namespace {

SIZE clientSize(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

RECT placeIn(HWND dialog, HWND control) {
    RECT area{};
    GetWindowRect(control, &area);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

// One direction: start and end of the control after the space has grown.
void place(LONG& start, LONG& end, bool toStart, bool toEnd, LONG growth) {
    const LONG half = growth / 2;
    if (toEnd && !toStart)
        start += growth;
    else if (!toEnd && !toStart)
        start += half;
    if (toEnd)
        end += growth;
    else if (!toStart)
        end += half;
    end = std::max(start, end);  // in a dialog that is smaller than it was
}

void setStyleBits(HWND window, int which, LONG_PTR bits) {
    const LONG_PTR style = GetWindowLongPtrW(window, which);
    if ((style & bits) != bits)
        SetWindowLongPtrW(window, which, style | bits);
}

bool isGroupBox(HWND control) {
    wchar_t name[16] = L"";
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return _wcsicmp(name, L"Button") == 0 &&
           (GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

// Keeps the dialog from erasing what its controls are about to paint. A group box paints only its frame, so
// the dialog must go on erasing the inside.
void clipControls(HWND dialog) {
    if (GetWindowLongPtrW(dialog, GWL_STYLE) & WS_CLIPCHILDREN)
        return;
    setStyleBits(dialog, GWL_STYLE, WS_CLIPCHILDREN);
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (isGroupBox(child))
            setStyleBits(child, GWL_EXSTYLE, WS_EX_TRANSPARENT);
    }
}

}  // namespace

void Anchors::add(HWND dialog, int controlId, unsigned edges) {
    dialog_ = dialog;
    const HWND control = GetDlgItem(dialog, controlId);
    if (!control)
        return;
    clipControls(dialog);
    controls_.push_back({control, edges, placeIn(dialog, control), clientSize(dialog)});
}

void Anchors::apply() const {
    const SIZE client = clientSize(dialog_);
    std::vector<std::pair<HWND, RECT>> moved;
    for (const Anchored& anchored : controls_) {
        if (!IsChild(dialog_, anchored.control))
            continue;  // destroyed since
        RECT area = anchored.area;
        place(area.left, area.right, anchored.edges & anchorLeft, anchored.edges & anchorRight,
              client.cx - anchored.client.cx);
        place(area.top, area.bottom, anchored.edges & anchorTop, anchored.edges & anchorBottom,
              client.cy - anchored.client.cy);
        const RECT now = placeIn(dialog_, anchored.control);
        if (!EqualRect(&now, &area))
            moved.emplace_back(anchored.control, area);
    }
    if (moved.empty())
        return;
    HDWP positions = BeginDeferWindowPos(static_cast<int>(moved.size()));
    for (const auto& [control, area] : moved) {
        if (positions) {
            positions =
                DeferWindowPos(positions, control, nullptr, area.left, area.top, area.right - area.left,
                               area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
        }
    }
    if (positions)
        EndDeferWindowPos(positions);
    InvalidateRect(dialog_, nullptr, TRUE);
}

}  // namespace framework
