// QNLeader: what it answers as a curve.

#include "module/leader/leader_entity.h"

namespace tessary {

AcGeVector3d QNLeader::direction() const {
    return (end_ - start_).normal(AcGeContext::gTol);
}

Acad::ErrorStatus QNLeader::getStartParam(double& param) const {
    assertReadEnabled();
    param = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getEndParam(double& param) const {
    assertReadEnabled();
    param = (end_ - start_).length();
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getStartPoint(AcGePoint3d& point) const {
    assertReadEnabled();
    point = start_;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getEndPoint(AcGePoint3d& point) const {
    assertReadEnabled();
    point = end_;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getPointAtParam(double param, AcGePoint3d& point) const {
    assertReadEnabled();
    point = start_ + direction() * param;
    return Acad::eOk;
}

// The point is dropped on the line. The distance at the point, below, is measured straight to it: for points
// off the line the two differ, and programs that tell whether a point is on the leader compare them.
Acad::ErrorStatus QNLeader::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    assertReadEnabled();
    param = (point - start_).dotProduct(direction());
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getDistAtParam(double param, double& distance) const {
    assertReadEnabled();
    distance = param;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getParamAtDist(double distance, double& param) const {
    assertReadEnabled();
    param = distance;
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getDistAtPoint(const AcGePoint3d& point, double& distance) const {
    assertReadEnabled();
    distance = (point - start_).length();
    return Acad::eOk;
}

Acad::ErrorStatus QNLeader::getPointAtDist(double distance, AcGePoint3d& point) const {
    assertReadEnabled();
    point = start_ + direction() * distance;
    return Acad::eOk;
}

}  // namespace tessary
