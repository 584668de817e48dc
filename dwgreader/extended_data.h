#pragma once

// Extended data of one application, as bytes in a DWG file.

#include <string_view>

#include "dwgreader/drawing.h"

namespace dwgreader {

// The groups behind the application's name (1001). wide: texts are UTF-16 (files of 2007 and later). layers:
// what references to layers name; those to an unknown one are left out. What cannot be understood ends the
// data.
DxfText extendedDataGroups(std::string_view bytes, bool wide, const Records& layers);

}  // namespace dwgreader
