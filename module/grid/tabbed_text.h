#pragma once

// Blocks of cells as text, as spreadsheets exchange them: cells end at tabs, lines at line breaks.

#include <string>
#include <string_view>
#include <vector>

namespace tessary {

using TextBlock = std::vector<std::vector<std::wstring>>;  // lines of cells, which may differ in length

// Lines end with CR LF. A cell that holds a tab, a line break or a quote stands in quotes, its own doubled.
std::wstring toTabbedText(const TextBlock& block);
// Lines may end with CR LF, LF or CR; the end of the last one begins no new line. A cell without its closing
// quote reaches to the end of the text. Nothing for an empty text.
TextBlock fromTabbedText(std::wstring_view text);

}  // namespace tessary
