#pragma once

// Queries of curves that are one piece. What a curve calls its parameter is the piece's plus that of the
// start.

#include "host/api/curves.h"
#include "host/database/curve_states.h"

namespace drafthost {

// The range of a curve's parameter; enough to turn parameters into distances without computing the piece.
struct ParameterSpan {
    double first = 0;    // parameter of the start
    double extent = 0;   // not negative
    double speed = 1;    // length for one unit of the parameter
    bool turns = false;  // the parameter is an angle, whole turns more or less are the same

    // From the curve's parameter to the piece's, in [0, extent]; false: off the curve.
    bool locate(double parameter, double& onPiece) const {
        onPiece = parameter - first;
        if (clamp(onPiece))
            return true;
        if (!turns || !std::isfinite(onPiece))
            return false;
        onPiece = normalizeAngle(onPiece);
        if (clamp(onPiece))
            return true;
        onPiece -= kTwoPi;
        return clamp(onPiece);
    }
    Acad::ErrorStatus distanceAt(double parameter, double& distance) const {
        double onPiece;
        if (!locate(parameter, onPiece))
            return Acad::eInvalidInput;
        distance = onPiece * speed;
        return Acad::eOk;
    }
    Acad::ErrorStatus parameterAtDistance(double distance, double& parameter) const {
        const double length = extent * speed, slack = lengthTolerance(length);
        if (!(distance >= -slack && distance <= length + slack))
            return Acad::eInvalidInput;
        parameter = first + (speed > 0 ? std::clamp(distance, 0.0, length) / speed : 0.0);
        return Acad::eOk;
    }

private:
    bool clamp(double& onPiece) const {
        const double slack = turns ? 1e-9 : lengthTolerance(extent);
        if (!(onPiece >= -slack && onPiece <= extent + slack))
            return false;
        onPiece = std::clamp(onPiece, 0.0, extent);
        return true;
    }
};

inline Acad::ErrorStatus pointAtParameter(const CurvePiece& piece, const ParameterSpan& span,
                                          double parameter, AcGePoint3d& point) {
    double onPiece;
    if (!span.locate(parameter, onPiece))
        return Acad::eInvalidInput;
    point = pointAt(piece, onPiece);
    return Acad::eOk;
}

inline Acad::ErrorStatus derivativeAtParameter(const CurvePiece& piece, const ParameterSpan& span,
                                               double parameter, AcGeVector3d& derivative) {
    double onPiece;
    if (!span.locate(parameter, onPiece))
        return Acad::eInvalidInput;
    derivative = derivativeAt(piece, onPiece);
    return Acad::eOk;
}

inline Acad::ErrorStatus parameterAtPoint(const CurvePiece& piece, const ParameterSpan& span,
                                          const AcGePoint3d& point, double& parameter) {
    const double onPiece = closestParameter(piece, point);
    if (!(pointAt(piece, onPiece).distanceTo(point) <= onCurveTolerance(piece)))
        return Acad::eInvalidInput;
    parameter = span.first + onPiece;
    return Acad::eOk;
}

inline Acad::ErrorStatus closestPoint(const CurvePiece& piece, const AcGePoint3d& given, AcGePoint3d& result,
                                      bool extend) {
    if (!isFinite(given))
        return Acad::eInvalidInput;
    result = pointAt(piece, closestParameter(piece, given, extend));
    return Acad::eOk;
}

// Unit vector along the direction; false: it has no length.
inline bool viewDirection(const AcGeVector3d& direction, AcGeVector3d& unit) {
    const double length = direction.length();
    if (!(length > AcGeContext::gTol.equalVector) || !std::isfinite(length))
        return false;
    unit = direction / length;
    return true;
}

inline Acad::ErrorStatus closestPoint(const CurvePiece& piece, const AcGePoint3d& given,
                                      const AcGeVector3d& direction, AcGePoint3d& result, bool extend) {
    AcGeVector3d unit;
    if (!isFinite(given) || !viewDirection(direction, unit))
        return Acad::eInvalidInput;
    result = pointAt(piece, closestParameter(piece, given, unit, extend));
    return Acad::eOk;
}

inline void addBox(AcDbExtents& extents, const Box& box) {
    extents.addPoint(box.minimum);
    extents.addPoint(box.maximum);
}

}  // namespace drafthost
