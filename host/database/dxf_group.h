#pragma once

// One group of DXF data: code and value.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/api/database_ids.h"
#include "host/api/geometry.h"
#include "host/api/resbuf.h"

namespace drafthost {

// A handle that is still to be resolved, or an object id; files hold handles, memory ids.
struct ObjectReference {
    AcDbHandle handle;
    AcDbObjectId id;  // null when only the handle is known
    bool operator==(const ObjectReference&) const = default;
};

// A point without z (vertices of lightweight polylines) is an AcGePoint2d; readers of points take either.
using DxfValue = std::variant<std::wstring, double, AcGePoint3d, std::int64_t, ObjectReference,
                              std::vector<std::uint8_t>, AcGePoint2d>;

struct DxfGroup {
    short code = 0;
    DxfValue value;
};

// False for a number that files cannot hold: an infinite one, or one that is no number. True for all but
// reals and points.
bool hasFiniteValue(const DxfGroup& group);

// What the value of a group with this code is. Codes outside the defined ranges are Text.
enum class DxfKind { Text, Point, Real, Int16, Int32, Int64, Bool, Handle, Reference, Binary };
DxfKind dxfKind(int code);

// Conversions between groups and value list nodes (a reference becomes an entity name when its object
// exists). Caller frees the node.
resbuf* toResbuf(const DxfGroup& group, bool referencesAsNames);
DxfGroup fromResbuf(const resbuf& node);

}  // namespace drafthost
