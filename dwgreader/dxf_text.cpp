#include "dwgreader/dxf_text.h"

#include <charconv>
#include <cmath>
#include <numbers>

namespace dwgreader {
namespace {

constexpr std::size_t kLongestPiece = 250;

std::string written(std::string_view text) {
    std::string result;
    for (const char c : text.substr(0, text.find('\0'))) {
        if (c == '^') {
            result += "^ ";
        } else if (static_cast<unsigned char>(c) < ' ') {
            result += '^';
            result += static_cast<char>(c + '@');
        } else {
            result += c;
        }
    }
    return result;
}

// Where to cut so that no character and no caret sequence is divided.
std::size_t cutBefore(std::string_view text, std::size_t limit) {
    const auto inside = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80 || text[at - 1] == '^';
    };
    std::size_t at = limit;
    while (at > 1 && inside(at))
        --at;
    return at > 1 ? at : limit;
}

}  // namespace

void DxfText::line(int code, std::string_view value) {
    text_ += std::to_string(code);
    text_ += '\n';
    text_ += value;
    text_ += '\n';
}

DxfText& DxfText::text(int code, std::string_view value) {
    line(code, written(value));
    return *this;
}

DxfText& DxfText::longText(std::string_view value) {
    const std::string all = written(value);
    std::string_view rest = all;
    while (rest.size() > kLongestPiece) {
        const std::size_t length = cutBefore(rest, kLongestPiece);
        line(3, rest.substr(0, length));
        rest.remove_prefix(length);
    }
    line(1, rest);
    return *this;
}

DxfText& DxfText::integer(int code, std::int64_t value) {
    line(code, std::to_string(value));
    return *this;
}

DxfText& DxfText::real(int code, double value) {
    if (!std::isfinite(value))
        throw DamagedDrawing("a number is damaged");
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    line(code, std::string_view(digits, static_cast<std::size_t>(end - digits)));
    return *this;
}

DxfText& DxfText::degrees(int code, double radians) {
    return real(code, radians * (180.0 / std::numbers::pi));
}

DxfText& DxfText::handle(int code, std::uint32_t value) {
    char digits[16];
    auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    for (char* digit = digits; digit != end; ++digit)
        *digit = *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
    line(code, std::string_view(digits, static_cast<std::size_t>(end - digits)));
    return *this;
}

DxfText& DxfText::point(int code, const DRW_Coord& value) {
    return real(code, value.x).real(code + 10, value.y).real(code + 20, value.z);
}

DxfText& DxfText::point2d(int code, double x, double y) {
    return real(code, x).real(code + 10, y);
}

DxfText& DxfText::normal(const DRW_Coord& direction) {
    if (direction.x != 0.0 || direction.y != 0.0 || direction.z != 1.0)
        point(210, direction);
    return *this;
}

DxfText& DxfText::append(const DxfText& other) {
    text_ += other.text_;
    return *this;
}

}  // namespace dwgreader
