#include "host/lisp/utf8.h"

#include <cstddef>
#include <cstdint>

namespace drafthost::lisp {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf8(std::string& out, char32_t code) {
    const auto put = [&out](char32_t byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

void appendWide(std::wstring& out, char32_t code) {
    if (sizeof(wchar_t) == 2 && code >= 0x10000) {
        out += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
        out += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
        out += static_cast<wchar_t>(code);
    }
}

// The number of bytes of the well-formed sequence at `from` and its code; 0 bytes when malformed.
std::size_t decode(std::string_view bytes, std::size_t from, char32_t& code) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned char lead = byte(from);
    const std::size_t length = lead < 0x80       ? 1
                               : lead >> 5 == 6  ? 2
                               : lead >> 4 == 14 ? 3
                               : lead >> 3 == 30 ? 4
                                                 : 0;
    if (length == 0 || from + length > bytes.size()) {
        return 0;
    }
    code = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if (byte(from + index) >> 6 != 2) {
            return 0;
        }
        code = code << 6 | (byte(from + index) & 0x3F);
    }
    static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool wellFormed = code >= smallest[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    return wellFormed ? length : 0;
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        char32_t code = static_cast<char32_t>(text[index]);
        if (isHighSurrogate(code) && index + 1 < text.size() &&
            isLowSurrogate(static_cast<char32_t>(text[index + 1]))) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[++index]) - 0xDC00);
        } else if (isHighSurrogate(code) || isLowSurrogate(code) || code > 0x10FFFF) {
            code = replacement;
        }
        appendUtf8(out, code);
    }
    return out;
}

std::wstring fromUtf8(std::string_view bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (std::size_t index = 0; index < bytes.size();) {
        char32_t code = 0;
        std::size_t length = decode(bytes, index, code);
        if (length == 0) {
            code = static_cast<unsigned char>(bytes[index]);
            length = 1;
        }
        appendWide(out, code);
        index += length;
    }
    return out;
}

}  // namespace drafthost::lisp
