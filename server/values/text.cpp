// Conversion between UTF-8 and UTF-16, and comparison of texts.

#include "server/values/case_folding.h"
#include "server/values/value.h"

#include <algorithm>

namespace tessary::server {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// What the first byte of a sequence tells: how many bytes follow, and which second bytes are allowed, so that
// overlong forms, surrogates and code points above 10FFFF are found at once.
struct Lead {
    int following = 0;  // 0: no lead byte of a longer sequence
    unsigned char lowest = 0x80, highest = 0xBF;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF)
        return {1};
    if (byte >= 0xE0 && byte <= 0xEF)
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    if (byte >= 0xF0 && byte <= 0xF4)
        return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    return {};
}

// Reads one code point that is not ASCII and moves `at` behind it, or behind the part of it that is
// well-formed.
char32_t readSequence(std::string_view utf8, std::size_t& at) {
    const auto first = static_cast<unsigned char>(utf8[at++]);
    const Lead lead = leadOf(first);
    if (lead.following == 0)
        return replacement;
    char32_t point = first & (0x3Fu >> lead.following);
    for (int place = 0; place < lead.following; ++place, ++at) {
        const auto byte = at < utf8.size() ? static_cast<unsigned char>(utf8[at]) : 0;
        const bool fits =
            place == 0 ? byte >= lead.lowest && byte <= lead.highest : byte >= 0x80 && byte <= 0xBF;
        if (!fits)
            return replacement;
        point = point << 6 | (byte & 0x3Fu);
    }
    return point;
}

void append(Text& text, char32_t point) {
    if (point < 0x10000) {
        text += static_cast<char16_t>(point);
        return;
    }
    text += static_cast<char16_t>(0xD7C0 + (point >> 10));
    text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
}

void append(std::string& utf8, char32_t point) {
    if (point < 0x80) {
        utf8 += static_cast<char>(point);
        return;
    }
    const int following = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    const char32_t marks[] = {0, 0xC0, 0xE0, 0xF0};
    utf8 += static_cast<char>(marks[following] | point >> 6 * following);
    for (int place = following - 1; place >= 0; --place)
        utf8 += static_cast<char>(0x80 | (point >> 6 * place & 0x3F));
}

}  // namespace

Text toText(std::string_view utf8) {
    Text text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        if (static_cast<unsigned char>(utf8[at]) < 0x80)
            text += static_cast<char16_t>(utf8[at++]);
        else
            append(text, readSequence(utf8, at));
    }
    return text;
}

std::string toUtf8(TextView text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (isHighSurrogate(unit) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
            append(utf8, 0x10000 + ((unit & 0x3FFu) << 10) + (text[at + 1] & 0x3FFu));
            ++at;
        } else {
            append(utf8, isHighSurrogate(unit) || isLowSurrogate(unit) ? replacement : char32_t{unit});
        }
    }
    return utf8;
}

int compareText(TextView left, TextView right) {
    const char16_t* table = foldingTable();
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t at = 0; at < common; ++at) {
        const int difference = table[left[at]] - table[right[at]];
        if (difference != 0)
            return difference;
    }
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

Text folded(TextView text) {
    const char16_t* table = foldingTable();
    Text result(text);
    for (char16_t& unit : result)
        unit = table[unit];
    return result;
}

bool sameName(TextView left, TextView right) {
    return left.size() == right.size() && compareText(left, right) == 0;
}

bool NameLess::operator()(TextView left, TextView right) const {
    return compareText(left, right) < 0;
}

}  // namespace tessary::server
