#include "host/exchange/dxf_reader.h"

#include <fstream>
#include <new>

#include "host/exchange/dxf_loader.h"

namespace drafthost::exchange {
namespace {

void clear(AcDbDatabase::Impl& impl) {
    for (std::size_t i = impl.stubs.size(); i-- > 0;) {
        impl.remove(impl.stubs[i]);
        impl.stubs[i]->database = nullptr;  // ids of what is gone are stale
    }
    impl.stubs.clear();
    impl.byHandle.clear();
    impl.settings = {};
    impl.tables = {};
    impl.namedObjects = impl.modelSpace = impl.paperSpace = impl.currentSpace = AcDbObjectId();
    impl.classes.clear();
    impl.otherSections.clear();
    impl.nextHandle = 1;
}

void load(AcDbDatabase& database, std::string_view bytes, AuditReport& audit) {
    bool endMark = false;
    const std::vector<DxfTag> tags = readTags(bytes, endMark);
    if (tags.empty())
        throw DxfError(1, "the file holds no drawing");
    const DxfStructure structure = structureOf(tags);
    if (!endMark)
        audit.add(AuditCode::MissingEndMark, L"the end mark (0 EOF) is missing", tags.back().line);
    for (const std::uint32_t line : structure.lateVariables)
        audit.add(AuditCode::LateVariables, L"header variables stand behind the end of the header", line);
    DxfLoader loader(database, structure, audit);
    loader.run();
    if (loader.input().damagedTexts() > 0)
        audit.add(AuditCode::DamagedText, std::to_wstring(loader.input().damagedTexts()) +
                                              L" texts are not in UTF-8 and have been read as ANSI_1252");
    if (loader.input().unusableReferences() > 0)
        audit.add(AuditCode::DanglingReference, std::to_wstring(loader.input().unusableReferences()) +
                                                    L" references hold handles that cannot be: set to null");
    const std::string_view codePage = structure.variable("$DWGCODEPAGE");
    if (loader.input().encoding() == TextEncoding::Latin1 && isForeignCodePage(codePage))
        audit.add(AuditCode::ForeignCodePage,
                  L"texts of code page " + std::wstring(codePage.begin(), codePage.end()) +
                      L" are not translated: their bytes are kept",
                  0, false);
    auditDatabase(database, audit);
    database.impl().modifications = 0;
}

DxfReadResult failed(Acad::ErrorStatus status, std::wstring message) {
    DxfReadResult result;
    result.status = status;
    result.message = std::move(message);
    return result;
}

std::wstring located(const std::wstring& name, const DxfError& error) {
    const std::string reason = error.what();
    const std::wstring place = error.line() == 0 ? L"" : L"(line " + std::to_wstring(error.line()) + L")";
    return name + place + L": " + std::wstring(reason.begin(), reason.end());
}

// False when the file cannot be read to its end.
bool readWhole(const std::filesystem::path& file, std::string& bytes) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    if (!stream)
        return false;
    const std::streamoff size = stream.tellg();
    if (size < 0)
        return false;
    bytes.resize(static_cast<std::size_t>(size));
    stream.seekg(0);
    stream.read(bytes.data(), size);
    return stream.gcount() == size;
}

}  // namespace

DxfReadResult readDxfBytes(AcDbDatabase& database, std::string_view bytes, const std::wstring& name) {
    if (!database.modelSpaceId().isNull())
        return failed(Acad::eNotApplicable, name + L": the drawing is not empty");
    if (isBinaryDxf(bytes))
        return failed(Acad::eInvalidFileVersion,
                      name + L": binary DXF files cannot be read, only ASCII ones");
    DxfReadResult result;
    try {
        load(database, bytes, result.audit);
        return result;
    } catch (const DxfError& error) {
        result = failed(Acad::eFileInternalErr, located(name, error));
        const std::string reason = error.what();
        result.reason.assign(reason.begin(), reason.end());
    } catch (const std::bad_alloc&) {
        result = failed(Acad::eOutOfMemory, name + L": not enough memory");
        result.reason = L"not enough memory";
    }
    clear(database.impl());
    return result;
}

DxfReadResult readDxf(AcDbDatabase& database, const std::filesystem::path& file) {
    const std::wstring name = file.wstring();
    std::error_code error;
    if (!std::filesystem::exists(file, error))
        return failed(Acad::eFileNotFound, name + L": file not found");
    std::string bytes;
    try {
        if (!std::filesystem::is_regular_file(file, error) || !readWhole(file, bytes))
            return failed(Acad::eFileAccessErr, name + L": the file cannot be read");
    } catch (const std::bad_alloc&) {
        return failed(Acad::eOutOfMemory, name + L": not enough memory");
    }
    DxfReadResult result = readDxfBytes(database, bytes, name);
    if (result.status == Acad::eOk)
        database.impl().fileName = std::filesystem::absolute(file, error).wstring();
    return result;
}

}  // namespace drafthost::exchange
