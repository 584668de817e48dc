#pragma once

// Writing of DXF files: ASCII, of 2000 format or the newer one that the drawing was read from.

#include <filesystem>
#include <string>

#include "host/api/database.h"

namespace drafthost::exchange {

// The drawing as the bytes of a file. Erased objects are left out. The same drawing always gives the same
// bytes.
std::string dxfBytes(AcDbDatabase& database);

// Writes a whole file or leaves an existing one as it was; statuses of replaceFile.
Acad::ErrorStatus writeDxf(AcDbDatabase& database, const std::filesystem::path& file);

// Version in which the drawing is written: "AC1015", or the one it was read from when that is newer.
std::string fileVersion(const AcDbDatabase& database);

}  // namespace drafthost::exchange
