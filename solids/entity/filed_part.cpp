#include "solids/entity/filed_part.h"

#include <algorithm>

namespace solids {

FiledHeader headerOf(const Part& part, HvacFitting fitting) {
    FiledHeader header;
    header.version = FiledHeader::kCurrentVersion;
    header.fitting = static_cast<std::int32_t>(fitting);
    header.kind = static_cast<std::int32_t>(part.kind);
    header.flags = part.flags;
    header.mayOverlap = part.mayOverlap;
    header.points = static_cast<std::int32_t>(part.mesh.points.size());
    header.triangles = static_cast<std::int32_t>(part.mesh.triangles.size());
    header.centerLines = static_cast<std::int32_t>(part.centerLines.size());
    return header;
}

bool isSound(const FiledHeader& header) {
    const auto isCount = [](std::int32_t count) { return count >= 0 && count <= FiledHeader::kMostPoints; };
    return header.fitting >= 0 && header.fitting <= static_cast<std::int32_t>(HvacFitting::hanger) &&
           header.kind >= 0 && header.kind <= static_cast<std::int32_t>(BodyKind::skin) &&
           isCount(header.points) && isCount(header.triangles / 2) && header.triangles >= 0 &&
           isCount(header.centerLines);
}

bool isSound(const Part& part) {
    const auto isLine = [](const CenterLine& line) {
        return line.points.size() > 1 && std::ranges::all_of(line.points, isInRange);
    };
    const Mesh& mesh = part.mesh;
    if (mesh.empty()) {
        return mesh.points.empty() && part.centerLines.empty();
    }
    return std::ranges::all_of(mesh.points, isInRange) && std::ranges::all_of(part.centerLines, isLine) &&
           isClosed(mesh) && volumeOf(mesh) > 0;
}

bool isFaceKind(std::int64_t kind) {
    return kind >= 0 && kind <= static_cast<std::int64_t>(FaceKind::openEnd);
}

}  // namespace solids
