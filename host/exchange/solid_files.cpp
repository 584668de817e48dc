#include "host/exchange/solid_files.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/geometry/triangulate.h"
#include "host/lisp/utf8.h"

namespace drafthost::exchange {

namespace {

static_assert(std::endian::native == std::endian::little, "STL numbers are written as they lie in memory");

template <class Number>
void appendRaw(std::string& bytes, Number number) {
    const auto at = bytes.size();
    bytes.resize(at + sizeof number);
    std::memcpy(bytes.data() + at, &number, sizeof number);
}

struct Point3f {
    float x, y, z;
    bool operator==(const Point3f&) const = default;
};
Point3f rounded(const AcGePoint3d& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}
AcGeVector3d between(const Point3f& a, const Point3f& b) {
    return {double{b.x} - a.x, double{b.y} - a.y, double{b.z} - a.z};
}

// Two triangles with a common edge that rounding shrinks to a point vanish together, so that the surface
// stays closed.
bool appendFacet(std::string& bytes, const Point3f (&corners)[3]) {
    if (corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0])
        return false;
    AcGeVector3d normal = between(corners[0], corners[1]).crossProduct(between(corners[0], corners[2]));
    const double length = normal.length();
    normal = length > 0 ? normal / length : AcGeVector3d();
    for (const double coordinate : {normal.x, normal.y, normal.z})
        appendRaw(bytes, static_cast<float>(coordinate));
    for (const Point3f& corner : corners)
        appendRaw(bytes, corner);
    appendRaw(bytes, std::uint16_t{0});
    return true;
}

// Shortest text that reads as the same number.
void appendExact(std::string& text, double number) {
    char digits[32];
    text.append(digits, std::to_chars(digits, std::end(digits), number + 0.0).ptr);
}

// As many digits as a measure is good for.
std::string measureText(double number) {
    constexpr int kDigits = 12;
    char digits[32];
    return {digits, std::to_chars(digits, std::end(digits), number, std::chars_format::general, kDigits).ptr};
}

std::string quoted(const std::wstring& field) {
    std::string text = lisp::toUtf8(field);
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    for (std::size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2)
        text.insert(at, 1, '"');
    return '"' + text + '"';
}

// Names in OBJ files end at a space.
std::string objectName(const ShownSolid& solid) {
    std::string name = lisp::toUtf8(solid.handle + L"_" + solid.kind);
    std::ranges::replace_if(
        name, [](char c) { return static_cast<unsigned char>(c) <= ' '; }, '_');
    return name;
}

}  // namespace

std::string stlBytes(std::span<const ShownSolid> solids) {
    constexpr std::size_t kTitle = 80;
    std::string bytes = "Binary STL, drawing units";  // "solid" at the start would announce a text file
    bytes.resize(kTitle);
    appendRaw(bytes, std::uint32_t{0});
    std::uint64_t count = 0;
    std::vector<std::array<std::int32_t, 3>> triangles;
    for (const ShownSolid& solid : solids) {
        for (const Shell& body : solid.bodies) {
            triangles.clear();
            for (const Shell::Face& face : body.faces)
                triangulateFace(body.points, body.cornersOf(face), triangles);
            for (const auto& triangle : triangles) {
                const auto corner = [&](std::size_t i) {
                    return rounded(body.points[static_cast<std::size_t>(triangle[i])]);
                };
                count += appendFacet(bytes, {corner(0), corner(1), corner(2)});
            }
        }
    }
    if (count > std::numeric_limits<std::uint32_t>::max())
        return {};
    const auto number = static_cast<std::uint32_t>(count);
    std::memcpy(bytes.data() + kTitle, &number, sizeof number);
    return bytes;
}

std::string objText(std::span<const ShownSolid> solids) {
    std::string text = "# Solids of a drawing, drawing units\n";
    std::size_t before = 1;  // points are numbered through the whole file, from 1
    for (const ShownSolid& solid : solids) {
        text += "o " + objectName(solid) + "\n";
        for (const Shell& body : solid.bodies) {
            for (const AcGePoint3d& point : body.points) {
                text += 'v';
                for (const double coordinate : {point.x, point.y, point.z}) {
                    text += ' ';
                    appendExact(text, coordinate);
                }
                text += '\n';
            }
            for (const Shell::Face& face : body.faces) {
                text += 'f';
                for (const std::int32_t corner : body.cornersOf(face)) {
                    text += ' ';
                    text += std::to_string(before + static_cast<std::size_t>(corner));
                }
                text += '\n';
            }
            before += body.points.size();
        }
    }
    return text;
}

std::string solidListText(std::span<const ShownSolid> solids) {
    std::string text = "handle,layer,kind,volume,surface area,sheet area\r\n";
    for (const ShownSolid& solid : solids) {
        text += quoted(solid.handle) + ',' + quoted(solid.layer) + ',' + quoted(solid.kind) + ',' +
                measureText(solid.volume) + ',' + measureText(solid.surfaceArea) + ',' +
                (solid.sheetArea ? measureText(*solid.sheetArea) : std::string()) + "\r\n";
    }
    const bool isAscii =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 128; });
    return isAscii ? text : "\xEF\xBB\xBF" + text;
}

}  // namespace drafthost::exchange
