// Points and vectors.

#include "host/api/geometry.h"
#include "host/geometry/angles.h"
#include "host/geometry/plane_axes.h"

using namespace drafthost;

AcGeTol AcGeContext::gTol;

const AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};
const AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
const AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
const AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};
const AcGePoint3d AcGePoint3d::kOrigin{0, 0, 0};

double AcGeVector2d::angle() const {
    return x == 0 && y == 0 ? 0.0 : normalizeAngle(std::atan2(y, x));
}

bool AcGePoint2d::isEqualTo(const AcGePoint2d& p, const AcGeTol& tol) const {
    return distanceTo(p) <= tol.equalPoint;
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
    const double size = length();
    if (std::isfinite(size))
        return size <= tol.equalVector ? *this : *this / size;
    // The squares overflow, the vector may not.
    const double largest = std::max({std::abs(x), std::abs(y), std::abs(z)});
    if (!std::isfinite(largest))
        return *this;
    const AcGeVector3d scaled = *this / largest;
    return scaled / scaled.length();
}

// Rodrigues' rotation formula.
AcGeVector3d& AcGeVector3d::rotateBy(double angle, const AcGeVector3d& axis) {
    const double axisLength = axis.length();
    if (axisLength == 0)
        return *this;
    const AcGeVector3d k = axis / axisLength;
    const double c = std::cos(angle), s = std::sin(angle);
    return *this = *this * c + k.crossProduct(*this) * s + k * (k.dotProduct(*this) * (1 - c));
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) {
    const auto& m = matrix.entry;
    return *this = {m[0][0] * x + m[0][1] * y + m[0][2] * z, m[1][0] * x + m[1][1] * y + m[1][2] * z,
                    m[2][0] * x + m[2][1] * y + m[2][2] * z};
}

// The arc tangent keeps full precision for angles near 0 and pi, where the arc cosine of the dot product
// loses half of it.
double AcGeVector3d::angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v)) + 0.0;
}

double AcGeVector3d::angleTo(const AcGeVector3d& v, const AcGeVector3d& reference) const {
    const double angle = angleTo(v);
    return normalizeAngle(crossProduct(v).dotProduct(reference) < 0 ? -angle : angle);
}

AcGeVector3d AcGeVector3d::perpVector() const {
    return planeAxes(*this).x;
}

bool AcGeVector3d::isEqualTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return (*this - v).length() <= tol.equalVector;
}

// The zero vector is parallel to none.
bool AcGeVector3d::isParallelTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    const double product = length() * v.length();
    return product > 0 && crossProduct(v).length() <= tol.equalVector * product;
}

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) {
    AcGeVector3d v = asVector();
    v.transformBy(matrix);
    return *this = AcGePoint3d::kOrigin + v + matrix.translation();
}

bool AcGePoint3d::isEqualTo(const AcGePoint3d& p, const AcGeTol& tol) const {
    return distanceTo(p) <= tol.equalPoint;
}
