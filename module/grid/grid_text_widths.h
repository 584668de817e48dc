#pragma once

// Widths of texts in one font. Widths of single characters are asked of the system once, so that measuring
// a hundred thousand texts takes no system calls.

#include <windows.h>

#include <array>
#include <map>
#include <string_view>

namespace tessary {

class GridTextWidths {
public:
    explicit GridTextWidths(HFONT font) : font_(font) {}

    // In pixels. What is wider than a window can be is not told apart.
    int of(std::wstring_view text);
    // How many characters from the beginning fit into that many pixels.
    std::size_t fitting(std::wstring_view text, int width);

private:
    using Page = std::array<int, 256>;  // of characters with the same high byte
    const Page& page(wchar_t character);

    HFONT font_;
    std::map<unsigned, Page> pages_;
    const Page* latin_ = nullptr;  // of the characters below 256
};

}  // namespace tessary
