#pragma once

// Numbers in DXF files.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost::exchange {

// A finite real number, blanks around it allowed; numbers too small for a double are 0. Empty: not such a
// number.
std::optional<double> parseReal(std::string_view text);
// A whole number between -2^63 and 2^63 - 1, also one written with a decimal point ("1.0").
std::optional<std::int64_t> parseInteger(std::string_view text);
// A handle: up to 16 hexadecimal digits.
std::optional<std::uint64_t> parseHandle(std::string_view text);
// Pairs of hexadecimal digits.
std::optional<std::vector<std::uint8_t>> parseBinary(std::string_view text);

// The shortest text that reads back as exactly this number, always with a decimal point: "0.1", "1.0",
// "1.0E+22".
void appendReal(std::string& bytes, double value);
void appendHandle(std::string& bytes, std::uint64_t handle);
void appendBinary(std::string& bytes, const std::vector<std::uint8_t>& data);

}  // namespace drafthost::exchange
