#include "host/exchange/old_entities.h"

#include <algorithm>
#include <string_view>

namespace drafthost::exchange {
namespace {

// A subclass and the groups that stand below its marker; codes empty: all that are left.
struct Subclass {
    const wchar_t* name;
    std::vector<short> codes;
};

constexpr short kLayer = 8;
constexpr short kEmbedded = 101;

std::int64_t flagsOf(const std::vector<DxfGroup>& groups) {
    for (const DxfGroup& group : groups)
        if (const auto* flags = std::get_if<std::int64_t>(&group.value); flags && group.code == 70)
            return *flags;
    return 0;
}

const wchar_t* polylineClass(std::int64_t flags) {
    return flags & 64   ? L"AcDbPolyFaceMesh"
           : flags & 16 ? L"AcDbPolygonMesh"
           : flags & 8  ? L"AcDb3dPolyline"
                        : L"AcDb2dPolyline";
}

std::vector<Subclass> vertexClasses(std::int64_t flags) {
    if ((flags & (64 | 128)) == 128)
        return {{L"AcDbFaceRecord", {}}};
    return {{L"AcDbVertex", {0}},  // a marker alone
            {flags & 128  ? L"AcDbPolyFaceMeshVertex"
             : flags & 64 ? L"AcDbPolygonMeshVertex"
             : flags & 32 ? L"AcDb3dPolylineVertex"
                          : L"AcDb2dVertex",
             {}}};
}

std::vector<Subclass> dimensionClasses(std::int64_t flags) {
    const Subclass base = {L"AcDbDimension", {1, 2, 3, 10, 11, 12, 41, 42, 51, 53, 70, 71, 72, 210}};
    switch (flags & 15) {
        case 1: return {base, {L"AcDbAlignedDimension", {}}};
        case 2: return {base, {L"AcDb2LineAngularDimension", {}}};
        case 3: return {base, {L"AcDbDiametricDimension", {}}};
        case 4: return {base, {L"AcDbRadialDimension", {}}};
        case 5: return {base, {L"AcDb3PointAngularDimension", {}}};
        case 6: return {base, {L"AcDbOrdinateDimension", {}}};
        default: return {base, {L"AcDbAlignedDimension", {}}, {L"AcDbRotatedDimension", {0}}};
    }
}

std::vector<Subclass> subclassesOf(std::wstring_view type, std::int64_t flags) {
    if (type == L"POLYLINE")
        return {{polylineClass(flags), {}}};
    if (type == L"VERTEX")
        return vertexClasses(flags);
    if (type == L"DIMENSION")
        return dimensionClasses(flags);
    struct Simple {
        std::wstring_view type;
        const wchar_t* name;
    };
    constexpr Simple kSimple[] = {{L"POINT", L"AcDbPoint"}, {L"SOLID", L"AcDbTrace"},
                                  {L"TRACE", L"AcDbTrace"}, {L"3DFACE", L"AcDbFace"},
                                  {L"SHAPE", L"AcDbShape"}, {L"VIEWPORT", L"AcDbViewport"}};
    for (const Simple& simple : kSimple)
        if (type == simple.type)
            return {{simple.name, {}}};
    return {};
}

bool isIdentity(short code) {
    return code == 0 || code == 5;
}

// What every entity has.
bool isProperty(short code) {
    constexpr short kCodes[] = {6, 8, 48, 60, 62, 67, 370, 420};
    return std::find(std::begin(kCodes), std::end(kCodes), code) != std::end(kCodes);
}

}  // namespace

void addSubclassMarkers(std::vector<DxfGroup>& groups) {
    const bool marked =
        std::any_of(groups.begin(), groups.end(), [](const DxfGroup& g) { return g.code == 100; });
    const auto subclasses = subclassesOf(std::get<std::wstring>(groups.front().value), flagsOf(groups));
    if (marked || subclasses.empty())
        return;
    std::vector<DxfGroup> sorted;
    std::vector<bool> taken(groups.size(), false);
    const auto take = [&](auto wanted) {
        for (std::size_t i = 0; i < groups.size(); ++i) {
            if (taken[i] || !wanted(groups[i].code))
                continue;
            taken[i] = true;
            sorted.push_back(groups[i]);
        }
    };
    take(isIdentity);
    sorted.push_back({100, std::wstring(L"AcDbEntity")});
    take(isProperty);
    for (const Subclass& subclass : subclasses) {
        sorted.push_back({100, std::wstring(subclass.name)});
        const auto& codes = subclass.codes;
        take([&](short code) {
            if (code >= 1000)
                return false;
            return codes.empty() || std::find(codes.begin(), codes.end(), code) != codes.end();
        });
    }
    take([](short) { return true; });
    groups = std::move(sorted);
}

void gatherProperties(std::vector<DxfGroup>& groups) {
    // Classes in which these groups have no other meaning.
    constexpr std::wstring_view kSimple =
        L" LINE CIRCLE ARC LWPOLYLINE POLYLINE TEXT MTEXT INSERT ATTRIB ATTDEF POINT SOLID 3DFACE ELLIPSE ";
    if (kSimple.find(L" " + std::get<std::wstring>(groups.front().value) + L" ") == std::wstring_view::npos)
        return;
    const auto isMarker = [](const DxfGroup& group) { return group.code == 100; };
    const auto common = std::find_if(groups.begin(), groups.end(), isMarker);
    if (common == groups.end())
        return;
    const auto own = std::find_if(common + 1, groups.end(), isMarker);
    if (std::any_of(groups.begin(), own, [](const DxfGroup& group) { return group.code == kLayer; }))
        return;
    const auto end = std::find_if(own, groups.end(),
                                  [](const DxfGroup& g) { return g.code == kEmbedded || g.code >= 1000; });
    // Properties found below the class's marker come before the marker.
    std::stable_partition(own, end, [](const DxfGroup& group) { return isProperty(group.code); });
}

}  // namespace drafthost::exchange
