#include "host/exchange/polyline_conversion.h"

#include <algorithm>
#include <array>

namespace drafthost::exchange {
namespace {

constexpr std::int64_t kClosed = 1;
constexpr std::int64_t kPlainFlags = kClosed | 128;  // 128: linetype runs through the vertices
constexpr std::size_t kFewestVertices = 2;

const DxfValue* find(const std::vector<DxfGroup>& groups, short code) {
    const auto found =
        std::find_if(groups.begin(), groups.end(), [code](const DxfGroup& g) { return g.code == code; });
    return found == groups.end() ? nullptr : &found->value;
}

template <class T>
T valueOr(const std::vector<DxfGroup>& groups, short code, T fallback) {
    const DxfValue* const value = find(groups, code);
    const T* const typed = value ? std::get_if<T>(value) : nullptr;
    return typed ? *typed : fallback;
}

AcGePoint3d position(const std::vector<DxfGroup>& groups) {
    const DxfValue* const value = find(groups, 10);
    if (!value)
        return {};
    if (const auto* flat = std::get_if<AcGePoint2d>(value))
        return AcGePoint3d(flat->x, flat->y, 0);
    const auto* point = std::get_if<AcGePoint3d>(value);
    return point ? *point : AcGePoint3d();
}

// Handle and owner.
bool isIdentity(short code) {
    return code == 5 || code == 330;
}

// What every entity has.
bool isProperty(short code) {
    constexpr std::array<short, 8> kProperties = {6, 8, 48, 60, 62, 67, 370, 420};
    return std::find(kProperties.begin(), kProperties.end(), code) != kProperties.end();
}

void addVertex(std::vector<DxfGroup>& result, const std::vector<DxfGroup>& vertex, double startWidth,
               double endWidth) {
    const AcGePoint3d point = position(vertex);
    result.push_back({10, AcGePoint2d(point.x, point.y)});
    result.push_back({40, valueOr(vertex, 40, startWidth)});
    result.push_back({41, valueOr(vertex, 41, endWidth)});
    result.push_back({42, valueOr(vertex, 42, 0.0)});
}

}  // namespace

std::optional<std::vector<DxfGroup>> lightweightPolyline(const std::vector<DxfGroup>& polyline,
                                                         const std::vector<std::vector<DxfGroup>>& vertices) {
    const std::int64_t flags = valueOr(polyline, 70, std::int64_t{0});
    if ((flags & ~kPlainFlags) != 0 || vertices.size() < kFewestVertices)
        return std::nullopt;
    const bool plain = std::all_of(vertices.begin(), vertices.end(), [](const std::vector<DxfGroup>& vertex) {
        return valueOr(vertex, 70, std::int64_t{0}) == 0;
    });
    if (!plain)
        return std::nullopt;

    std::vector<DxfGroup> result = {{0, std::wstring(L"LWPOLYLINE")}};
    const auto xdata =
        std::find_if(polyline.begin(), polyline.end(), [](const DxfGroup& g) { return g.code >= 1000; });
    const auto copy = [&](auto wanted) {
        std::copy_if(polyline.begin() + 1, xdata, std::back_inserter(result), wanted);
    };
    copy([](const DxfGroup& g) { return isIdentity(g.code); });
    result.push_back({100, std::wstring(L"AcDbEntity")});
    copy([](const DxfGroup& g) { return isProperty(g.code); });
    result.push_back({100, std::wstring(L"AcDbPolyline")});
    result.push_back({90, static_cast<std::int64_t>(vertices.size())});
    result.push_back({70, flags});
    const double elevation = position(polyline).z;
    if (elevation != 0)
        result.push_back({38, elevation});
    const double thickness = valueOr(polyline, 39, 0.0);
    if (thickness != 0)
        result.push_back({39, thickness});
    const double startWidth = valueOr(polyline, 40, 0.0);
    const double endWidth = valueOr(polyline, 41, 0.0);
    for (const std::vector<DxfGroup>& vertex : vertices)
        addVertex(result, vertex, startWidth, endWidth);
    if (const DxfValue* const normal = find(polyline, 210))
        result.push_back({210, *normal});
    result.insert(result.end(), xdata, polyline.end());
    return result;
}

}  // namespace drafthost::exchange
