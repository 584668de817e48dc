#pragma once

// Colors as drafters type and read them: an index or a name.

#include <optional>
#include <string>
#include <string_view>

namespace drafthost::editor {

constexpr int kByBlock = 0, kByLayer = 256;

// The index of a name (red to white, ByBlock, ByLayer, in any case) or of a number from 0 to 256.
std::optional<int> colorIndex(std::wstring_view text);
// The name where the index has one, otherwise the number.
std::wstring colorText(int index);

}  // namespace drafthost::editor
