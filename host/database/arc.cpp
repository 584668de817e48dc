#include "host/api/curves.h"
#include "host/api/editor.h"
#include "host/database/angle_groups.h"
#include "host/database/circular_curve.h"
#include "host/database/class_registry.h"
#include "host/database/piece_queries.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbArc, AcDbCurve, L"ARC", &drafthost::constructObject<AcDbArc>)

namespace {

// In the unit of the filer.
constexpr DxfField kAngleFields[] = {
    dxfField<&ArcState::startAngle>(50),
    dxfField<&ArcState::endAngle>(51),
};

const ArcState& stateOf(const AcDbArc* arc) {
    return readState<ArcState>(arc);
}

ParameterSpan spanOf(const ArcState& arc) {
    return {arc.startAngle, sweepOf(arc), arc.radius, true};
}

Acad::ErrorStatus setAngle(AcDbArc* arc, double ArcState::*member, double angle) {
    if (!std::isfinite(angle))
        return Acad::eInvalidInput;
    ArcState* state = writeState<ArcState>(arc);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->*member = normalizeAngle(angle);
    return Acad::eOk;
}

// The angle of the direction in the plane.
double angleOf(const AcGeVector3d& direction, const PlaneAxes& axes) {
    return normalizeAngle(std::atan2(direction.dotProduct(axes.y), direction.dotProduct(axes.x)));
}

}  // namespace

AcDbArc::AcDbArc() : AcDbCurve(newImp<ArcState>()) {}

AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : AcDbArc(center, AcGeVector3d(0, 0, 1), radius, startAngle, endAngle) {}

AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
                 double endAngle)
    : AcDbArc() {
    auto& state = static_cast<ArcState&>(*ObjectImp::of(this).state);
    place(state, center, normal, radius);
    state.startAngle = normalizeAngle(startAngle);
    state.endAngle = normalizeAngle(endAngle);
}

AcGePoint3d AcDbArc::center() const {
    return worldCenter(stateOf(this));
}
double AcDbArc::radius() const {
    return stateOf(this).radius;
}
double AcDbArc::startAngle() const {
    return stateOf(this).startAngle;
}
double AcDbArc::endAngle() const {
    return stateOf(this).endAngle;
}
double AcDbArc::totalAngle() const {
    return sweepOf(stateOf(this));
}
double AcDbArc::length() const {
    return totalAngle() * radius();
}
AcGeVector3d AcDbArc::normal() const {
    return stateOf(this).normal;
}
Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& center) {
    return changeCenter(this, center);
}
Acad::ErrorStatus AcDbArc::setRadius(double radius) {
    return changeRadius(this, radius);
}
Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
    return changeNormal(this, normal);
}
Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
    return setAngle(this, &ArcState::startAngle, angle);
}
Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
    return setAngle(this, &ArcState::endAngle, angle);
}

bool AcDbArc::isClosed() const {
    return false;
}
bool AcDbArc::isPeriodic() const {
    return false;
}

// The parameters are the start angle and, beyond it, the start angle plus the total angle: an arc across the
// +X axis ends above 2 pi. Whole turns are taken off parameters that are given.
Acad::ErrorStatus AcDbArc::getStartParam(double& param) const {
    param = startAngle();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getEndParam(double& param) const {
    param = startAngle() + totalAngle();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getPointAtParam(double param, AcGePoint3d& point) const {
    const ArcState& state = stateOf(this);
    return pointAtParameter(pieceOf(state), spanOf(state), param, point);
}

Acad::ErrorStatus AcDbArc::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    const ArcState& state = stateOf(this);
    return parameterAtPoint(pieceOf(state), spanOf(state), point, param);
}

Acad::ErrorStatus AcDbArc::getDistAtParam(double param, double& distance) const {
    return spanOf(stateOf(this)).distanceAt(param, distance);
}

Acad::ErrorStatus AcDbArc::getParamAtDist(double distance, double& param) const {
    return spanOf(stateOf(this)).parameterAtDistance(distance, param);
}

Acad::ErrorStatus AcDbArc::getFirstDeriv(double param, AcGeVector3d& derivative) const {
    const ArcState& state = stateOf(this);
    return derivativeAtParameter(pieceOf(state), spanOf(state), param, derivative);
}

Acad::ErrorStatus AcDbArc::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                             bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, result, extend);
}

