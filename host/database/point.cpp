// AcDbPoint.

#include "host/api/point.h"

#include "host/api/editor.h"
#include "host/database/angle_groups.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/dxf_checks.h"
#include "host/database/edit_points.h"
#include "host/database/snap_points.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbPoint, AcDbEntity, L"POINT", &drafthost::constructObject<AcDbPoint>)

namespace {

struct PointState : ClonedState<PointState, EntityState> {
    AcGePoint3d position;  // world coordinates
    double thickness = 0;
    AcGeVector3d normal{0, 0, 1};
    double rotation = 0;  // radians, in the plane of the normal

    void file(StateWalker& walker) override {
        EntityState::file(walker);
        walker.values(position, thickness, normal, rotation);
    }
};

constexpr DxfField kFields[] = {
    dxfField<&PointState::position>(10),
    dxfField<&PointState::thickness, 0.0>(39),
    dxfField<&PointState::normal>(210),
    dxfField<&PointState::rotation, 0.0>(50),
};

constexpr const ACHAR* kSubclass = L"AcDbPoint";

const PointState& stateOf(const AcDbPoint* point) {
    return readState<PointState>(point);
}

template <class Value>
Acad::ErrorStatus change(AcDbPoint* point, Value PointState::*member, const Value& value, bool valid) {
    if (!valid)
        return Acad::eInvalidInput;
    auto* const state = writeState<PointState>(point);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->*member = value;
    return Acad::eOk;
}

AcGeVector3d directionOf(const PointState& state) {
    const PlaneAxes axes = planeAxes(state.normal);
    return axes.x * std::cos(state.rotation) + axes.y * std::sin(state.rotation);
}

// PDMODE: a figure, and frames around it that are added to it.
constexpr int kDot = 0, kCross = 2, kDiagonalCross = 3, kTick = 4, kFigures = 31, kCircle = 32, kSquare = 64;

// PDSIZE is a size in drawing units, or, negative, in percent of the view, 0 being 5 percent. The host shows
// no view: the size of the drawing stands for it, of which curves may deviate by the 20000th part.
double markSize(const AcDbDatabase* database, double deviation) {
    constexpr double kDrawingInDeviations = 20000, kUsualPercent = 5;
    const double size = database ? database->impl().settings.header.real(L"$PDSIZE", 0) : 0;
    if (size > 0)
        return size;
    return (size < 0 ? -size : kUsualPercent) / 100 * deviation * kDrawingInDeviations;
}

class Mark {
public:
    Mark(const PointState& state, double size, AcGiWorldGeometry& geometry)
        : center_(state.position), normal_(planeAxes(state.normal).z), x_(directionOf(state) * size),
          y_(normal_.crossProduct(x_)), geometry_(geometry) {}

    void draw(int mode) {
        switch (mode & kFigures) {
            case kDot: line({{}}); break;
            case kCross:
                line({-x_, x_});
                line({-y_, y_});
                break;
            case kDiagonalCross:
                line({-x_ - y_, x_ + y_});
                line({y_ - x_, x_ - y_});
                break;
            case kTick: line({{}, y_ * 0.5}); break;
            default: break;  // 1 shows nothing
        }
        if (mode & kCircle)
            geometry_.circle(center_, x_.length() / 2, normal_);
        if (mode & kSquare) {
            const AcGeVector3d x = x_ * 0.5, y = y_ * 0.5;
            line({-x - y, x - y, x + y, y - x, -x - y});
        }
    }

private:
    // A line through these places around the centre; a single one is a dot.
    void line(const std::vector<AcGeVector3d>& places) {
        std::vector<AcGePoint3d> points;
        for (const AcGeVector3d& place : places)
            points.push_back(center_ + place);
        geometry_.polyline(static_cast<std::uint32_t>(points.size()), points.data(), &normal_);
    }

    AcGePoint3d center_;
    AcGeVector3d normal_, x_, y_;
    AcGiWorldGeometry& geometry_;
};

}  // namespace

AcDbPoint::AcDbPoint() : AcDbEntity(newImp<PointState>()) {}

