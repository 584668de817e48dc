#pragma once

// DWG files, turned into DXF by a program of its own.

#include <filesystem>
#include <string>
#include <string_view>

#include "host/api/status.h"

namespace drafthost::exchange {

// The mark at the beginning of DWG files of all versions: "AC1015". Empty when the file begins otherwise.
std::string_view dwgVersionMark(std::string_view bytes);
// "AC1015 (2000)"; the mark alone when the version is not known.
std::string dwgVersionName(std::string_view mark);
// The versions from R13 to 2013.
bool isReadableDwgVersion(std::string_view mark);

// Whether the file is there and holds a DWG drawing, whatever its name.
bool isDwgFile(const std::filesystem::path& file);

struct DwgConversion {
    // eFileInternalErr: damaged; eFileAccessErr: the file, or the program that reads it, cannot be opened;
    // eInvalidFileVersion; eOutOfMemory.
    Acad::ErrorStatus status = Acad::eOk;
    std::string dxf;     // comments (999) in front name what was left out: see dwgreader/drawing.h
    std::string reason;  // of a failure
};

// Defined where processes are known (host/documents/dwg_process.cpp). Ends in a time that depends on the
// file's size, whatever the file holds.
DwgConversion convertDwg(const std::filesystem::path& file);

}  // namespace drafthost::exchange
