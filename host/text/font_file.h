#pragma once

// Names in TrueType and OpenType files.

#include <filesystem>
#include <optional>

#include "host/text/outlines.h"

namespace drafthost::text {

// Family, bold and italic of the file's (first) face; nothing when the file cannot be read as a font.
std::optional<TextFont> readFontFile(const std::filesystem::path& path);

}  // namespace drafthost::text
