#include "host/exchange/text_encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace drafthost::exchange {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Windows-1252 from 0x80 to 0x9F; the five bytes without a character stand for themselves.
constexpr std::array<char32_t, 32> kWindows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void appendWide(std::wstring& text, char32_t c) {
    if (sizeof(wchar_t) == 2 && c > 0xFFFF) {
        c -= 0x10000;
        text += static_cast<wchar_t>(0xD800 + (c >> 10));
        text += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
    } else {
        text += static_cast<wchar_t>(c);
    }
}

// The character that starts at text[at]; at moves behind it. A lone surrogate is returned as it is.
char32_t nextWide(std::wstring_view text, std::size_t& at) {
    const char32_t first = static_cast<char32_t>(text[at++]);
    if (sizeof(wchar_t) != 2 || first < 0xD800 || first > 0xDBFF || at == text.size())
        return first;
    const char32_t second = static_cast<char32_t>(text[at]);
    if (second < 0xDC00 || second > 0xDFFF)
        return first;
    ++at;
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

// Length of the UTF-8 sequence by its first byte; 0: not a first byte.
int sequenceLength(unsigned char first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return 2;
    if (first >= 0xE0 && first <= 0xEF)
        return 3;
    if (first >= 0xF0 && first <= 0xF4)
        return 4;
    return 0;
}

// False when the bytes are not UTF-8.
bool decodeUtf8(std::string_view bytes, std::wstring& text) {
    for (std::size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const int length = sequenceLength(first);
        if (length == 0 || at + static_cast<std::size_t>(length) > bytes.size())
            return false;
        char32_t c = length == 1 ? first : first & (0xFFu >> (length + 1));
        for (int i = 1; i < length; ++i) {
            const auto next = static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
            if ((next & 0xC0) != 0x80)
                return false;
            c = c << 6 | (next & 0x3Fu);
        }
        constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
        if (c < kSmallest[static_cast<std::size_t>(length)] || c > 0x10FFFF || isSurrogate(c))
            return false;
        appendWide(text, c);
        at += static_cast<std::size_t>(length);
    }
    return true;
}

std::wstring decodeBytes(std::string_view bytes, TextEncoding encoding) {
    std::wstring text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        const bool special = encoding == TextEncoding::Windows1252 && value >= 0x80 && value < 0xA0;
        text += static_cast<wchar_t>(special ? kWindows1252[value - 0x80u] : value);
    }
    return text;
}

int hexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    return -1;
}

// The code of "\U+XXXX" at the beginning of the text, or 0. Codes of control characters are not decoded: they
// would break the line when written.
char32_t unicodeEscape(std::wstring_view text) {
    if (text.size() < 7 || !text.starts_with(L"\\U+"))
        return 0;
    char32_t code = 0;
    for (const wchar_t c : text.substr(3, 4)) {
        const int digit = hexDigit(c);
        if (digit < 0)
            return 0;
        code = code * 16 + static_cast<char32_t>(digit);
    }
    return code < 0x20 || (sizeof(wchar_t) != 2 && isSurrogate(code)) ? 0 : code;
}

// Replaces escapes in place.
void decodeEscapes(std::wstring& text) {
    if (text.find_first_of(std::wstring_view(L"\\^\0", 3)) == std::wstring::npos)
        return;
    std::wstring result;
    const std::wstring_view all = text;
    for (std::size_t at = 0; at < all.size(); ++at) {
        const wchar_t c = all[at];
        const wchar_t next = at + 1 < all.size() ? all[at + 1] : L'\0';
        if (const char32_t code = c == L'\\' ? unicodeEscape(all.substr(at)) : 0) {
            result += static_cast<wchar_t>(code);
            at += 6;
        } else if (c == L'^' && next > L'@' && next <= L'_') {
            result += static_cast<wchar_t>(next - L'@');
            ++at;
        } else if (c == L'^' && next == L' ') {
            result += L'^';
            ++at;
        } else {
            result += c == L'\0' ? static_cast<wchar_t>(kReplacement) : c;
        }
    }
    text = std::move(result);
}

