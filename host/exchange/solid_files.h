#pragma once

// Files of bodies: STL, OBJ, and the list of parts as CSV.

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/geometry/shell.h"

namespace drafthost::exchange {

// A solid as the drawing shows it, in world coordinates and drawing units.
struct ShownSolid {
    std::wstring handle;  // hexadecimal; within blocks behind those of the references, as in 2F/1A
    std::wstring layer, kind;
    std::vector<Shell> bodies;  // closed, welded and facing outward
    double volume = 0, surfaceArea = 0;
    std::optional<double> sheetArea;  // none: not known
};

// Binary, single precision: triangles, facets that come to nothing at that precision left out. Empty when
// there are more facets than the format counts.
std::string stlBytes(std::span<const ShownSolid> solids);
// Objects named by handle and kind, each with its points; faces keep their corners.
std::string objText(std::span<const ShownSolid> solids);
// A header row, then one row for each solid. Lines end in CR LF; UTF-8, with a byte order mark when there is
// a character beyond ASCII, since spreadsheets take the text for another code page otherwise.
std::string solidListText(std::span<const ShownSolid> solids);

}  // namespace drafthost::exchange
