// Finding and replacing in strings. Positions count from 0.

#include "host/lisp/characters.h"
#include "host/lisp/language_functions.h"
#include "host/lisp/wildcard.h"

#include <algorithm>
#include <string>

namespace drafthost::lisp {

namespace {

// Argument `index` as a position in a text; 0 when it is missing.
std::size_t startAt(Arguments arguments, std::size_t index) {
    const std::int32_t start = arguments.integerOr(index, 0);
    if (start < 0) {
        raiseBadArgumentValue(L"non-negative:", arguments[index]);
    }
    return static_cast<std::size_t>(start);
}

Value foundAt(std::size_t position) {
    return position == std::wstring::npos ? Value() : Value::integer(static_cast<std::int32_t>(position));
}

Value search(Interpreter&, Arguments arguments) {
    return foundAt(arguments.string(1).find(arguments.string(0), startAt(arguments, 2)));
}

Value findCharacter(Interpreter&, Arguments arguments) {
    const auto code = static_cast<wchar_t>(arguments.integer(0));
    const std::wstring& text = arguments.string(1);
    const std::size_t start = startAt(arguments, 2);
    if (!arguments.has(3)) {
        return foundAt(text.find(code, start));
    }
    const std::size_t position = text.rfind(code);
    return position != std::wstring::npos && position >= start ? foundAt(position) : Value();
}

// Length of the common start of two texts.
Value mismatch(Interpreter&, Arguments arguments) {
    const std::wstring& first = arguments.string(0);
    const std::wstring& second = arguments.string(1);
    const std::size_t firstStart = std::min(startAt(arguments, 2), first.size());
    const std::size_t secondStart = std::min(startAt(arguments, 3), second.size());
    const bool ignoreCase = arguments.has(4);
    std::size_t count = 0;
    while (firstStart + count < first.size() && secondStart + count < second.size()) {
        const wchar_t a = first[firstStart + count];
        const wchar_t b = second[secondStart + count];
        if (a != b && !(ignoreCase && toUpper(a) == toUpper(b))) {
            break;
        }
        ++count;
    }
    return foundAt(count);
}

// Replaces the first occurrence only.
Value replaceFirst(Interpreter& interpreter, Arguments arguments) {
    const std::wstring& replacement = arguments.string(0);
    const std::wstring& pattern = arguments.string(1);
    std::wstring text = arguments.string(2);
    const std::size_t position = text.find(pattern, startAt(arguments, 3));
    if (position != std::wstring::npos) {
        text.replace(position, pattern.size(), replacement);
    }
    return interpreter.string(std::move(text));
}

Value wildcardMatch(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(matchesWildcard(arguments.string(0), arguments.string(1)));
}

constexpr BuiltinDefinition table[] = {
    {L"vl-string-mismatch", mismatch, 2, 5,
     L"(vl-string-mismatch a b [from-a [from-b [ignorecase]]]) -> length of the common start"},
    {L"vl-string-position", findCharacter, 2, 4,
     L"(vl-string-position code text [start [fromend]]) -> position of a character or nil"},
    {L"vl-string-search", search, 2, 3, L"(vl-string-search pattern text [start]) -> position or nil"},
    {L"vl-string-subst", replaceFirst, 3, 4,
     L"(vl-string-subst new old text [start]) -> text with the first occurrence replaced"},
    {L"wcmatch", wildcardMatch, 2, 2, L"(wcmatch text pattern) -> T when the wildcard pattern matches"},
};

}  // namespace

std::span<const BuiltinDefinition> stringSearchFunctions() {
    return table;
}

}  // namespace drafthost::lisp
