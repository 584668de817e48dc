#include "host/database/named_references.h"

#include <algorithm>

#include "host/database/names.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

struct NamedReference {
    const wchar_t* type;      // DXF name
    const wchar_t* subclass;  // where the group stands, in lists with markers
    short code;
    TableIndex table;
};

constexpr NamedReference kReferences[] = {
    {L"DIMENSION", L"AcDbDimension", 2, TableIndex::Block},
    {L"DIMENSION", L"AcDbDimension", 3, TableIndex::DimStyle},
    {L"ARC_DIMENSION", L"AcDbDimension", 2, TableIndex::Block},
    {L"ARC_DIMENSION", L"AcDbDimension", 3, TableIndex::DimStyle},
    {L"LARGE_RADIAL_DIMENSION", L"AcDbDimension", 2, TableIndex::Block},
    {L"LARGE_RADIAL_DIMENSION", L"AcDbDimension", 3, TableIndex::DimStyle},
    {L"LEADER", L"AcDbLeader", 3, TableIndex::DimStyle},
    {L"TOLERANCE", L"AcDbFcf", 3, TableIndex::DimStyle},
    {L"ACAD_TABLE", L"AcDbBlockReference", 2, TableIndex::Block},
    {L"ACAD_TABLE", L"AcDbTable", 7, TableIndex::TextStyle},
    {L"ARCALIGNEDTEXT", L"AcDbArcAlignedText", 7, TableIndex::TextStyle},
};

}  // namespace

void forEachNamedReference(ObjectState& state,
                           const std::function<void(std::wstring& name, TableIndex table)>& visit) {
    auto* const unknown = dynamic_cast<UnknownEntityState*>(&state);
    if (!unknown)
        return;
    const auto ofType = [&](const NamedReference& reference) {
        return equalNames(reference.type, unknown->dxfName);
    };
    if (std::ranges::none_of(kReferences, ofType))
        return;
    const bool hasMarkers =
        std::ranges::any_of(unknown->groups, [](const DxfGroup& group) { return group.code == 100; });
    std::wstring subclass;
    for (DxfGroup& group : unknown->groups) {
        auto* const text = std::get_if<std::wstring>(&group.value);
        if (!text)
            continue;
        if (group.code == 100)
            subclass = *text;
        const auto fits = std::ranges::find_if(kReferences, [&](const NamedReference& reference) {
            return reference.code == group.code && ofType(reference) &&
                   (!hasMarkers || subclass == reference.subclass);
        });
        if (fits != std::end(kReferences))
            visit(*text, fits->table);
    }
}

}  // namespace drafthost
