#include "module/grid/grid_text_widths.h"

#include "framework/gdi.h"

#include <algorithm>

namespace tessary {

namespace {

constexpr std::size_t longest = 8192;  // characters; windows are narrower

// Characters that the system may join, stack or reorder, so that a text is not as wide as its characters.
bool isJoined(wchar_t character) {
    return character >= 0x0300 && !(character >= 0x0370 && character < 0x0483) &&
           !(character >= 0x2010 && character < 0x2028) && !(character >= 0x3000 && character < 0xD800);
}

}  // namespace

const GridTextWidths::Page& GridTextWidths::page(wchar_t character) {
    const unsigned high = character >> 8;
    const auto [found, added] = pages_.try_emplace(high);
    if (added) {
        const framework::ClientContext context(nullptr);
        const framework::Selected selected(context.get(), font_);
        GetCharWidth32W(context.get(), high << 8, (high << 8) + 255, found->second.data());
    }
    return found->second;
}

int GridTextWidths::of(std::wstring_view text) {
    text = text.substr(0, longest);
    if (!latin_)
        latin_ = &page(L' ');
    int width = 0;
    for (const wchar_t character : text) {
        if (character < 256) {
            width += (*latin_)[character];
        } else if (isJoined(character)) {
            const framework::ClientContext context(nullptr);
            const framework::Selected selected(context.get(), font_);
            SIZE size{};
            GetTextExtentPoint32W(context.get(), text.data(), static_cast<int>(text.size()), &size);
            return size.cx;
        } else {
            width += page(character)[character & 255];
        }
    }
    return width;
}

std::size_t GridTextWidths::fitting(std::wstring_view text, int width) {
    text = text.substr(0, longest);
    // Widths grow with the length, nearly always: good enough to shorten what is drawn.
    std::size_t low = 0, high = text.size();
    while (low < high) {
        const std::size_t middle = (low + high + 1) / 2;
        if (of(text.substr(0, middle)) <= width)
            low = middle;
        else
            high = middle - 1;
    }
    // No half of a pair of surrogates.
    if (low > 0 && low < text.size() && IS_HIGH_SURROGATE(text[low - 1]))
        --low;
    return low;
}

}  // namespace tessary
