#include "host/editor/file_insertion.h"

#include <optional>

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/exchange/drawing_file.h"

namespace drafthost::editor {
namespace {

std::optional<std::wstring> findDrawing(const std::wstring& name, const AcDbDatabase& database) {
    for (const wchar_t* const extension : {L"", L".dwg", L".dxf"}) {
        if (auto path = theHost().services().find(name + extension, &database))
            return path;
    }
    return std::nullopt;
}

// The last part of a path, without a drawing file's extension. Other dots belong to the name.
std::wstring nameOfFile(const std::wstring& path) {
    const std::wstring name = path.substr(folderOf(path).size());
    const std::size_t dot = name.find_last_of(L'.');
    const std::wstring extension = dot == std::wstring::npos ? L"" : name.substr(dot);
    return equalNames(extension, L".dwg") || equalNames(extension, L".dxf") ? name.substr(0, dot) : name;
}

[[noreturn]] void refuse(CommandContext& context, const std::wstring& message) {
    context.print(message);
    throw CommandCancelled();
}

AcDbObjectId insertFile(CommandContext& context, const std::wstring& path, const std::wstring& name) {
    AcDbDatabase drawing(false, true);
    const exchange::DxfReadResult read = exchange::readDrawing(drawing, path, AcDb::kDenyNone);
    if (read.status != Acad::eOk) {
        std::wstring reason = read.message.empty() ? acadErrorStatusText(read.status) : read.message;
        if (reason.find(path) == std::wstring::npos)
            reason.insert(0, path + L": ");
        refuse(context, L"The drawing cannot be read. " + reason);
    }
    for (const exchange::AuditFinding& finding : read.audit.findings()) {
        if (finding.code == exchange::AuditCode::LeftOut)
            context.print(finding.text);
    }
    AcDbObjectId block;
    const auto status = context.database().insert(block, name.c_str(), &drawing);
    if (status == Acad::eInvalidKey)
        refuse(context, L"\"" + name + L"\" cannot be the name of a block.");
    if (status == Acad::eSelfReference)
        refuse(context, L"The drawing " + path + L" has or shows a block \"" + name + L"\" itself.");
    if (status != Acad::eOk)
        refuse(context, L"The drawing " + path + L" cannot be inserted: " + acadErrorStatusText(status));
    return block;
}

}  // namespace

AcDbObjectId blockForInsertion(CommandContext& context, const std::wstring& name) {
    const AcDbDatabase& database = context.database();
    const std::size_t equals = name.find(L'=');
    const bool redefines = equals != std::wstring::npos;
    const std::wstring block = name.substr(0, equals);
    const AcDbObjectId known = findRecord(&database, TableIndex::Block, block);
    if (!redefines && !known.isNull())
        return known;
    const std::wstring given = redefines ? name.substr(equals + 1) : std::wstring();
    const std::wstring file = given.empty() ? block : given;
    const auto path = findDrawing(file, database);
    if (!path && redefines)
        refuse(context, L"There is no drawing file \"" + file + L"\" on the search path.");
    if (!path) {
        refuse(context,
               L"There is no block \"" + name + L"\" in this drawing, and no such file on the search path.");
    }
    return insertFile(context, *path, redefines ? block : nameOfFile(*path));
}

}  // namespace drafthost::editor
