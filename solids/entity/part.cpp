#include "solids/entity/part.h"

#include "solids/api/hvac_solid.h"
#include "solids/booleans/booleans.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace solids {

namespace {

// The part of its volume that a solid may lose to rounding when it is moved; far beyond what is lost within
// any building, and no more can be meant.
constexpr double kLostVolume = 1e-3;

void joinMesh(Part& whole, const Part& next) {
    whole.mayOverlap = whole.mayOverlap || next.mayOverlap;
    if (overlap(boxOf(whole.mesh), boxOf(next.mesh)) && !whole.mayOverlap) {
        if (std::optional<Mesh> united = unite(whole.mesh, next.mesh)) {
            whole.mesh = std::move(*united);
            return;
        }
        whole.mayOverlap = true;
    }
    append(whole.mesh, next.mesh);
}

// Sutherland and Hodgman's step for one line: pieces of a line that leaves the kept side and comes back are
// separate lines.
void cutLine(const CenterLine& line, const AcGePoint3d& onPlane, const AcGeVector3d& normal,
             std::vector<CenterLine>& kept) {
    std::vector<AcGePoint3d> piece;
    const auto finish = [&] {
        if (piece.size() > 1) {
            kept.push_back({std::move(piece), line.isShown});
        }
        piece.clear();
    };
    double before = 0;
    for (std::size_t i = 0; i < line.points.size(); ++i) {
        const AcGePoint3d& point = line.points[i];
        const double height = (point - onPlane).dotProduct(normal);
        if (i > 0 && ((before < 0 && height > 0) || (before > 0 && height < 0))) {
            const AcGePoint3d& last = line.points[i - 1];
            piece.push_back(last + (point - last) * (before / (before - height)));
        }
        if (height >= 0) {
            piece.push_back(point);
        } else {
            finish();
        }
        before = height;
    }
    finish();
}

}  // namespace

bool isInRange(const AcGePoint3d& point) {
    return std::abs(point.x) <= kLargestCoordinate && std::abs(point.y) <= kLargestCoordinate &&
           std::abs(point.z) <= kLargestCoordinate;
}

FaceKind kindUnderFlags(FaceKind kind, int flags) {
    if (kind == FaceKind::start && (flags & kHvacOpenStart)) {
        return FaceKind::openStart;
    }
    return kind == FaceKind::end && (flags & kHvacOpenEnd) ? FaceKind::openEnd : kind;
}

bool isOpen(FaceKind kind) {
    return kind == FaceKind::openStart || kind == FaceKind::openEnd;
}

Part partOf(Body body) {
    Part part;
    part.mesh = std::move(body.mesh);
    part.kind = body.kind;
    part.flags = body.flags;
    for (Triangle& triangle : part.mesh.triangles) {
        triangle.kind = kindUnderFlags(triangle.kind, body.flags);
    }
    for (std::vector<AcGePoint3d>& points : body.centerLines) {
        if (points.size() > 1) {
            part.centerLines.push_back({std::move(points), (body.flags & kHvacCenterline) != 0});
        }
    }
    return part;
}

Part join(std::span<const Part> parts) {
    if (parts.empty()) {
        return {};
    }
    Part whole = parts.front();
    for (const Part& next : parts.subspan(1)) {
        whole.kind = BodyKind::joined;
        whole.flags |= next.flags;
        whole.centerLines.insert(whole.centerLines.end(), next.centerLines.begin(), next.centerLines.end());
        joinMesh(whole, next);
    }
    return whole;
}

bool transform(Part& part, const AcGeMatrix3d& matrix) {
    const double wanted = volumeOf(part.mesh) * std::abs(matrix.det());
    transform(part.mesh, matrix);
    for (CenterLine& line : part.centerLines) {
        for (AcGePoint3d& point : line.points) {
            point = matrix * point;
        }
        if (!std::ranges::all_of(line.points, isInRange)) {
            return false;
        }
    }
    return std::ranges::all_of(part.mesh.points, isInRange) &&
           std::abs(volumeOf(part.mesh) - wanted) < kLostVolume * wanted;
}

void cutCenterLines(std::vector<CenterLine>& lines, const AcGePoint3d& onPlane, const AcGeVector3d& normal) {
    std::vector<CenterLine> kept;
    for (const CenterLine& line : lines) {
        cutLine(line, onPlane, normal, kept);
    }
    lines = std::move(kept);
}

}  // namespace solids
