#include "host/lisp/wildcard.h"

#include "host/lisp/characters.h"

#include <cstddef>
#include <string>

namespace drafthost::lisp {

namespace {

// The position behind the set that begins with [ at `open`; npos when it is not closed.
std::size_t endOfSet(std::wstring_view pattern, std::size_t open) {
    for (std::size_t index = open + 1; index < pattern.size(); ++index) {
        if (pattern[index] == L'`') {
            ++index;
        } else if (pattern[index] == L']') {
            return index + 1;
        }
    }
    return std::wstring_view::npos;
}

// `set` is what stands between the brackets.
bool inSet(wchar_t character, std::wstring_view set) {
    const bool negated = !set.empty() && set[0] == L'~';
    bool found = false;
    for (std::size_t index = negated; index < set.size(); ++index) {
        if (set[index] == L'`' && index + 1 < set.size()) {
            ++index;
        }
        const wchar_t low = set[index];
        if (index + 2 < set.size() && set[index + 1] == L'-') {
            found = found || (character >= low && character <= set[index + 2]);
            index += 2;
        } else {
            found = found || character == low;
        }
    }
    return found != negated;
}

// Whether one character matches the pattern element at `index`, which is moved behind the element.
bool matchesElement(wchar_t character, std::wstring_view pattern, std::size_t& index) {
    const wchar_t element = pattern[index++];
    switch (element) {
        case L'#': return isDigit(character);
        case L'@': return isLetter(character);
        case L'.': return !isDigit(character) && !isLetter(character);
        case L'?': return true;
        case L'`': return index < pattern.size() && pattern[index++] == character;
        case L'[':
            if (const std::size_t end = endOfSet(pattern, index - 1); end != std::wstring_view::npos) {
                const std::wstring_view set = pattern.substr(index, end - index - 1);
                index = end;
                return inSet(character, set);
            }
            return character == element;
        default: return character == element;
    }
}

// One alternative. After a mismatch only the last * takes one character more, so the time is at most the
// product of both lengths.
bool matchesAlternative(std::wstring_view text, std::wstring_view pattern) {
    if (!pattern.empty() && pattern[0] == L'~') {
        return !matchesAlternative(text, pattern.substr(1));
    }
    std::size_t at = 0;
    std::size_t index = 0;
    std::size_t retryAt = 0;
    std::size_t retryIndex = std::wstring_view::npos;
    while (at < text.size() || index < pattern.size()) {
        if (index < pattern.size() && pattern[index] == L'*') {
            retryIndex = ++index;
            retryAt = at;
            continue;
        }
        if (at < text.size() && index < pattern.size() && matchesElement(text[at], pattern, index)) {
            ++at;
            continue;
        }
        if (retryIndex == std::wstring_view::npos || retryAt >= text.size()) {
            return false;
        }
        at = ++retryAt;
        index = retryIndex;
    }
    return true;
}

// The comma that ends the alternative at the start of `pattern`, or its end. A set may contain commas.
std::size_t endOfAlternative(std::wstring_view pattern) {
    for (std::size_t index = 0; index < pattern.size(); ++index) {
        if (pattern[index] == L'`') {
            ++index;
        } else if (pattern[index] == L'[') {
            const std::size_t end = endOfSet(pattern, index);
            index = end == std::wstring_view::npos ? index : end - 1;
        } else if (pattern[index] == L',') {
            return index;
        }
    }
    return pattern.size();
}

// Puts a ` before what is special only in text patterns.
std::wstring quoted(std::wstring_view pattern) {
    std::wstring result;
    for (const wchar_t character : pattern) {
        if (std::wstring_view(L"#@.~[]`,-").find(character) != std::wstring_view::npos) {
            result += L'`';
        }
        result += character;
    }
    return result;
}

}  // namespace

bool matchesFilePattern(std::wstring_view name, std::wstring_view pattern) {
    return matchesWildcard(name, quoted(pattern));
}

bool matchesWildcard(std::wstring_view text, std::wstring_view pattern) {
    for (;;) {
        const std::size_t end = endOfAlternative(pattern);
        if (matchesAlternative(text, pattern.substr(0, end))) {
            return true;
        }
        if (end >= pattern.size()) {
            return false;
        }
        pattern.remove_prefix(end + 1);
    }
}

}  // namespace drafthost::lisp
