#pragma once

// The lowest level of a DXF file: pairs of lines, a group code and its value.

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/exchange/dxf_error.h"

namespace drafthost::exchange {

struct DxfTag {
    std::int32_t code = 0;
    std::uint32_t line = 0;  // of the group code, counted from 1
    std::string_view text;   // the value line without its line end, part of the file's bytes
};

// True for the binary form of DXF, which readTags does not read.
bool isBinaryDxf(std::string_view bytes);

// Splits the file into tags up to the end mark (0 EOF) and leaves out comments (999). Lines end with LF, CR
// LF, or, in a file without any LF, CR; a byte order mark in front is skipped. endMark: whether the end mark
// was found. Throws DxfError for a line that is not a group code and for a group code without a value. The
// bytes must outlive the tags.
std::vector<DxfTag> readTags(std::string_view bytes, bool& endMark);

// The text without blanks around it.
std::string_view trimmed(std::string_view text);

}  // namespace drafthost::exchange
