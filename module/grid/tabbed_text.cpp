#include "module/grid/tabbed_text.h"

namespace tessary {

namespace {

void append(std::wstring& text, const std::wstring& cell) {
    if (cell.find_first_of(L"\t\r\n\"") == std::wstring::npos) {
        text += cell;
        return;
    }
    text += L'"';
    for (const wchar_t character : cell) {
        if (character == L'"')
            text += L'"';
        text += character;
    }
    text += L'"';
}

// Takes the cell in quotes from the front of the text, which begins with the opening one.
std::wstring takeQuoted(std::wstring_view& text) {
    std::wstring cell;
    text.remove_prefix(1);
    while (!text.empty()) {
        const wchar_t character = text.front();
        text.remove_prefix(1);
        if (character == L'"') {
            if (text.empty() || text.front() != L'"')
                break;
            text.remove_prefix(1);
        }
        cell += character;
    }
    return cell;
}

std::wstring takeCell(std::wstring_view& text) {
    std::wstring cell;
    if (!text.empty() && text.front() == L'"')
        cell = takeQuoted(text);
    const std::wstring_view rest = text.substr(0, text.find_first_of(L"\t\r\n"));
    text.remove_prefix(rest.size());
    return cell.append(rest);
}

void takeLineBreak(std::wstring_view& text) {
    text.remove_prefix(text.starts_with(L"\r\n") ? 2 : 1);
}

}  // namespace

std::wstring toTabbedText(const TextBlock& block) {
    std::wstring text;
    for (const auto& line : block) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (i > 0)
                text += L'\t';
            append(text, line[i]);
        }
        text += L"\r\n";
    }
    return text;
}

TextBlock fromTabbedText(std::wstring_view text) {
    TextBlock block;
    while (!text.empty()) {
        auto& line = block.emplace_back();
        line.push_back(takeCell(text));
        while (!text.empty() && text.front() == L'\t') {
            text.remove_prefix(1);
            line.push_back(takeCell(text));
        }
        if (!text.empty())
            takeLineBreak(text);
    }
    return block;
}

}  // namespace tessary
