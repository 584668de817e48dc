#pragma once

// Reading of DXF files: ASCII, from R12 to R2018.

#include <filesystem>
#include <string>
#include <string_view>

#include "host/api/database.h"
#include "host/exchange/audit.h"

namespace drafthost::exchange {

struct DxfReadResult {
    // eFileNotFound; eFileAccessErr: exists but cannot be read; eInvalidFileVersion: a binary file;
    // eFileInternalErr: damaged; eNotApplicable: the database is not empty.
    Acad::ErrorStatus status = Acad::eOk;
    std::wstring message;  // "plan.dxf(line 123): group 40: real number expected, found "abc""; empty when
                           // all went well
    std::wstring reason;   // the same without name and place
    AuditReport audit;     // what was found and corrected
};

// Fills a database that was made empty (buildDefaultDrawing false). On failure it is empty again.
DxfReadResult readDxf(AcDbDatabase& database, const std::filesystem::path& file);
// The same for the contents of a file; name: for messages.
DxfReadResult readDxfBytes(AcDbDatabase& database, std::string_view bytes, const std::wstring& name);

}  // namespace drafthost::exchange
