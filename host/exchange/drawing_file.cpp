#include "host/exchange/drawing_file.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "host/database/database_impl.h"
#include "host/exchange/dwg_conversion.h"
#include "host/exchange/file_handle.h"

#if defined(_WIN32)
#include <share.h>
#endif

namespace drafthost::exchange {
namespace {

namespace fs = std::filesystem;

#if defined(_WIN32)
static_assert(AcDb::kDenyWrite == _SH_DENYWR && AcDb::kDenyNone == _SH_DENYNO);
File open(const fs::path& path, int shareMode) {
    return File(_wfsopen(path.c_str(), L"rb", shareMode));
}
#else
File open(const fs::path& path, int) {
    return File(std::fopen(path.c_str(), "rb"));
}
#endif

DxfReadResult failed(Acad::ErrorStatus status, const std::wstring& name, const std::string& reason) {
    DxfReadResult result;
    result.status = status;
    result.message = name + L": " + std::wstring(reason.begin(), reason.end());
    return result;
}

std::string readAll(std::FILE* file) {
    std::string bytes;
    char buffer[1 << 16];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        bytes.append(buffer, count);
    return bytes;
}

std::wstring widened(std::string_view text) {
    return std::wstring(text.begin(), text.end());
}

// "unread 3 REGION" and "unread-objects 12" in the comments before the drawing.
void addLeftOut(std::string_view dxf, AuditReport& audit) {
    constexpr std::string_view kComment = "999\n", kEntities = "unread ", kObjects = "unread-objects ";
    while (dxf.starts_with(kComment)) {
        dxf.remove_prefix(kComment.size());
        const std::string_view line = dxf.substr(0, dxf.find('\n'));
        dxf.remove_prefix(std::min(line.size() + 1, dxf.size()));
        if (line.starts_with(kEntities))
            audit.add(AuditCode::LeftOut,
                      widened(line.substr(kEntities.size())) + L" cannot be read from DWG files: left out", 0,
                      false);
        else if (line.starts_with(kObjects))
            audit.add(AuditCode::ObjectsLeftOut,
                      widened(line.substr(kObjects.size())) +
                          L" objects that are not seen (dictionaries, groups, layouts and the like) are not "
                          L"read from DWG files");
    }
}

// Lines of the DXF text that the file became mean nothing to anybody.
void forgetLines(DxfReadResult& result, const std::wstring& name) {
    if (!result.message.empty())
        result.message = name + L": the drawing in it is damaged: " + result.reason;
    result.audit.forgetLines();
}

DxfReadResult readDwg(AcDbDatabase& database, const fs::path& file, std::string_view mark) {
    const std::wstring name = file.wstring();
    if (!database.modelSpaceId().isNull())
        return failed(Acad::eNotApplicable, name, "the drawing is not empty");
    if (!isReadableDwgVersion(mark))
        return failed(Acad::eInvalidFileVersion, name,
                      "a DWG file of version " + dwgVersionName(mark) +
                          " cannot be read, only R13 (AC1012) to 2013 (AC1027)");
    const DwgConversion converted = convertDwg(file);
    if (converted.status != Acad::eOk)
        return failed(converted.status, name, converted.reason);
    DxfReadResult result = readDxfBytes(database, converted.dxf, name);
    forgetLines(result, name);
    if (result.status == Acad::eOk)
        addLeftOut(converted.dxf, result.audit);
    return result;
}

DxfReadResult readOpened(AcDbDatabase& database, const fs::path& file, std::FILE* opened) {
    char beginning[8] = {};
    const std::size_t count = std::fread(beginning, 1, sizeof beginning, opened);
    const std::string_view mark = dwgVersionMark({beginning, count});
    if (!mark.empty())
        return readDwg(database, file, mark);
    std::rewind(opened);
    return readDxfBytes(database, readAll(opened), file.wstring());
}

}  // namespace

DxfReadResult readDrawing(AcDbDatabase& database, const fs::path& file, int shareMode) {
    const std::wstring name = file.wstring();
    std::error_code error;
    if (!fs::exists(file, error))
        return failed(Acad::eFileNotFound, name, "file not found");
    const File opened = fs::is_regular_file(file, error) ? open(file, shareMode) : nullptr;
    if (!opened)
        return failed(Acad::eFileAccessErr, name, "the file cannot be read");
    try {
        DxfReadResult result = readOpened(database, file, opened.get());
        if (result.status == Acad::eOk)
            database.impl().fileName = fs::absolute(file, error).wstring();
        return result;
    } catch (const std::bad_alloc&) {
        return failed(Acad::eOutOfMemory, name, "not enough memory");
    }
}

}  // namespace drafthost::exchange

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int shareMode, ACHAR** message) {
    if (message)
        *message = nullptr;
    if (!fileName || !*fileName)
        return Acad::eInvalidInput;
    const auto result = drafthost::exchange::readDrawing(*this, fileName, shareMode);
    if (message && result.status != Acad::eOk)
        acutNewString(result.message.c_str(), *message);
    return result.status;
}
