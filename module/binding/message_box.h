#pragma once

#include <string>

namespace tessary {

// Shows a message box owned by the active window, which is active again afterwards. style: of MessageBoxW.
// The id of the button pressed (IDOK, IDYES ...), 0 when the box could not be shown.
int showMessageBox(const std::wstring& text, const std::wstring& caption, unsigned style);

}  // namespace tessary
