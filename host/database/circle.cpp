#include "host/api/curves.h"
#include "host/api/editor.h"
#include "host/database/circular_curve.h"
#include "host/database/class_registry.h"
#include "host/database/piece_queries.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbCircle, AcDbCurve, L"CIRCLE", &drafthost::constructObject<AcDbCircle>)

namespace {

const CircleState& stateOf(const AcDbCircle* circle) {
    return readState<CircleState>(circle);
}

ParameterSpan spanOf(const CircleState& circle) {
    return {0, kTwoPi, circle.radius, true};
}

}  // namespace

AcDbCircle::AcDbCircle() : AcDbCurve(newImp<CircleState>()) {}

AcDbCircle::AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) : AcDbCircle() {
    place(static_cast<CircleState&>(*ObjectImp::of(this).state), center, normal, radius);
}

AcGePoint3d AcDbCircle::center() const {
    return worldCenter(stateOf(this));
}
double AcDbCircle::radius() const {
    return stateOf(this).radius;
}
AcGeVector3d AcDbCircle::normal() const {
    return stateOf(this).normal;
}
Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& center) {
    return changeCenter(this, center);
}
Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
    return changeRadius(this, radius);
}
Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
    return changeNormal(this, normal);
}

bool AcDbCircle::isClosed() const {
    return true;
}
bool AcDbCircle::isPeriodic() const {
    return true;
}

Acad::ErrorStatus AcDbCircle::getStartParam(double& param) const {
    param = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getEndParam(double& param) const {
    param = kTwoPi;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getPointAtParam(double param, AcGePoint3d& point) const {
    const CircleState& state = stateOf(this);
    return pointAtParameter(pieceOf(state), spanOf(state), param, point);
}

Acad::ErrorStatus AcDbCircle::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    const CircleState& state = stateOf(this);
    return parameterAtPoint(pieceOf(state), spanOf(state), point, param);
}

Acad::ErrorStatus AcDbCircle::getDistAtParam(double param, double& distance) const {
    return spanOf(stateOf(this)).distanceAt(param, distance);
}

Acad::ErrorStatus AcDbCircle::getParamAtDist(double distance, double& param) const {
    return spanOf(stateOf(this)).parameterAtDistance(distance, param);
}

Acad::ErrorStatus AcDbCircle::getFirstDeriv(double param, AcGeVector3d& derivative) const {
    const CircleState& state = stateOf(this);
    return derivativeAtParameter(pieceOf(state), spanOf(state), param, derivative);
}

Acad::ErrorStatus AcDbCircle::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                                bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, result, extend);
}

Acad::ErrorStatus AcDbCircle::getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                                AcGePoint3d& result, bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, direction, result, extend);
}

Acad::ErrorStatus AcDbCircle::getArea(double& area) const {
    area = kPi * radius() * radius();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeSubclass(filer, L"AcDbCircle", stateOf(this), kCircleFields) : status;
}

Acad::ErrorStatus AcDbCircle::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    CircleState* state = writeState<CircleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    CircleState filed(*state);
    Acad::ErrorStatus status = readSubclass(filer, L"AcDbCircle", filed, kCircleFields);
    if (status == Acad::eOk)
        status = checkCircle(filed, filer);
    if (status == Acad::eOk)
        *state = std::move(filed);
    return status;
}

bool AcDbCircle::subWorldDraw(AcGiWorldDraw* worldDraw) {
    worldDraw->geometry().circle(center(), radius(), normal());
    return true;
}

Acad::ErrorStatus AcDbCircle::subGetGeomExtents(AcDbExtents& extents) const {
    addBox(extents, boxOf(pieceOf(stateOf(this))));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d& matrix) {
    const std::optional<PlaneImage> image = planeImage(matrix, normal());
    if (!image)
        return Acad::eNonUniformScale;
    CircleState* state = writeState<CircleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    applyImage(*state, matrix, *image);
    return Acad::eOk;
}

void AcDbCircle::subList() const {
    AcDbEntity::subList();
    const AcGePoint3d point = center();
    double area = 0;
    getArea(area);
    acutPrintf(L"            center point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", point.x, point.y, point.z);
    acutPrintf(L"                  radius %9.4f\n", radius());
    acutPrintf(L"           circumference %9.4f\n", kTwoPi * radius());
    acutPrintf(L"                    area %9.4f\n", area);
}
