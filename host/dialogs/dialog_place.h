#pragma once

// Where dialogs stand on the screen, and where the profile keeps it.

#include <windows.h>

#include <optional>
#include <string>

namespace drafthost {

// All in pixels of the virtual screen. name: of the dialog. Nothing when no place is kept or it makes no
// sense.
std::optional<RECT> keptPlace(const std::wstring& name);
void keepPlace(const std::wstring& name, const RECT& place);
void forgetPlace(const std::wstring& name);

// The place of a window when it is neither minimised nor maximised.
RECT normalPlace(HWND window);
// What windows may cover of the screen that shows most of the place, or is nearest to it.
RECT workAreaAround(const RECT& place);

// The place, no smaller than `smallest`, no bigger than the work area where that allows it, and moved by no
// more than it takes to lie inside. A place that cannot lie inside begins at the area's top left corner.
RECT fitted(const RECT& place, SIZE smallest, const RECT& workArea);
// A place of the size in the middle of `around`.
RECT centred(SIZE size, const RECT& around);

}  // namespace drafthost
