#pragma once

// Tables of a class's simple groups: one row for each member, used for writing and reading alike.
//
//   constexpr DxfField kLineFields[] = {
//       dxfField<&LineState::thickness, 0.0>(39),   // left out when it has the default value
//       dxfField<&LineState::start>(10),            // always written
//   };
//
// Member types: double, std::int32_t, bool, std::wstring, AcGePoint3d, AcGePoint2d, AcGeVector3d (default: +Z
// for code 210), AcDbObjectId. An object id is written as the name of a symbol table record when the row says
// so (dxfName).

#include <span>
#include <type_traits>

#include "host/database/group_filer.h"
#include "host/database/object_imp.h"

namespace drafthost {

enum class TableKind { None, Layer, Linetype, TextStyle, Block };

struct DxfField {
    short code;
    // Writes the member; leaves it out when it has its default value.
    void (*write)(const ObjectState& state, const DxfField& field, GroupFiler& filer);
    // Stores the group's value; false: the value is of another kind, out of range, or names nothing.
    bool (*read)(ObjectState& state, const DxfField& field, const DxfGroup& group, AcDbDatabase* database);
    TableKind table = TableKind::None;
};

namespace detail {
template <class T>
struct MemberOf;
template <class Class, class Type>
struct MemberOf<Type Class::*> {
    using ClassType = Class;
    using ValueType = Type;
};
void writeValue(GroupFiler& filer, short code, double value);
void writeValue(GroupFiler& filer, short code, std::int32_t value);
void writeValue(GroupFiler& filer, short code, bool value);
void writeValue(GroupFiler& filer, short code, const std::wstring& value);
void writeValue(GroupFiler& filer, short code, const AcGePoint3d& value);
void writeValue(GroupFiler& filer, short code, const AcGePoint2d& value);
void writeValue(GroupFiler& filer, short code, const AcGeVector3d& value);
void writeValue(GroupFiler& filer, short code, const AcDbObjectId& value);
bool readValue(const DxfGroup& group, double& value);
bool readValue(const DxfGroup& group, std::int32_t& value);
bool readValue(const DxfGroup& group, bool& value);
bool readValue(const DxfGroup& group, std::wstring& value);
bool readValue(const DxfGroup& group, AcGePoint3d& value);
bool readValue(const DxfGroup& group, AcGePoint2d& value);
bool readValue(const DxfGroup& group, AcGeVector3d& value);
bool readValue(const DxfGroup& group, AcDbObjectId& value);
void writeName(GroupFiler& filer, short code, AcDbObjectId record);
bool readName(const DxfGroup& group, TableKind table, AcDbDatabase* database, AcDbObjectId& record);
inline bool isDefaultNormal(const AcGeVector3d& v) {
    return v.x == 0 && v.y == 0 && v.z == 1;
}
}  // namespace detail

// A row for the member; with a second argument, the default value for which the group is left out. A normal
// (group 210) is left out of files when it is +Z; LISP programs always find it.
template <auto Member, auto... Default>
constexpr DxfField dxfField(short code) {
    using Traits = detail::MemberOf<decltype(Member)>;
    using Class = typename Traits::ClassType;
    using Type = typename Traits::ValueType;
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                const Type& value = static_cast<const Class&>(state).*Member;
                if constexpr (sizeof...(Default) > 0) {
                    if (((value == Default) || ...))
                        return;
                }
                if constexpr (std::is_same_v<Type, AcGeVector3d>) {
                    const bool forLisp = filer.filerType() == AcDb::kBagFiler;
                    if (field.code == 210 && !forLisp && detail::isDefaultNormal(value))
                        return;
                }
                if constexpr (std::is_same_v<Type, std::wstring>) {
                    if (field.code != 1 && value.empty())
                        return;
                }
                detail::writeValue(filer, field.code, value);
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                return detail::readValue(group, static_cast<Class&>(state).*Member);
            }};
}

// A row for an object id that files hold as the name of a record of the table; left out when null.
template <auto Member>
constexpr DxfField dxfName(short code, TableKind table) {
    using Class = typename detail::MemberOf<decltype(Member)>::ClassType;
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                const AcDbObjectId id = static_cast<const Class&>(state).*Member;
                if (!id.isNull())
                    detail::writeName(filer, field.code, id);
            },
            [](ObjectState& state, const DxfField& field, const DxfGroup& group, AcDbDatabase* database) {
                return detail::readName(group, field.table, database, static_cast<Class&>(state).*Member);
            },
            table};
}

// Writes the subclass marker, the table's rows in order, then the extra groups kept for that subclass.
Acad::ErrorStatus writeSubclass(AcDbDxfFiler* filer, const ACHAR* subclass, const ObjectState& state,
                                std::span<const DxfField> fields);
// The marker alone, and the extra groups alone, for classes that write more than rows between them.
void writeSubclassMarker(AcDbDxfFiler* filer, const ACHAR* subclass);
void writeFields(AcDbDxfFiler* filer, const ObjectState& state, std::span<const DxfField> fields);
void writeExtras(AcDbDxfFiler* filer, const ACHAR* subclass, const ObjectState& state);

// Takes a group that is not a row of the table (repeated groups, vertices, text pieces): true when it did.
using GroupTaker = bool (*)(ObjectState& state, const DxfGroup& group, AcDbDatabase* database);

// Reads the groups of the subclass into the state: rows by the table, others by the taker, the rest kept as
// extras. A missing marker is eBadDxfSequence (in marker-less mode there is none); a bad value too, described
// by the filer's problem().
Acad::ErrorStatus readSubclass(AcDbDxfFiler* filer, const ACHAR* subclass, ObjectState& state,
                               std::span<const DxfField> fields, GroupTaker taker = nullptr);

}  // namespace drafthost