void appendUtf8(std::string& bytes, char32_t c) {
    if (c < 0x80) {
        bytes += static_cast<char>(c);
        return;
    }
    const int following = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr std::array<unsigned, 4> kLead = {0, 0xC0, 0xE0, 0xF0};
    bytes += static_cast<char>(kLead[static_cast<std::size_t>(following)] | c >> (6 * following));
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
        bytes += static_cast<char>(0x80 | (c >> shift & 0x3F));
}

void appendEscape(std::string& bytes, char32_t c) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    if (c > 0xFFFF) {  // as the two halves of UTF-16, which decoding joins again
        c -= 0x10000;
        appendEscape(bytes, 0xD800 + (c >> 10));
        c = 0xDC00 + (c & 0x3FF);
    }
    bytes += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4)
        bytes += kDigits[c >> shift & 0xF];
}

// False when a one-byte encoding has no such character.
bool appendOneByte(std::string& bytes, char32_t c, TextEncoding encoding) {
    if (encoding == TextEncoding::Windows1252 && (c > 0xFF || (c >= 0x80 && c < 0xA0))) {
        const auto found = std::find(kWindows1252.begin(), kWindows1252.end(), c);
        if (found == kWindows1252.end())
            return false;
        bytes += static_cast<char>(0x80 + std::distance(kWindows1252.begin(), found));
        return true;
    }
    if (c > 0xFF)
        return false;
    bytes += static_cast<char>(c);
    return true;
}

std::string upperCased(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return upper;
}

}  // namespace

bool isForeignCodePage(std::string_view codePage) {
    const std::string name = upperCased(codePage);
    return !name.empty() && name != "ANSI_1252" && name != "ASCII" && name != "ISO8859-1" &&
           name != "ISO-8859-1";
}

TextEncoding encodingOf(std::string_view version, std::string_view codePage) {
    if (version >= "AC1021" && version.starts_with("AC1"))
        return TextEncoding::Utf8;
    const std::string name = upperCased(codePage);
    if (name == "UTF8" || name == "UTF-8")
        return TextEncoding::Utf8;
    return name.empty() || name == "ANSI_1252" || name == "ASCII" ? TextEncoding::Windows1252
                                                                  : TextEncoding::Latin1;
}

std::wstring decodeText(std::string_view bytes, TextEncoding encoding, bool& damaged) {
    std::wstring text;
    if (encoding != TextEncoding::Utf8) {
        text = decodeBytes(bytes, encoding);
    } else {
        text.reserve(bytes.size());
        if (!decodeUtf8(bytes, text)) {
            damaged = true;
            text = decodeBytes(bytes, TextEncoding::Windows1252);
        }
    }
    decodeEscapes(text);
    return text;
}

std::size_t cutCharacterLength(std::string_view bytes, TextEncoding encoding) {
    if (bytes.ends_with('^'))
        return 1;
    constexpr std::size_t kEscapeLength = 7;
    const std::size_t backslash = bytes.rfind('\\');
    const std::string_view escape = backslash == std::string_view::npos ? "" : bytes.substr(backslash);
    constexpr std::string_view kStart = "\\U+";
    if (escape.size() < kEscapeLength && !escape.empty() &&
        kStart.starts_with(escape.substr(0, kStart.size())))
        return escape.find_first_not_of("0123456789ABCDEFabcdef", kStart.size()) == std::string_view::npos
                   ? escape.size()
                   : 0;
    if (encoding != TextEncoding::Utf8)
        return 0;
    for (std::size_t back = 1; back <= 3 && back <= bytes.size(); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if ((byte & 0xC0) != 0x80)
            return static_cast<std::size_t>(sequenceLength(byte)) > back ? back : 0;
    }
    return 0;
}

std::string encodeText(std::wstring_view text, TextEncoding encoding) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = nextWide(text, at);
        if (c < 0x20) {
            bytes += '^';
            bytes += static_cast<char>('@' + c);
        } else if (c == U'^') {
            bytes += "^ ";
        } else if (c < 0x80) {
            bytes += static_cast<char>(c);
        } else if (isSurrogate(c)) {
            appendEscape(bytes, c);
        } else if (encoding == TextEncoding::Utf8) {
            appendUtf8(bytes, c);
        } else if (!appendOneByte(bytes, c, encoding)) {
            appendEscape(bytes, c);
        }
    }
    return bytes;
}

}  // namespace drafthost::exchange