AcDbPoint::AcDbPoint(const AcGePoint3d& position) : AcDbPoint() {
    static_cast<PointState&>(*ObjectImp::of(this).state).position = position;
}

AcGePoint3d AcDbPoint::position() const {
    return stateOf(this).position;
}
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& point) {
    return change(this, &PointState::position, point, isFinite(point));
}
double AcDbPoint::thickness() const {
    return stateOf(this).thickness;
}
Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
    return change(this, &PointState::thickness, thickness, std::isfinite(thickness));
}
AcGeVector3d AcDbPoint::normal() const {
    return stateOf(this).normal;
}
Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
    AcGeVector3d unit = normal;
    const bool valid = settleNormal(unit);
    return change(this, &PointState::normal, unit, valid);
}
double AcDbPoint::ecsRotation() const {
    return stateOf(this).rotation;
}
Acad::ErrorStatus AcDbPoint::setEcsRotation(double angle) {
    return change(this, &PointState::rotation, normalizeAngle(angle), std::isfinite(angle));
}

Acad::ErrorStatus AcDbPoint::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    PointState filed(stateOf(this));
    filed.rotation = angleToFile(filer, filed.rotation);
    return writeSubclass(filer, kSubclass, filed, kFields);
}

Acad::ErrorStatus AcDbPoint::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* const state = writeState<PointState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    PointState filed(*state);
    filed.rotation = angleToFile(filer, filed.rotation);
    if (const auto status = readSubclass(filer, kSubclass, filed, kFields); status != Acad::eOk)
        return status;
    filed.rotation = angleFromFile(filer, filed.rotation);
    if (!isFinite(filed.position))
        return rejectGroup(filer, L"group 10: not a finite point");
    if (!std::isfinite(filed.thickness))
        return rejectGroup(filer, L"group 39: not a finite number");
    if (!std::isfinite(filed.rotation))
        return rejectGroup(filer, L"group 50: not a finite number");
    if (!settleNormal(filed.normal))
        return rejectGroup(filer, L"group 210: no direction");
    *state = std::move(filed);
    return Acad::eOk;
}

bool AcDbPoint::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const AcDbDatabase* const drawing = database();
    const int mode = drawing ? drawing->impl().settings.header.integer(L"$PDMODE", kDot) : kDot;
    Mark(stateOf(this), markSize(drawing, worldDraw->deviation()), worldDraw->geometry()).draw(mode);
    return true;
}

// The size of the mark is not the entity's own.
Acad::ErrorStatus AcDbPoint::subGetGeomExtents(AcDbExtents& extents) const {
    extents.addPoint(stateOf(this).position);
    return Acad::eOk;
}

// A point takes any matrix.
Acad::ErrorStatus AcDbPoint::subTransformBy(const AcGeMatrix3d& matrix) {
    constexpr double kSameAngle = 1e-12;  // what rounding makes of an angle that is kept
    const PointState& old = stateOf(this);
    const AcGePoint3d position = matrix * old.position;
    if (!isFinite(position))
        return Acad::eInvalidInput;
    const AcGeVector3d direction = matrix * directionOf(old);
    AcGeVector3d normal = matrix * old.normal;
    const double stretch = normal.length();
    auto* const state = writeState<PointState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->position = position;
    if (!settleNormal(normal))
        return Acad::eOk;
    state->normal = normal;
    state->thickness *= stretch;
    const PlaneAxes axes = planeAxes(normal);
    const double angle = std::atan2(direction.dotProduct(axes.y), direction.dotProduct(axes.x));
    if (std::abs(std::remainder(angle - state->rotation, kTwoPi)) > kSameAngle)
        state->rotation = normalizeAngle(angle);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                               const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                               const AcGeMatrix3d& viewTransform,
                                               AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    return singleSnapPoint(snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), AcDb::kOsModeNode,
                           position(), snapPoints);
}

Acad::ErrorStatus AcDbPoint::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    grips.append(position());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}

Acad::ErrorStatus AcDbPoint::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(position());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}

void AcDbPoint::subList() const {
    AcDbEntity::subList();
    const AcGePoint3d at = position();
    acutPrintf(L"                at point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", at.x, at.y, at.z);
}
