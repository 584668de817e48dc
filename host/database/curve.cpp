// What every curve answers by way of its parameters; classes supply the rest.

#include "host/api/curves.h"
#include "host/database/class_registry.h"

DRAFTHOST_DEFINE_CLASS(AcDbCurve, AcDbEntity, nullptr, nullptr)

AcDbCurve::AcDbCurve() = default;
AcDbCurve::AcDbCurve(drafthost::ObjectImp* imp) : AcDbEntity(imp) {}

bool AcDbCurve::isClosed() const {
    return false;
}
bool AcDbCurve::isPeriodic() const {
    return false;
}
Acad::ErrorStatus AcDbCurve::getStartParam(double&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getEndParam(double&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getPointAtParam(double, AcGePoint3d&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d&, double&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getDistAtParam(double, double&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getParamAtDist(double, double&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getFirstDeriv(double, AcGeVector3d&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getArea(double&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d&, AcGePoint3d&, bool) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d&, const AcGeVector3d&, AcGePoint3d&,
                                               bool) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& point) const {
    double param = 0;
    const Acad::ErrorStatus status = getStartParam(param);
    return status == Acad::eOk ? getPointAtParam(param, point) : status;
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& point) const {
    double param = 0;
    const Acad::ErrorStatus status = getEndParam(param);
    return status == Acad::eOk ? getPointAtParam(param, point) : status;
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& point, double& distance) const {
    double param = 0;
    const Acad::ErrorStatus status = getParamAtPoint(point, param);
    return status == Acad::eOk ? getDistAtParam(param, distance) : status;
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double distance, AcGePoint3d& point) const {
    double param = 0;
    const Acad::ErrorStatus status = getParamAtDist(distance, param);
    return status == Acad::eOk ? getPointAtParam(param, point) : status;
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const {
    double param = 0;
    const Acad::ErrorStatus status = getParamAtPoint(point, param);
    return status == Acad::eOk ? getFirstDeriv(param, derivative) : status;
}
