#pragma once

// Keys by their names: "Tab", "F2", "a", "Control+Left", "Shift+Tab".

#include <optional>
#include <string_view>

namespace drafthost::editor {

struct KeyStroke {
    unsigned virtualKey = 0;
    bool control = false, shift = false, alt = false;
    bool extended = false;  // of the block of arrow keys
};

// Names are matched without regard to case. Nothing for an unknown one.
std::optional<KeyStroke> parseKey(std::wstring_view name);

}  // namespace drafthost::editor
