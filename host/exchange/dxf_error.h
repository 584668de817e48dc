#pragma once

// What stops the reading of a DXF file.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace drafthost::exchange {

// Thrown inside the reader and turned into a status and a message at its entry point.
class DxfError : public std::runtime_error {
public:
    // line: counted from 1; 0 when the problem has no place in the file.
    DxfError(std::size_t line, const std::string& reason) : std::runtime_error(reason), line_(line) {}
    std::size_t line() const { return line_; }

private:
    std::size_t line_;
};

// The text in quotes for a message: shortened, and with anything that is not printable ASCII replaced.
std::string quotedForMessage(std::string_view text);

}  // namespace drafthost::exchange
