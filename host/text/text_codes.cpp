#include "host/text/text_codes.h"

#include <utility>

namespace drafthost::text {

namespace {

// The number that the digits spell; nothing when one is no digit of the base.
std::optional<int> readDigits(std::wstring_view digits, int base) {
    int value = 0;
    for (const wchar_t digit : digits) {
        const int number = digit >= L'0' && digit <= L'9'   ? digit - L'0'
                           : digit >= L'A' && digit <= L'F' ? digit - L'A' + 10
                           : digit >= L'a' && digit <= L'f' ? digit - L'a' + 10
                                                            : base;
        if (number >= base) {
            return std::nullopt;
        }
        value = value * base + number;
    }
    return value;
}

struct PercentRow {
    wchar_t letter;
    TextCode::Kind kind;
    wchar_t character = 0;
};

constexpr PercentRow kPercentCodes[] = {
    {L'd', TextCode::Character, L'\u00B0'},
    {L'p', TextCode::Character, L'\u00B1'},
    {L'c', TextCode::Character, L'\u2300'},
    {L'%', TextCode::Character, L'%'},
    {L'u', TextCode::Underline},
    {L'o', TextCode::Overline},
    {L'k', TextCode::Strike},
};

}  // namespace

std::optional<TextCode> percentCode(std::wstring_view text) {
    if (text.size() < 3 || text[0] != L'%' || text[1] != L'%') {
        return std::nullopt;
    }
    const wchar_t letter =
        text[2] >= L'A' && text[2] <= L'Z' ? static_cast<wchar_t>(text[2] - L'A' + L'a') : text[2];
    for (const PercentRow& row : kPercentCodes) {
        if (row.letter == letter) {
            return TextCode{row.kind, row.character, 3};
        }
    }
    constexpr std::size_t kDigits = 3;
    if (text.size() < 2 + kDigits) {
        return std::nullopt;
    }
    const std::optional<int> number = readDigits(text.substr(2, kDigits), 10);
    if (!number) {
        return std::nullopt;
    }
    const bool printable = *number >= L' ';
    return TextCode{printable ? TextCode::Character : TextCode::Nothing, static_cast<wchar_t>(*number),
                    2 + kDigits};
}

std::optional<TextCode> escapedCharacter(std::wstring_view text) {
    const bool isUnicode = text.starts_with(L"\\U+");
    if (!isUnicode && !text.starts_with(L"\\M+")) {
        return std::nullopt;
    }
    const std::size_t digits = isUnicode ? 4 : 5;
    if (text.size() < 3 + digits) {
        return std::nullopt;
    }
    const std::optional<int> number = readDigits(text.substr(3, digits), 16);
    if (!number) {
        return std::nullopt;
    }
    const bool shown = isUnicode && *number >= L' ';
    return TextCode{shown ? TextCode::Character : TextCode::Nothing, static_cast<wchar_t>(*number),
                    3 + digits};
}

std::vector<LineRun> parseLineCodes(std::wstring_view text) {
    std::vector<LineRun> runs;
    LineRun current;
    const auto endRun = [&] {
        if (!current.text.empty()) {
            runs.push_back(current);
            current.text.clear();
        }
    };
    const auto toggle = [&](bool LineRun::*flag) {
        endRun();
        current.*flag = !(current.*flag);
    };
    while (!text.empty()) {
        std::optional<TextCode> code = percentCode(text);
        if (!code) {
            code = escapedCharacter(text);
        }
        const TextCode found =
            code.value_or(TextCode{text[0] >= L' ' ? TextCode::Character : TextCode::Nothing, text[0], 1});
        text.remove_prefix(found.length);
        switch (found.kind) {
            case TextCode::Character: current.text.push_back(found.character); break;
            case TextCode::Underline: toggle(&LineRun::underlined); break;
            case TextCode::Overline: toggle(&LineRun::overlined); break;
            case TextCode::Strike: toggle(&LineRun::struck); break;
            case TextCode::Nothing: break;
        }
    }
    endRun();
    return runs;
}

}  // namespace drafthost::text
