#pragma once

// Points, vectors, matrices and the tolerance of the host's geometry library.
// Coordinates are drawing units; angles radians, counter-clockwise.

#include <cmath>

#include "host/api/array.h"
#include "host/api/types.h"

// Two points or vectors are equal when their distance is at most the tolerance.
struct AcGeTol {
    double equalVector = 1e-12;
    double equalPoint = 1e-10;
};
struct DRAFTHOST_API AcGeContext {
    static AcGeTol gTol;  // the host's global tolerance
};

class AcGeMatrix3d;

class DRAFTHOST_API AcGeVector2d {
public:
    double x = 0, y = 0;
    constexpr AcGeVector2d() = default;
    constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}
    // Angle from the +X axis in [0, 2 pi); 0 for the zero vector.
    double angle() const;
    double length() const { return std::hypot(x, y); }
    constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
    constexpr AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
    constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
};

class DRAFTHOST_API AcGePoint2d {
public:
    double x = 0, y = 0;
    constexpr AcGePoint2d() = default;
    constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}
    constexpr AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
    constexpr AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const;
};

class DRAFTHOST_API AcGeVector3d {
public:
    double x = 0, y = 0, z = 0;
    static const AcGeVector3d kIdentity;  // the zero vector
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;
    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    double length() const { return std::sqrt(lengthSqrd()); }
    constexpr double lengthSqrd() const { return x * x + y * y + z * z; }
    constexpr double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    constexpr AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    constexpr AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
    constexpr AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    constexpr AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    AcGeVector3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
    // Unit vector in the same direction; a vector shorter than the tolerance is returned unchanged.
    AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }
    // Rotates in place by angle about the axis through the origin (right-hand rule).
    AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
    AcGeVector3d& transformBy(const AcGeMatrix3d& matrix);
    // Angle to v in [0, pi].
    double angleTo(const AcGeVector3d& v) const;
    // Angle to v in [0, 2 pi), counter-clockwise seen against the reference vector.
    double angleTo(const AcGeVector3d& v, const AcGeVector3d& reference) const;
    // Some vector at right angles to this one, chosen by the arbitrary axis rule of entity coordinate
    // systems.
    AcGeVector3d perpVector() const;
    bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const { return length() <= tol.equalVector; }
    constexpr AcGeVector2d convert2d() const { return {x, y}; }
};

class DRAFTHOST_API AcGePoint3d {
public:
    double x = 0, y = 0, z = 0;
    static const AcGePoint3d kOrigin;
    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    constexpr AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    constexpr AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    constexpr AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGePoint3d& operator+=(const AcGeVector3d& v) { return *this = *this + v; }
    constexpr AcGeVector3d asVector() const { return {x, y, z}; }
    double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
    AcGePoint3d& transformBy(const AcGeMatrix3d& matrix);
    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const;
    constexpr AcGePoint2d convert2d() const { return {x, y}; }
    double& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
    double operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
};

inline AcGeVector3d operator*(double s, const AcGeVector3d& v) {
    return v * s;
}

using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGeVector3dArray = AcArray<AcGeVector3d>;
using AcGePoint2dArray = AcArray<AcGePoint2d>;

// Affine transformation; column vectors, entry[row][column], the last row is 0 0 0 1.
class DRAFTHOST_API AcGeMatrix3d {
public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    static const AcGeMatrix3d kIdentity;
    AcGeMatrix3d operator*(const AcGeMatrix3d& right) const;
    double det() const;  // of the linear part
    // Null matrix is returned unchanged when singular.
    AcGeMatrix3d inverse() const;
    bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;
    double scale() const;  // length of the longest transformed unit axis
    AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
    AcGeMatrix3d& setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& y,
                                 const AcGeVector3d& z);
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z) const;
    static AcGeMatrix3d translation(const AcGeVector3d& v);
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                                 const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    // Reflection in the line through the point along the direction, within the plane of the direction and +Z.
    static AcGeMatrix3d mirroring(const AcGePoint3d& point, const AcGeVector3d& direction);
    // From the entity coordinate system of the plane with this normal to world coordinates (arbitrary axis
    // rule).
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
    static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);
};

inline AcGePoint3d operator*(const AcGeMatrix3d& m, AcGePoint3d p) {
    return p.transformBy(m);
}
inline AcGeVector3d operator*(const AcGeMatrix3d& m, AcGeVector3d v) {
    return v.transformBy(m);
}

class DRAFTHOST_API AcGePlane {
public:
    AcGePlane() = default;
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& planeNormal)
        : origin_(origin), normal_(planeNormal) {}
    AcGePoint3d pointOnPlane() const { return origin_; }
    AcGeVector3d normal() const { return normal_; }

private:
    AcGePoint3d origin_;
    AcGeVector3d normal_{0, 0, 1};
};