Acad::ErrorStatus AcDbArc::getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                             AcGePoint3d& result, bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, direction, result, extend);
}

// Between the arc and its chord.
Acad::ErrorStatus AcDbArc::getArea(double& area) const {
    const double sweep = totalAngle();
    area = radius() * radius() / 2 * (sweep - std::sin(sweep));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::dxfOutFields(AcDbDxfFiler* filer) const {
    const ArcState& state = stateOf(this);
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    if (const Acad::ErrorStatus status = writeSubclass(filer, L"AcDbCircle", state, kCircleFields);
        status != Acad::eOk) {
        return status;
    }
    ArcState filed(state);
    filed.startAngle = angleToFile(filer, state.startAngle);
    filed.endAngle = angleToFile(filer, state.endAngle);
    return writeSubclass(filer, L"AcDbArc", filed, kAngleFields);
}

Acad::ErrorStatus AcDbArc::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    ArcState* state = writeState<ArcState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    ArcState filed(*state);
    filed.startAngle = angleToFile(filer, filed.startAngle);
    filed.endAngle = angleToFile(filer, filed.endAngle);
    Acad::ErrorStatus status = readSubclass(filer, L"AcDbCircle", filed, kCircleFields);
    if (status == Acad::eOk)
        status = readSubclass(filer, L"AcDbArc", filed, kAngleFields);
    if (status == Acad::eOk)
        status = checkCircle(filed, filer);
    if (status != Acad::eOk)
        return status;
    if (!std::isfinite(filed.startAngle))
        return rejectGroup(filer, L"group 50: not a finite number");
    if (!std::isfinite(filed.endAngle))
        return rejectGroup(filer, L"group 51: not a finite number");
    filed.startAngle = normalizeAngle(angleFromFile(filer, filed.startAngle));
    filed.endAngle = normalizeAngle(angleFromFile(filer, filed.endAngle));
    *state = std::move(filed);
    return Acad::eOk;
}

bool AcDbArc::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const ArcState& state = stateOf(this);
    const CurvePiece piece = pieceOf(state);
    worldDraw->geometry().circularArc(worldCenter(state), state.radius, state.normal, piece.xAxis,
                                      piece.extent);
    return true;
}

Acad::ErrorStatus AcDbArc::subGetGeomExtents(AcDbExtents& extents) const {
    addBox(extents, boxOf(pieceOf(stateOf(this))));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d& matrix) {
    const std::optional<PlaneImage> image = planeImage(matrix, normal());
    if (!image)
        return Acad::eNonUniformScale;
    ArcState* state = writeState<ArcState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const CurvePiece piece = pieceOf(*state);
    // An arc whose sense is reversed starts at the image of its end.
    const AcGeVector3d towardStart =
        image->reversed ? derivativeAt(piece, piece.extent).crossProduct(piece.normal()) : piece.xAxis;
    const bool fullTurn = piece.isFullTurn();
    applyImage(*state, matrix, *image);
    state->startAngle = angleOf(matrix * towardStart, planeAxes(image->normal));
    state->endAngle = fullTurn ? state->startAngle : normalizeAngle(state->startAngle + piece.extent);
    return Acad::eOk;
}

void AcDbArc::subList() const {
    AcDbEntity::subList();
    const AcGePoint3d point = center();
    acutPrintf(L"            center point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", point.x, point.y, point.z);
    acutPrintf(L"                  radius %9.4f\n", radius());
    acutPrintf(L"             start angle %9.4f\n", startAngle() * 180 / kPi);
    acutPrintf(L"               end angle %9.4f\n", endAngle() * 180 / kPi);
    acutPrintf(L"                  length %9.4f\n", length());
}
