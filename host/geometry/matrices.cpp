// Affine transformations.

#include "host/api/geometry.h"
#include "host/geometry/plane_axes.h"

using namespace drafthost;

namespace {

AcGeVector3d column(const AcGeMatrix3d& m, int index) {
    return {m.entry[0][index], m.entry[1][index], m.entry[2][index]};
}

void setColumn(AcGeMatrix3d& m, int index, const AcGeVector3d& v) {
    m.entry[0][index] = v.x;
    m.entry[1][index] = v.y;
    m.entry[2][index] = v.z;
}

// The linear part with the translation that leaves the point where it is.
AcGeMatrix3d fixing(AcGeMatrix3d linear, const AcGePoint3d& center) {
    const AcGeVector3d moved = linear * center.asVector();
    setColumn(linear, 3, center.asVector() - moved);
    return linear;
}

}  // namespace

const AcGeMatrix3d AcGeMatrix3d::kIdentity;

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& right) const {
    AcGeMatrix3d product;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += entry[row][k] * right.entry[k][col];
            product.entry[row][col] = sum;
        }
    }
    return product;
}

double AcGeMatrix3d::det() const {
    return column(*this, 0).dotProduct(column(*this, 1).crossProduct(column(*this, 2)));
}

// Cramer's rule: the rows of the inverse are the cross products of the columns over the determinant.
AcGeMatrix3d AcGeMatrix3d::inverse() const {
    if (isSingular())
        return *this;
    const AcGeVector3d a = column(*this, 0), b = column(*this, 1), c = column(*this, 2);
    const double determinant = det();
    const AcGeVector3d rows[3] = {b.crossProduct(c) / determinant, c.crossProduct(a) / determinant,
                                  a.crossProduct(b) / determinant};
    AcGeMatrix3d result;
    for (int row = 0; row < 3; ++row) {
        result.entry[row][0] = rows[row].x;
        result.entry[row][1] = rows[row].y;
        result.entry[row][2] = rows[row].z;
        result.entry[row][3] = -rows[row].dotProduct(translation());
    }
    return result;
}

// Measured against the lengths of the axes, so that a small uniform scale is not taken for a singular matrix.
bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
    const double volume = column(*this, 0).length() * column(*this, 1).length() * column(*this, 2).length();
    return !(std::abs(det()) > tol.equalVector * volume);
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tol) const {
    const AcGeVector3d a = column(*this, 0), b = column(*this, 1), c = column(*this, 2);
    const double size = a.length();
    const double allowed = tol.equalVector * size;
    return size > 0 && std::abs(b.length() - size) <= allowed && std::abs(c.length() - size) <= allowed &&
           std::abs(a.dotProduct(b)) <= allowed * size && std::abs(b.dotProduct(c)) <= allowed * size &&
           std::abs(c.dotProduct(a)) <= allowed * size;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            if (!(std::abs(entry[row][col] - m.entry[row][col]) <= tol.equalPoint))
                return false;
        }
    }
    return true;
}

double AcGeMatrix3d::scale() const {
    return std::max({column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()});
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& x,
                                           const AcGeVector3d& y, const AcGeVector3d& z) {
    *this = AcGeMatrix3d();
    setColumn(*this, 0, x);
    setColumn(*this, 1, y);
    setColumn(*this, 2, z);
    setColumn(*this, 3, origin.asVector());
    return *this;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& x, AcGeVector3d& y,
                                  AcGeVector3d& z) const {
    x = column(*this, 0);
    y = column(*this, 1);
    z = column(*this, 2);
    origin = AcGePoint3d::kOrigin + translation();
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& v) {
    AcGeMatrix3d m;
    setColumn(m, 3, v);
    return m;
}

AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis, const AcGePoint3d& center) {
    AcGeMatrix3d m;
    for (int i = 0; i < 3; ++i)
        setColumn(m, i, column(m, i).rotateBy(angle, axis));
    return fixing(m, center);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d& center) {
    AcGeMatrix3d m;
    for (int i = 0; i < 3; ++i)
        m.entry[i][i] = factor;
    return fixing(m, center);
}

// A direction along Z leaves the plane open: then the plane of Z and +X is taken.
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d& point, const AcGeVector3d& direction) {
    const double planLength = std::hypot(direction.x, direction.y);
    const AcGeVector3d across = planLength > 0
                                    ? AcGeVector3d(-direction.y / planLength, direction.x / planLength, 0)
                                    : AcGeVector3d(0, 1, 0);
    AcGeMatrix3d m;
    for (int i = 0; i < 3; ++i) {
        const AcGeVector3d axis = column(m, i);
        setColumn(m, i, axis - across * (2 * axis.dotProduct(across)));
    }
    return fixing(m, point);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
    const PlaneAxes axes = planeAxes(normal);
    return AcGeMatrix3d().setCoordSystem(AcGePoint3d::kOrigin, axes.x, axes.y, axes.z);
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& normal) {
    const PlaneAxes axes = planeAxes(normal);
    AcGeMatrix3d m;
    const AcGeVector3d* rows[3] = {&axes.x, &axes.y, &axes.z};
    for (int row = 0; row < 3; ++row) {
        m.entry[row][0] = rows[row]->x;
        m.entry[row][1] = rows[row]->y;
        m.entry[row][2] = rows[row]->z;
    }
    return m;
}
