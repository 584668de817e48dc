#pragma once

// Drawing files of any format: what they hold decides, not what they are called.

#include "host/exchange/dxf_reader.h"

namespace drafthost::exchange {

// Reads a DXF or DWG file. shareMode: what other programs may not have the file open for, an AcDb::ShareMode.
// The status and the message are those of readDxf, and eInvalidFileVersion for a version of DWG files that is
// not read. What a DWG file holds and the drawing does not is a finding (AuditCode::LeftOut).
DxfReadResult readDrawing(AcDbDatabase& database, const std::filesystem::path& file, int shareMode);

}  // namespace drafthost::exchange
