#include "host/database/names.h"

#include <algorithm>

namespace drafthost {
namespace {

wchar_t upperCase(wchar_t c) {
    if (c < 0x80)
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7)
        return static_cast<wchar_t>(c - 32);
    if (c == 0xFF)
        return 0x178;
    // Latin Extended-A alternates capital and small letters, with the parity changing between its runs.
    const bool evenIsCapital = (c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177);
    if (evenIsCapital)
        return c == 0x131 ? c : static_cast<wchar_t>(c & ~1);
    const bool oddIsCapital = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (oddIsCapital)
        return (c & 1) ? c : static_cast<wchar_t>(c - 1);
    if (c >= 0x3B1 && c <= 0x3C9)
        return c == 0x3C2 ? 0x3A3 : static_cast<wchar_t>(c - 32);
    if (c >= 0x430 && c <= 0x44F)
        return static_cast<wchar_t>(c - 32);
    if (c >= 0x450 && c <= 0x45F)
        return static_cast<wchar_t>(c - 80);
    return c;
}

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}
bool isLetter(wchar_t c) {
    return (c >= L'A' && c <= L'Z') || c >= 0xC0;
}

// Matches one character of a folded name against the pattern element at its start, and says how long the
// element is.
bool matchesElement(wchar_t c, std::wstring_view pattern, std::size_t& length) {
    length = 1;
    switch (pattern[0]) {
        case L'?': return true;
        case L'#': return isDigit(c);
        case L'@': return isLetter(c);
        case L'.': return !isDigit(c) && !isLetter(c);
        case L'`':
            if (pattern.size() < 2)
                return c == L'`';
            length = 2;
            return c == pattern[1];
        case L'[': break;
        default: return c == pattern[0];
    }
    const std::size_t end = pattern.find(L']', 1);
    if (end == std::wstring_view::npos)
        return c == L'[';
    length = end + 1;
    std::wstring_view set = pattern.substr(1, end - 1);
    const bool negated = !set.empty() && set[0] == L'~';
    if (negated)
        set.remove_prefix(1);
    bool found = false;
    for (std::size_t i = 0; i < set.size(); ++i) {
        if (i + 2 < set.size() && set[i + 1] == L'-') {
            found = found || (c >= set[i] && c <= set[i + 2]);
            i += 2;
        } else {
            found = found || c == set[i];
        }
    }
    return found != negated;
}

// Both folded. Greedy with one step back to the last star, so that no pattern takes more than quadratic time.
bool matchesOne(std::wstring_view name, std::wstring_view pattern) {
    if (!pattern.empty() && pattern[0] == L'~')
        return !matchesOne(name, pattern.substr(1));
    std::size_t n = 0, p = 0, starName = 0, starPattern = std::wstring_view::npos;
    while (n < name.size()) {
        std::size_t length = 0;
        if (p < pattern.size() && pattern[p] == L'*') {
            starPattern = p++;
            starName = n;
        } else if (p < pattern.size() && matchesElement(name[n], pattern.substr(p), length)) {
            p += length;
            ++n;
        } else if (starPattern != std::wstring_view::npos) {
            p = starPattern + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*')
        ++p;
    return p == pattern.size();
}

// End of the first pattern of a list: a comma outside brackets that is not quoted.
std::size_t patternEnd(std::wstring_view patterns) {
    bool bracket = false;
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        if (patterns[i] == L'`')
            ++i;
        else if (patterns[i] == L'[')
            bracket = true;
        else if (patterns[i] == L']')
            bracket = false;
        else if (patterns[i] == L',' && !bracket)
            return i;
    }
    return patterns.size();
}

}  // namespace

std::wstring foldCase(std::wstring_view name) {
    std::wstring folded(name);
    for (wchar_t& c : folded)
        c = upperCase(c);
    return folded;
}

bool equalNames(std::wstring_view a, std::wstring_view b) {
    return std::ranges::equal(a, b, {}, upperCase, upperCase);
}

bool isValidSymbolName(std::wstring_view name, Anonymous anonymous) {
    if (anonymous == Anonymous::Allowed && name.size() > 1 && name[0] == L'*')
        name.remove_prefix(1);
    if (name.empty() || name.size() > 255 || name.front() == L' ' || name.back() == L' ')
        return false;
    return std::ranges::none_of(name, [](wchar_t c) {
        return c < 32 || std::wstring_view(L"<>/\\\":;?*|,=`").find(c) != std::wstring_view::npos;
    });
}

bool matchesPattern(std::wstring_view name, std::wstring_view patterns) {
    const std::wstring foldedName = foldCase(name);
    const std::wstring foldedPatterns = foldCase(patterns);
    std::wstring_view rest = foldedPatterns;
    for (;;) {
        const std::size_t end = patternEnd(rest);
        if (matchesOne(foldedName, rest.substr(0, end)))
            return true;
        if (end == rest.size())
            return false;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace drafthost
