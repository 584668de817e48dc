#include "host/database/dxf_fields.h"

#include <algorithm>
#include <limits>

#include "host/database/database_impl.h"
#include "host/database/symbol_records.h"

namespace drafthost {
namespace detail {

void writeValue(GroupFiler& filer, short code, double value) {
    filer.writeItem(code, value);
}
void writeValue(GroupFiler& filer, short code, std::int32_t value) {
    filer.writeInt32(code, value);
}
void writeValue(GroupFiler& filer, short code, bool value) {
    filer.writeBool(code, value);
}
void writeValue(GroupFiler& filer, short code, const std::wstring& value) {
    filer.writeItem(code, value.c_str());
}
void writeValue(GroupFiler& filer, short code, const AcGePoint3d& value) {
    filer.writeItem(code, value);
}
void writeValue(GroupFiler& filer, short code, const AcGePoint2d& value) {
    filer.writeItem(code, value);
}
void writeValue(GroupFiler& filer, short code, const AcGeVector3d& value) {
    filer.writeItem(code, value);
}
void writeValue(GroupFiler& filer, short code, const AcDbObjectId& value) {
    if (!value.isNull())
        filer.writeObjectId(code, value);
}

bool readValue(const DxfGroup& group, double& value) {
    if (const auto* const real = std::get_if<double>(&group.value)) {
        value = *real;
        return std::isfinite(value);
    }
    const auto* const integer = std::get_if<std::int64_t>(&group.value);
    if (integer)
        value = static_cast<double>(*integer);
    return integer != nullptr;
}

bool readValue(const DxfGroup& group, std::int32_t& value) {
    const auto* const integer = std::get_if<std::int64_t>(&group.value);
    if (!integer || *integer < std::numeric_limits<std::int32_t>::min() ||
        *integer > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    value = static_cast<std::int32_t>(*integer);
    return true;
}

bool readValue(const DxfGroup& group, bool& value) {
    std::int32_t integer = 0;
    if (!readValue(group, integer))
        return false;
    value = integer != 0;
    return true;
}

bool readValue(const DxfGroup& group, std::wstring& value) {
    const auto* const text = std::get_if<std::wstring>(&group.value);
    if (text)
        value = *text;
    return text != nullptr;
}

bool readValue(const DxfGroup& group, AcGePoint3d& value) {
    if (const auto* const flat = std::get_if<AcGePoint2d>(&group.value)) {
        value = {flat->x, flat->y, 0};
    } else if (const auto* const point = std::get_if<AcGePoint3d>(&group.value)) {
        value = *point;
    } else {
        return false;
    }
    return std::isfinite(value.x) && std::isfinite(value.y) && std::isfinite(value.z);
}

bool readValue(const DxfGroup& group, AcGePoint2d& value) {
    AcGePoint3d point;
    if (!readValue(group, point))
        return false;
    value = point.convert2d();
    return true;
}

// A direction of no length names no plane; it is refused rather than divided by later.
bool readValue(const DxfGroup& group, AcGeVector3d& value) {
    AcGePoint3d point;
    if (!readValue(group, point))
        return false;
    const AcGeVector3d vector = point.asVector();
    if (group.code == 210) {
        const double length = vector.length();
        if (!(length > 1e-100))
            return false;
        // Unit vectors are kept to the last bit, so that files come out as they went in.
        // The square of a very long one overflows, its direction does not.
        value = std::abs(length - 1) < 1e-9 ? vector
                : std::isfinite(length)     ? vector / length
                                            : vector.normal();
        return true;
    }
    value = vector;
    return true;
}

bool readValue(const DxfGroup& group, AcDbObjectId& value) {
    const auto* const reference = std::get_if<ObjectReference>(&group.value);
    if (reference)
        value = reference->id;
    return reference != nullptr;
}

void writeName(GroupFiler& filer, short code, AcDbObjectId record) {
    const std::wstring& name = recordName(record);
    if (!name.empty())
        filer.writeItem(code, name.c_str());
}

bool readName(const DxfGroup& group, TableKind table, AcDbDatabase* database, AcDbObjectId& record) {
    const auto* const name = std::get_if<std::wstring>(&group.value);
    if (!name)
        return false;
    AcDbObjectId found = findRecord(database, table, *name);
    // Files may use a block before they define it. Other records that a file names and does not have are
    // passed over.
    const bool loading = database && database->impl().loading;
    if (found.isNull() && loading && table == TableKind::Block && !name->empty()) {
        found = addRecord(*database, TableIndex::Block, std::make_unique<AcDbBlockTableRecord>(), *name);
    }
    if (!found.isNull())
        record = found;
    return !found.isNull() || loading;
}

}  // namespace detail

namespace {

GroupFiler* groupFiler(AcDbDxfFiler* filer) {
    return dynamic_cast<GroupFiler*>(filer);
}

const wchar_t* expectation(DxfKind kind) {
    switch (kind) {
        case DxfKind::Text: return L"known name or text";
        case DxfKind::Point: return L"point";
        case DxfKind::Real: return L"real";
        case DxfKind::Int16:
        case DxfKind::Int32:
        case DxfKind::Int64:
        case DxfKind::Bool: return L"integer";
        case DxfKind::Handle:
        case DxfKind::Reference: return L"object";
        case DxfKind::Binary: return L"binary data";
    }
    return L"value";
}

Acad::ErrorStatus badValue(GroupFiler& filer, const DxfGroup& group) {
    filer.setProblem(L"group " + std::to_wstring(group.code) + L": " + expectation(dxfKind(group.code)) +
                     L" expected");
    return Acad::eInvalidInput;
}

enum class Taken { No, Yes, Bad };

Taken giveTo(ObjectState& state, std::span<const DxfField> fields, GroupTaker taker, const DxfGroup& group,
             AcDbDatabase* database) {
    const auto field = std::ranges::find(fields, group.code, &DxfField::code);
    if (field != fields.end())
        return field->read(state, *field, group, database) ? Taken::Yes : Taken::Bad;
    return taker && taker(state, group, database) ? Taken::Yes : Taken::No;
}

// Skips what is taken, then the marker. Groups that stand before the first marker of all belong to the first
// subclass that is read (hand-made lists put the layer there); they are given to it first.
Acad::ErrorStatus findMarker(GroupFiler& filer, const ACHAR* subclass, std::size_t& begin) {
    std::size_t marker = filer.position();
    begin = marker;
    const auto& groups = filer.groups();
    while (marker < groups.size() && (filer.taken(marker) || groups[marker].code != 100))
        ++marker;
    const auto* const name =
        marker < groups.size() ? std::get_if<std::wstring>(&groups[marker].value) : nullptr;
    if (!name || *name != subclass) {
        filer.setProblem(L"subclass marker " + std::wstring(subclass) + L" expected");
        return Acad::eBadDxfSequence;
    }
    filer.take(marker);
    return Acad::eOk;
}

bool isSubclassEnd(const DxfGroup& group) {
    return group.code == 100 || group.code >= 1000;
}

Acad::ErrorStatus readMarked(GroupFiler& filer, const ACHAR* subclass, ObjectState& state,
                             std::span<const DxfField> fields, GroupTaker taker) {
    std::size_t index = 0;
    if (const auto status = findMarker(filer, subclass, index); status != Acad::eOk)
        return status;
    const auto& groups = filer.groups();
    for (; index < groups.size() && (filer.taken(index) || !isSubclassEnd(groups[index])); ++index) {
        if (filer.taken(index))
            continue;
        const Taken taken = giveTo(state, fields, taker, groups[index], filer.database());
        if (taken == Taken::Bad)
            return badValue(filer, groups[index]);
        if (taken == Taken::No)
            state.extras.push_back({subclass, groups[index]});
        filer.take(index);
    }
    filer.setPosition(index);
    return Acad::eOk;
}

Acad::ErrorStatus readUnmarked(GroupFiler& filer, ObjectState& state, std::span<const DxfField> fields,
                               GroupTaker taker) {
    const auto& groups = filer.groups();
    for (std::size_t index = 0; index < groups.size(); ++index) {
        if (filer.taken(index))
            continue;
        const Taken taken = giveTo(state, fields, taker, groups[index], filer.database());
        if (taken == Taken::Bad)
            return badValue(filer, groups[index]);
        if (taken == Taken::Yes)
            filer.take(index);
    }
    return Acad::eOk;
}

}  // namespace

void writeSubclassMarker(AcDbDxfFiler* filer, const ACHAR* subclass) {
    filer->writeItem(100, subclass);
}

void writeFields(AcDbDxfFiler* filer, const ObjectState& state, std::span<const DxfField> fields) {
    GroupFiler* const groups = groupFiler(filer);
    if (!groups)
        return;
    for (const DxfField& field : fields)
        field.write(state, field, *groups);
}

void writeExtras(AcDbDxfFiler* filer, const ACHAR* subclass, const ObjectState& state) {
    GroupFiler* const groups = groupFiler(filer);
    if (!groups)
        return;
    for (const ExtraGroup& extra : state.extras) {
        if (extra.subclass == subclass)
            groups->add(extra.group);
    }
}

Acad::ErrorStatus writeSubclass(AcDbDxfFiler* filer, const ACHAR* subclass, const ObjectState& state,
                                std::span<const DxfField> fields) {
    if (!groupFiler(filer))
        return Acad::eFilerError;
    writeSubclassMarker(filer, subclass);
    writeFields(filer, state, fields);
    writeExtras(filer, subclass, state);
    return Acad::eOk;
}

Acad::ErrorStatus readSubclass(AcDbDxfFiler* filer, const ACHAR* subclass, ObjectState& state,
                               std::span<const DxfField> fields, GroupTaker taker) {
    GroupFiler* const groups = groupFiler(filer);
    if (!groups)
        return Acad::eFilerError;
    std::erase_if(state.extras, [&](const ExtraGroup& extra) { return extra.subclass == subclass; });
    if (groups->hasMarkers())
        return readMarked(*groups, subclass, state, fields, taker);
    return readUnmarked(*groups, state, fields, taker);
}

}  // namespace drafthost
