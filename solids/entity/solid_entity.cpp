// SolidEntity: its bodies.

#include "solids/entity/solid_entity.h"

#include "solids/booleans/booleans.h"

#include <algorithm>
#include <utility>

namespace solids {

namespace {

const Part kNothing;

}  // namespace

const Part& SolidEntity::joined() const {
    if (parts_.empty()) {
        return kNothing;
    }
    if (parts_.size() == 1) {
        return parts_.front();
    }
    if (!joined_) {
        joined_ = std::make_unique<const Part>(join(parts_));
    }
    return *joined_;
}

const Surface& SolidEntity::surface() const {
    if (!surface_) {
        surface_ = std::make_unique<const Surface>(joined().mesh);
    }
    return *surface_;
}

bool SolidEntity::replaceParts(std::vector<Part> parts) {
    if (!assertWriteEnabled()) {
        return false;
    }
    joined_.reset();
    surface_.reset();
    parts_ = std::move(parts);
    return true;
}

bool SolidEntity::addPart(std::optional<Body> body) {
    if (!body || !std::ranges::all_of(body->mesh.points, isInRange) || !assertWriteEnabled()) {
        return false;
    }
    joined_.reset();
    surface_.reset();
    parts_.push_back(partOf(std::move(*body)));
    return true;
}

// Whatever was hidden or drawn of the body stays so: an open end that is cut off is open where it was cut.
bool SolidEntity::sliceLast(const AcGePoint3d& point1, const AcGePoint3d& point2, const AcGePoint3d& point3,
                            const AcGePoint3d& keptSide) {
    if (parts_.empty() || !isInRange(point1) || !isInRange(point2) || !isInRange(point3) ||
        !isInRange(keptSide)) {
        return false;
    }
    const AcGeVector3d along = point2 - point1, across = point3 - point1;
    AcGeVector3d normal = along.crossProduct(across);
    const double sine = along.length() * across.length();
    if (!(normal.length() > 1e-9 * sine)) {
        return false;
    }
    normal = normal / normal.length();
    const double height = (keptSide - point1).dotProduct(normal);
    if (height == 0) {
        return false;
    }
    if (height < 0) {
        normal = -normal;
    }
    const Part& last = parts_.back();
    if (last.mayOverlap) {
        return false;
    }
    std::optional<Mesh> cut =
        cutByPlane(last.mesh, point1, normal, kindUnderFlags(FaceKind::end, last.flags));
    if (!cut || cut->empty()) {
        return false;
    }
    std::vector<Part> parts = parts_;
    parts.back().mesh = std::move(*cut);
    cutCenterLines(parts.back().centerLines, point1, normal);
    return replaceParts(std::move(parts));
}

void SolidEntity::clearBodies() {
    replaceParts({});
}

bool SolidEntity::doUnion(const qn_hvacSolid& other) {
    if (&other == this || !other.isReadEnabled()) {
        return false;
    }
    const Part& first = joined();
    const Part& second = static_cast<const SolidEntity&>(other).joined();
    if (first.mesh.empty() || second.mesh.empty()) {
        return false;
    }
    const Part both[] = {first, second};
    std::vector<Part> result{join(both)};
    return !result.front().mayOverlap && replaceParts(std::move(result));
}

void SolidEntity::setFitting(HvacFitting fitting) {
    if (assertWriteEnabled()) {
        fitting_ = fitting;
    }
}

Acad::ErrorStatus SolidEntity::subTransformBy(const AcGeMatrix3d& matrix) {
    const auto moved = [&](Part& part) { return transform(part, matrix); };
    // Joined before, so that it makes no difference whether the solid has been drawn or filed already.
    std::optional<Part> whole;
    if (parts_.size() > 1) {
        whole = joined();
    }
    std::vector<Part> parts = parts_;
    if (!std::ranges::all_of(parts, moved) || (whole && !moved(*whole))) {
        return Acad::eInvalidInput;
    }
    if (!replaceParts(std::move(parts))) {
        return Acad::eNotOpenForWrite;
    }
    if (whole) {
        joined_ = std::make_unique<const Part>(std::move(*whole));
    }
    return Acad::eOk;
}

}  // namespace solids
