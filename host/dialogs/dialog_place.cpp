#include "host/dialogs/dialog_place.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "host/documents/profile.h"

namespace drafthost {

namespace {

constexpr const wchar_t* kSection = L"Dialogs";
// No screen reaches further; sums of such numbers cannot overflow.
constexpr long kFurthest = 100000;

SIZE sizeOf(const RECT& area) {
    return {area.right - area.left, area.bottom - area.top};
}

RECT at(LONG left, LONG top, SIZE size) {
    return {left, top, left + size.cx, top + size.cy};
}

// "left,top,width,height"
std::optional<std::array<long, 4>> fourNumbers(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t c : text)
        narrow += c < 128 ? static_cast<char>(c) : '?';
    std::array<long, 4> numbers{};
    const char* position = narrow.data();
    const char* const end = position + narrow.size();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto [next, error] = std::from_chars(position, end, numbers[i]);
        const bool separated = i + 1 < numbers.size() ? next != end && *next == ',' : next == end;
        if (error != std::errc() || !separated || numbers[i] < -kFurthest || numbers[i] > kFurthest)
            return std::nullopt;
        position = next + (i + 1 < numbers.size() ? 1 : 0);
    }
    return numbers;
}

// One direction of `fitted`.
void fit(LONG& start, LONG& end, LONG smallest, LONG areaStart, LONG areaEnd) {
    const LONG length = std::max(std::min(end - start, areaEnd - areaStart), smallest);
    start = std::max(std::min(start, areaEnd - length), areaStart);
    end = start + length;
}

}  // namespace

std::optional<RECT> keptPlace(const std::wstring& name) {
    const auto text = readProfile(kSection, name);
    const auto numbers = text ? fourNumbers(*text) : std::nullopt;
    if (!numbers || (*numbers)[2] <= 0 || (*numbers)[3] <= 0)
        return std::nullopt;
    return at((*numbers)[0], (*numbers)[1], {(*numbers)[2], (*numbers)[3]});
}

void keepPlace(const std::wstring& name, const RECT& place) {
    const SIZE size = sizeOf(place);
    writeProfile(kSection, name,
                 std::to_wstring(place.left) + L',' + std::to_wstring(place.top) + L',' +
                     std::to_wstring(size.cx) + L',' + std::to_wstring(size.cy));
}

void forgetPlace(const std::wstring& name) {
    removeFromProfile(kSection, name);
}

RECT normalPlace(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if ((!IsIconic(window) && !IsZoomed(window)) || !GetWindowPlacement(window, &placement))
        return place;
    // Counted from the corner of the work area.
    place = placement.rcNormalPosition;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor)) {
        OffsetRect(&place, monitor.rcWork.left - monitor.rcMonitor.left,
                   monitor.rcWork.top - monitor.rcMonitor.top);
    }
    return place;
}

RECT workAreaAround(const RECT& place) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    if (GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &monitor))
        return monitor.rcWork;
    return at(0, 0, {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)});
}

RECT fitted(const RECT& place, SIZE smallest, const RECT& workArea) {
    RECT result = place;
    fit(result.left, result.right, smallest.cx, workArea.left, workArea.right);
    fit(result.top, result.bottom, smallest.cy, workArea.top, workArea.bottom);
    return result;
}

RECT centred(SIZE size, const RECT& around) {
    return at((around.left + around.right - size.cx) / 2, (around.top + around.bottom - size.cy) / 2, size);
}

}  // namespace drafthost
