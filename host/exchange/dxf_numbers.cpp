#include "host/exchange/dxf_numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "host/exchange/dxf_tags.h"

namespace drafthost::exchange {
namespace {

// std::from_chars knows no plus sign.
std::string_view withoutPlus(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    return text;
}

template <class Number, class... Format>
std::errc parseWhole(std::string_view text, Number& value, Format... format) {
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value, format...);
    return error == std::errc() && stopped != end ? std::errc::invalid_argument : error;
}

constexpr char kHexDigits[] = "0123456789ABCDEF";

}  // namespace

std::optional<double> parseReal(std::string_view text) {
    text = withoutPlus(text);
    double value = 0;
    const std::errc error = parseWhole(text, value);
    if (error == std::errc::result_out_of_range) {
        // Also reported for numbers that are only too close to zero.
        constexpr std::size_t kLongestNumber = 400;
        value = text.size() <= kLongestNumber ? std::strtod(std::string(text).c_str(), nullptr) : HUGE_VAL;
        return std::fabs(value) < 1 ? std::optional<double>(0.0) : std::nullopt;
    }
    if (error != std::errc() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    text = withoutPlus(text);
    std::int64_t value = 0;
    if (parseWhole(text, value, 10) == std::errc())
        return value;
    constexpr double kExactLimit = 9007199254740992.0;  // 2^53
    const std::optional<double> real = parseReal(text);
    if (!real || *real != std::floor(*real) || std::fabs(*real) > kExactLimit)
        return std::nullopt;
    return static_cast<std::int64_t>(*real);
}

std::optional<std::uint64_t> parseHandle(std::string_view text) {
    std::uint64_t value = 0;
    if (parseWhole(trimmed(text), value, 16) != std::errc())
        return std::nullopt;
    return value;
}

std::optional<std::vector<std::uint8_t>> parseBinary(std::string_view text) {
    text = trimmed(text);
    if (text.size() % 2 != 0)
        return std::nullopt;
    std::vector<std::uint8_t> data;
    data.reserve(text.size() / 2);
    for (std::size_t at = 0; at < text.size(); at += 2) {
        std::uint8_t byte = 0;
        if (parseWhole(text.substr(at, 2), byte, 16) != std::errc())
            return std::nullopt;
        data.push_back(byte);
    }
    return data;
}

void appendReal(std::string& bytes, double value) {
    std::array<char, 40> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    const std::string_view text(digits.data(), static_cast<std::size_t>(written.ptr - digits.data()));
    const std::size_t exponent = text.find('e');
    const std::string_view mantissa = text.substr(0, exponent);
    bytes += mantissa;
    if (mantissa.find('.') == std::string_view::npos)
        bytes += ".0";
    if (exponent == std::string_view::npos)
        return;
    bytes += 'E';
    bytes += text.substr(exponent + 1);
}

void appendHandle(std::string& bytes, std::uint64_t handle) {
    std::array<char, 16> digits{};
    auto at = digits.end();
    do {
        *--at = kHexDigits[handle & 0xF];
        handle >>= 4;
    } while (handle != 0);
    bytes.append(at, digits.end());
}

void appendBinary(std::string& bytes, const std::vector<std::uint8_t>& data) {
    for (const std::uint8_t byte : data) {
        bytes += kHexDigits[byte >> 4];
        bytes += kHexDigits[byte & 0xF];
    }
}

}  // namespace drafthost::exchange
