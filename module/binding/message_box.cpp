#include "module/binding/message_box.h"

#include <windows.h>

namespace tessary {

int showMessageBox(const std::wstring& text, const std::wstring& caption, unsigned style) {
    const HWND active = GetActiveWindow();
    const int button = MessageBoxW(active, text.c_str(), caption.c_str(), style);
    if (active) {
        SetActiveWindow(active);
    }
    return button;
}

}  // namespace tessary
