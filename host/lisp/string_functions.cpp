// Strings by position and character.

#include "host/lisp/characters.h"
#include "host/lisp/language_functions.h"
#include "host/lisp/reader.h"

#include <algorithm>
#include <string>

namespace drafthost::lisp {

namespace {

Value joined(Interpreter& interpreter, Arguments arguments) {
    std::size_t length = 0;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        length += arguments.string(index).size();
    }
    if (length > interpreter.limits().stringLength) {
        throw LispError(L"string too long");
    }
    std::wstring text;
    text.reserve(length);
    for (const Value part : arguments) {
        text += part.asString();
    }
    return interpreter.string(std::move(text));
}

// The sum over all arguments.
Value length(Interpreter&, Arguments arguments) {
    std::size_t total = 0;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        total += arguments.string(index).size();
    }
    return Value::integer(static_cast<std::int32_t>(total));
}

// `start` counts from 1.
Value part(Interpreter& interpreter, Arguments arguments) {
    const std::wstring& text = arguments.string(0);
    const std::int32_t start = arguments.integer(1);
    if (start < 1) {
        raiseBadArgumentValue(L"positive", arguments[1]);
    }
    std::size_t count = std::wstring::npos;
    if (arguments.has(2)) {
        if (arguments.integer(2) < 0) {
            raiseBadArgumentValue(L"non-negative:", arguments[2]);
        }
        count = static_cast<std::size_t>(arguments.integer(2));
    }
    const std::size_t from = static_cast<std::size_t>(start) - 1;
    return interpreter.string(from < text.size() ? text.substr(from, count) : std::wstring());
}

Value changeCase(Interpreter& interpreter, Arguments arguments) {
    std::wstring text = arguments.string(0);
    const bool lower = arguments.has(1);
    std::ranges::transform(text, text.begin(),
                           [lower](wchar_t c) { return lower ? toLower(c) : toUpper(c); });
    return interpreter.string(std::move(text));
}

Value characterCode(Interpreter&, Arguments arguments) {
    const std::wstring& text = arguments.string(0);
    return Value::integer(text.empty() ? 0 : static_cast<std::int32_t>(text[0]));
}

// Code 0 gives the empty string.
Value characterOf(Interpreter& interpreter, Arguments arguments) {
    const std::int32_t code = arguments.integer(0);
    if (code < 0 || code > 0xFFFF) {
        raiseBadArgumentValue(L"character code", arguments[0]);
    }
    return interpreter.string(code == 0 ? std::wstring() : std::wstring(1, static_cast<wchar_t>(code)));
}

Value elementCode(Interpreter&, Arguments arguments) {
    const std::wstring& text = arguments.string(0);
    const std::int32_t index = arguments.integer(1);
    if (index < 0 || static_cast<std::size_t>(index) >= text.size()) {
        raiseBadArgumentValue(L"string index", arguments[1]);
    }
    return Value::integer(static_cast<std::int32_t>(text[static_cast<std::size_t>(index)]));
}

Value toList(Interpreter& interpreter, Arguments arguments) {
    ListBuilder codes(interpreter);
    for (const wchar_t character : arguments.string(0)) {
        codes.append(Value::integer(static_cast<std::int32_t>(character)));
    }
    return codes.list();
}

// The first form of a text; nil when there is none.
Value readForm(Interpreter& interpreter, Arguments arguments) {
    if (arguments.empty()) {
        return Value();
    }
    return Reader(interpreter, arguments.string(0)).next().value_or(Value());
}

enum Side { left = 1, right = 2 };

Value trimmed(Interpreter& interpreter, Arguments arguments, int sides) {
    const std::wstring& unwanted = arguments.string(0);
    const std::wstring& text = arguments.string(1);
    const std::size_t first = sides & left ? text.find_first_not_of(unwanted) : 0;
    const std::size_t end = sides & right ? text.find_last_not_of(unwanted) + 1 : text.size();
    return interpreter.string(first >= end ? std::wstring() : text.substr(first, end - first));
}

Value trim(Interpreter& interpreter, Arguments arguments) {
    return trimmed(interpreter, arguments, left | right);
}

Value trimLeft(Interpreter& interpreter, Arguments arguments) {
    return trimmed(interpreter, arguments, left);
}

Value trimRight(Interpreter& interpreter, Arguments arguments) {
    return trimmed(interpreter, arguments, right);
}

// Characters of the first string become those of the second at the same index; those without a partner
// become its last character.
Value translate(Interpreter& interpreter, Arguments arguments) {
    const std::wstring& source = arguments.string(0);
    const std::wstring& target = arguments.string(1);
    std::wstring text = arguments.string(2);
    if (!target.empty()) {
        for (wchar_t& character : text) {
            const std::size_t index = source.find(character);
            if (index != std::wstring::npos) {
                character = target[std::min(index, target.size() - 1)];
            }
        }
    }
    return interpreter.string(std::move(text));
}

constexpr BuiltinDefinition table[] = {
    {L"ascii", characterCode, 1, 1, L"(ascii text) -> code of the first character; 0 for an empty text"},
    {L"chr", characterOf, 1, 1, L"(chr code) -> string of one character"},
    {L"read", readForm, 0, 1, L"(read [text]) -> first form of the text"},
    {L"strcase", changeCase, 1, 2, L"(strcase text [lower]) -> upper case, or lower case when lower is true"},
    {L"strcat", joined, 0, anyNumber, L"(strcat [text ...]) -> joined string"},
    {L"strlen", length, 0, anyNumber, L"(strlen [text ...]) -> number of characters"},
    {L"substr", part, 2, 3, L"(substr text start [length]) -> part of the text; start counts from 1"},
    {L"vl-string->list", toList, 1, 1, L"(vl-string->list text) -> list of character codes"},
    {L"vl-string-elt", elementCode, 2, 2,
     L"(vl-string-elt text index) -> code of a character, counted from 0"},
    {L"vl-string-left-trim", trimLeft, 2, 2,
     L"(vl-string-left-trim characters text) -> without them at the start"},
    {L"vl-string-right-trim", trimRight, 2, 2,
     L"(vl-string-right-trim characters text) -> without them at the end"},
    {L"vl-string-translate", translate, 3, 3, L"(vl-string-translate from to text) -> characters replaced"},
    {L"vl-string-trim", trim, 2, 2, L"(vl-string-trim characters text) -> without them at either end"},
};

}  // namespace

std::span<const BuiltinDefinition> stringFunctions() {
    return table;
}

}  // namespace drafthost::lisp
