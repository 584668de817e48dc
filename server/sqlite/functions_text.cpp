// UCASE, LEFT, INSTR and so on. Places count from 1; a comparison is by the order of texts unless 0 is given
// for it.

#include "server/sqlite/functions_format.h"
#include "server/sqlite/functions_support.h"

#include <algorithm>

namespace tessary::server::functions {

namespace {

// What SPACE, STRING and REPLACE may make, in characters: far above any field, far below all memory.
constexpr std::size_t longestResult = 100'000'000;

std::size_t lengthOf(const Value& value, TextView function) {
    const std::int64_t length = wholeOf(value);
    if (length < 0)
        raise(ErrorCode::invalidArgument,
              Text(function) + u": a length of " + textOf(value) + u" is not possible.");
    return static_cast<std::size_t>(length);
}

std::size_t startOf(const Value& value, TextView function) {
    const std::size_t place = lengthOf(value, function);
    if (place == 0)
        raise(ErrorCode::invalidArgument, Text(function) + u": places in a text count from 1.");
    return place - 1;
}

void checkLength(std::size_t length, TextView function) {
    if (length > longestResult)
        raise(ErrorCode::invalidArgument, Text(function) + u": the result would be too long.");
}

bool isBinary(Arguments arguments, std::size_t place) {
    return arguments.size() > place && wholeOf(arguments[place]) == 0;
}

Text comparable(TextView text, bool binary) {
    return binary ? Text(text) : folded(text);
}

// Case by the folding of texts: a letter is upper case when it folds to another one.
const Text& upperCaseLetters() {
    static const Text letters = [] {
        Text table(0x10000, u'\0');
        for (unsigned unit = 0; unit < 0x10000; ++unit)
            table[unit] = static_cast<char16_t>(unit);
        const Text low = folded(table);
        Text high = table;
        // Of several letters with the same lower case the first one is its usual upper case, but for the
        // micro sign and the iota below other letters; the capital sharp s is not usual at all.
        for (unsigned unit = 0x10000; unit-- > 0;) {
            if (low[unit] != table[unit] && unit != 0xB5 && unit != 0x345 && unit != 0x1E9E)
                high[low[unit]] = static_cast<char16_t>(unit);
        }
        return high;
    }();
    return letters;
}

Text lowered(TextView text) {
    return folded(text);
}

Text uppered(TextView text) {
    const Text& letters = upperCaseLetters();
    Text result(text);
    for (char16_t& unit : result)
        unit = letters[unit];
    return result;
}

TextView withoutLeading(TextView text) {
    return text.substr(std::min(text.find_first_not_of(u' '), text.size()));
}

TextView withoutTrailing(TextView text) {
    return text.substr(0, text.find_last_not_of(u' ') + 1);
}

Value ucase(Arguments a) {
    return uppered(shownText(a[0]));
}
Value lcase(Arguments a) {
    return lowered(shownText(a[0]));
}
Value len(Arguments a) {
    return wholeOrNumber(static_cast<double>(shownText(a[0]).size()));
}
Value left(Arguments a) {
    return shownText(a[0]).substr(0, lengthOf(a[1], u"Left"));
}

Value right(Arguments a) {
    const Text text = shownText(a[0]);
    return text.substr(text.size() - std::min(text.size(), lengthOf(a[1], u"Right")));
}

Value mid(Arguments a) {
    const Text text = shownText(a[0]);
    const std::size_t start = startOf(a[1], u"Mid");
    if (start >= text.size())
        return Text();
    return text.substr(start, a.size() > 2 ? lengthOf(a[2], u"Mid") : Text::npos);
}

Value trim(Arguments a) {
    return Text(withoutLeading(withoutTrailing(shownText(a[0]))));
}
Value ltrim(Arguments a) {
    const Text text = shownText(a[0]);
    return Text(withoutLeading(text));
}
Value rtrim(Arguments a) {
    const Text text = shownText(a[0]);
    return Text(withoutTrailing(text));
}

// InStr([start,] text, sought [, compare]): with three arguments the first is the start.
Value instr(Arguments a) {
    const bool hasStart = a.size() > 2;
    const std::size_t start = hasStart ? startOf(a[0], u"InStr") : 0;
    const bool binary = isBinary(a, 3);
    const Text text = comparable(shownText(a[hasStart ? 1 : 0]), binary);
    const Text sought = comparable(shownText(a[hasStart ? 2 : 1]), binary);
    if (start >= text.size())
        return 0;
    const std::size_t found = text.find(sought, start);
    return found == Text::npos ? 0 : static_cast<std::int32_t>(found + 1);
}

// InStrRev(text, sought [, start [, compare]]); the start counts from the front, -1 is the end.
Value instrrev(Arguments a) {
    const bool binary = isBinary(a, 3);
    const Text text = comparable(shownText(a[0]), binary);
    const Text sought = comparable(shownText(a[1]), binary);
    std::size_t end = text.size();
    if (a.size() > 2 && wholeOf(a[2]) != -1)
        end = startOf(a[2], u"InStrRev") + 1;
    if (end > text.size() || sought.size() > end)
        return 0;
    const std::size_t found = text.rfind(sought, end - sought.size());
    return found == Text::npos ? 0 : static_cast<std::int32_t>(found + 1);
}

// Replace(text, sought, replacement [, start [, count [, compare]]]); what stands before the start is left
// out.
Value replace(Arguments a) {
    const Text whole = shownText(a[0]);
    const std::size_t start = a.size() > 3 ? startOf(a[3], u"Replace") : 0;
    const std::int64_t most = a.size() > 4 ? wholeOf(a[4]) : -1;
    const bool binary = isBinary(a, 5);
    const Text text = whole.substr(std::min(start, whole.size()));
    const Text searched = comparable(text, binary);
    const Text sought = comparable(shownText(a[1]), binary);
    const Text replacement = shownText(a[2]);
    if (sought.empty())
        return text;
    Text result;
    std::size_t copied = 0;
    for (std::int64_t done = 0; most < 0 || done < most; ++done) {
        const std::size_t found = searched.find(sought, copied);
        if (found == Text::npos)
            break;
        result.append(text, copied, found - copied).append(replacement);
        copied = found + sought.size();
        checkLength(result.size(), u"Replace");
    }
    return result.append(text, copied);
}

Value space(Arguments a) {
    const std::size_t length = lengthOf(a[0], u"Space");
    checkLength(length, u"Space");
    return Text(length, u' ');
}

// The character is the first of a text, or the one with a number.
Value string(Arguments a) {
    const std::size_t length = lengthOf(a[0], u"String");
    checkLength(length, u"String");
    const auto* text = std::get_if<Text>(&a[1]);
    if (text && text->empty())
        raise(ErrorCode::invalidArgument, u"String: there is no character to repeat.");
    return Text(length, text ? text->front() : static_cast<char16_t>(wholeOf(a[1])));
}

Value strcomp(Arguments a) {
    const Text one = shownText(a[0]);
    const Text other = shownText(a[1]);
    const int order = isBinary(a, 2) ? one.compare(other) : compareText(one, other);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

Value strreverse(Arguments a) {
    Text text = shownText(a[0]);
    std::ranges::reverse(text);
    return text;
}

Value chr(Arguments a) {
    const std::int64_t unit = wholeOf(a[0]);
    if (unit < 0 || unit > 0xFFFF)
        raise(ErrorCode::invalidArgument, u"Chr: there is no character " + shownText(a[0]) + u".");
    return Text(1, static_cast<char16_t>(unit));
}

Value asc(Arguments a) {
    const Text text = shownText(a[0]);
    if (text.empty())
        raise(ErrorCode::invalidArgument, u"Asc: the text is empty.");
    return std::int32_t{text.front()};
}

// A text that a literal cannot hold; it comes as its bytes, low one first.
Value utf16(Arguments a) {
    return a[0];
}

constexpr Function table[] = {
    {"ts_asc", 1, asc},
    {"ts_chr", 1, chr},
    {"ts_instr", -1, instr},
    {"ts_instrrev", -1, instrrev},
    {"ts_lcase", 1, lcase},
    {"ts_left", 2, left},
    {"ts_len", 1, len},
    {"ts_ltrim", 1, ltrim},
    {"ts_mid", -1, mid},
    {"ts_replace", -1, replace},
    {"ts_right", 2, right},
    {"ts_rtrim", 1, rtrim},
    {"ts_space", 1, space},
    {"ts_strcomp", -1, strcomp},
    {"ts_string", 2, string},
    {"ts_trim", 1, trim},
    {"ts_ucase", 1, ucase},
    {"ts_utf16", 1, utf16},
    {"ts_strreverse", 1, strreverse},
};

}  // namespace

Text changedCase(TextView text, bool upper) {
    return upper ? uppered(text) : lowered(text);
}

std::span<const Function> textFunctions() {
    return table;
}

}  // namespace tessary::server::functions
