#include "host/database/dxf_group.h"

#include <algorithm>
#include <cmath>

#include "host/api/database.h"
#include "host/database/handles.h"
#include "host/database/resbuf_text.h"
#include "host/geometry/tolerance.h"

namespace drafthost {
namespace {

struct CodeRange {
    int first, last;
    DxfKind kind;
};

// Ascending. Second and third coordinates (20 to 37, 1020, ...) never stand alone in a group here; they count
// as reals.
constexpr CodeRange kRanges[] = {
    {-2, -1, DxfKind::Reference},   {5, 5, DxfKind::Handle},        {10, 18, DxfKind::Point},
    {19, 59, DxfKind::Real},        {60, 79, DxfKind::Int16},       {90, 99, DxfKind::Int32},
    {105, 105, DxfKind::Handle},    {110, 119, DxfKind::Point},     {120, 149, DxfKind::Real},
    {160, 169, DxfKind::Int64},     {170, 179, DxfKind::Int16},     {210, 219, DxfKind::Point},
    {220, 239, DxfKind::Real},      {270, 289, DxfKind::Int16},     {290, 299, DxfKind::Bool},
    {310, 319, DxfKind::Binary},    {320, 329, DxfKind::Handle},    {330, 369, DxfKind::Reference},
    {370, 389, DxfKind::Int16},     {390, 399, DxfKind::Reference}, {400, 409, DxfKind::Int16},
    {420, 429, DxfKind::Int32},     {440, 459, DxfKind::Int32},     {460, 469, DxfKind::Real},
    {480, 481, DxfKind::Reference}, {1004, 1004, DxfKind::Binary},  {1005, 1005, DxfKind::Handle},
    {1010, 1019, DxfKind::Point},   {1020, 1059, DxfKind::Real},    {1060, 1070, DxfKind::Int16},
    {1071, 1071, DxfKind::Int32},
};

// A name node holds an entity name; made-up and stale ones are kept as no object.
ObjectReference referenceOf(const ads_name name) {
    ObjectReference reference;
    if (acdbGetObjectId(reference.id, name) == Acad::eOk)
        reference.handle = reference.id.handle();
    return reference;
}

struct NodeFiller {
    resbuf& node;
    ResultKind kind;

    void operator()(const std::wstring& text) const {
        if (kind == ResultKind::String || kind == ResultKind::Handle)
            setText(node, text);
    }
    void operator()(double value) const { node.resval.rreal = value; }
    void operator()(const AcGePoint3d& p) const {
        node.resval.rpoint[0] = p.x;
        node.resval.rpoint[1] = p.y;
        node.resval.rpoint[2] = p.z;
    }
    void operator()(const AcGePoint2d& p) const { (*this)(AcGePoint3d(p.x, p.y, 0)); }
    void operator()(std::int64_t value) const {
        if (kind == ResultKind::Int64)
            node.resval.rlname[0] = value;
        else if (kind == ResultKind::Short)
            node.resval.rlong = static_cast<std::int16_t>(value);
        else
            node.resval.rlong = static_cast<std::int32_t>(value);
    }
    void operator()(const ObjectReference& reference) const {
        if (kind == ResultKind::Name)
            acdbGetAdsName(node.resval.rlname, reference.id);
        else
            setText(node, handleText(reference.id.isNull() ? reference.handle : reference.id.handle()));
    }
    void operator()(const std::vector<std::uint8_t>& bytes) const {
        if (kind == ResultKind::Binary)
            setBinary(node, bytes.data(), bytes.size());
    }
};

}  // namespace

bool hasFiniteValue(const DxfGroup& group) {
    if (const auto* const number = std::get_if<double>(&group.value))
        return std::isfinite(*number);
    if (const auto* const point = std::get_if<AcGePoint3d>(&group.value))
        return isFinite(*point);
    const auto* const flat = std::get_if<AcGePoint2d>(&group.value);
    return !flat || isFinite(*flat);
}

DxfKind dxfKind(int code) {
    const auto* const range =
        std::ranges::find_if(kRanges, [code](const CodeRange& r) { return code <= r.last; });
    return range != std::end(kRanges) && code >= range->first ? range->kind : DxfKind::Text;
}

resbuf* toResbuf(const DxfGroup& group, bool referencesAsNames) {
    const ResultKind kind = acutResultKind(group.code);
    const bool asText = kind == ResultKind::Name && !referencesAsNames;
    resbuf* const node = acutNewRb(asText ? static_cast<int>(RTSTR) : static_cast<int>(group.code));
    if (!node)
        return nullptr;
    std::visit(NodeFiller{*node, asText ? ResultKind::Handle : kind}, group.value);
    return node;
}

DxfGroup fromResbuf(const resbuf& node) {
    DxfGroup group{node.restype, std::wstring()};
    const auto& value = node.resval;
    switch (acutResultKind(node.restype)) {
        case ResultKind::Real: group.value = value.rreal; break;
        case ResultKind::Point:
            group.value = AcGePoint3d(value.rpoint[0], value.rpoint[1], value.rpoint[2]);
            break;
        case ResultKind::Short:
        case ResultKind::Long: group.value = static_cast<std::int64_t>(value.rlong); break;
        case ResultKind::Int64: group.value = value.rlname[0]; break;
        case ResultKind::String: group.value = std::wstring(value.rstring ? value.rstring : L""); break;
        case ResultKind::Handle: group.value = ObjectReference{parseHandle(value.rstring), {}}; break;
        case ResultKind::Name: group.value = referenceOf(value.rlname); break;
        case ResultKind::Binary: {
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(value.rbinary.buf);
            group.value = std::vector<std::uint8_t>(bytes, bytes + std::max<int>(0, value.rbinary.clen));
            break;
        }
        case ResultKind::None: break;
    }
    return group;
}

}  // namespace drafthost
