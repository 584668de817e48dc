#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/drawing/geometry_helpers.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"

#include <algorithm>
#include <cmath>

namespace tessary {

namespace {

struct Hanger {
    bool isBand = false;  // otherwise a trapeze: a bar under the duct
    AcGePoint3d center;   // of the duct
    double angle = 0;     // of the duct in plan
    SectionSize duct;
    bool isRectangular = false;  // the band
    double rod = 0;              // its diameter, and the length of a band along the duct
    double thickness = 0;        // of the band, or the depth of the bar
    double elevation = 0;        // where the rods end
    int bodyFlags = 0;
};

bool readHanger(ArgCursor& cursor, Hanger& hanger) {
    return readFlag(cursor, hanger.isBand) && readPoint(cursor, hanger.center) &&
           readNumber(cursor, hanger.angle) && readNumber(cursor, hanger.duct.width) &&
           readNumber(cursor, hanger.duct.height) && readFlag(cursor, hanger.isRectangular) &&
           readNumber(cursor, hanger.rod) && readNumber(cursor, hanger.thickness) &&
           readNumber(cursor, hanger.elevation) && readInteger(cursor, hanger.bodyFlags);
}

// Along the duct, across it, and up.
TripleFrame hangerFrame(double angle) {
    const double across = angle + productPi * 0.5;
    TripleFrame frame;
    frame.x() = AcGeVector3d(std::cos(angle), std::sin(angle), 0);
    frame.y() = AcGeVector3d(std::cos(across), std::sin(across), 0);
    frame.z() = AcGeVector3d::kZAxis;
    return frame;
}

// A rod is round, so that any two directions across it do.
TripleFrame rodFrame(bool goesDown) {
    TripleFrame frame;
    frame.x() = goesDown ? -AcGeVector3d::kZAxis : AcGeVector3d::kZAxis;
    frame.y() = goesDown ? AcGeVector3d::kXAxis : -AcGeVector3d::kXAxis;
    frame.z() = -AcGeVector3d::kYAxis;
    return frame;
}

AcGePoint3d raised(const AcGePoint3d& point, double height) {
    return point + height * AcGeVector3d::kZAxis;
}

// Whether a rod from that height has no length but for rounding, as an elevation that a drafter computes from
// the duct's leaves it: there is nothing to hang then.
bool endsWhereItBegins(const Hanger& hanger, double height) {
    constexpr double rounding = 1e-12;  // of the largest number it can come from
    const double largest = std::max({std::abs(hanger.center.z), std::abs(hanger.elevation),
                                     std::abs(hanger.duct.height), std::abs(hanger.thickness)});
    return std::abs(height - hanger.elevation) <= rounding * largest;
}

// From the point up or down to the elevation.
bool addRod(qn_hvacSolid& solid, const Hanger& hanger, const AcGePoint3d& from, const TripleFrame& frame) {
    const SectionSize size = {hanger.rod, hanger.rod};
    const AcGePoint3d to(from.x, from.y, hanger.elevation);
    return addTransition(solid, {from, false, size, frame}, {to, false, size, frame}, hanger.bodyFlags);
}

// bar: centre of the bar. Going down, the first rod begins at the underside of the bar; the second one begins
// at its top all the same, where the bar hides it.
bool addTrapezeRods(qn_hvacSolid& solid, const Hanger& hanger, const AcGePoint3d& bar,
                    const AcGeVector3d& toRod) {
    const double halfDepth = hanger.thickness / 2;
    const AcGePoint3d center1 = bar - toRod;
    const bool goesDown = hanger.elevation <= center1.z;
    const AcGePoint3d from1 = raised(center1, goesDown ? -halfDepth : halfDepth);
    if (endsWhereItBegins(hanger, from1.z)) {
        return true;
    }
    return addRod(solid, hanger, from1, rodFrame(goesDown)) &&
           addRod(solid, hanger, raised(bar + toRod, halfDepth), rodFrame(false));
}

// The bar touches the duct from below and reaches one rod beyond each rod, as far as the rods stand off the
// duct.
bool addTrapeze(qn_hvacSolid& solid, const Hanger& hanger) {
    const TripleFrame frame = hangerFrame(hanger.angle);
    const AcGePoint3d bar = raised(hanger.center, -(hanger.duct.height / 2 + hanger.thickness / 2));
    const SectionSize size = {hanger.duct.width + 4 * hanger.rod, hanger.thickness};
    const double rodOffset = size.width / 2 - hanger.rod;
    const AcGeVector3d halfLength = hanger.rod * frame.x();
    return addTrapezeRods(solid, hanger, bar, rodOffset * frame.y()) &&
           addTransition(solid, {bar - halfLength, true, size, frame}, {bar + halfLength, true, size, frame},
                         hanger.bodyFlags);
}

// The duct's size, larger by the thickness times the factor.
SectionSize enlarged(const Hanger& hanger, double factor) {
    return {hanger.duct.width + factor * hanger.thickness, hanger.duct.height + factor * hanger.thickness};
}

// The opening is cut last, and through the end of the rod too. It leaves a gap of a tenth of the thickness
// round the duct, so that the faces of both do not coincide.
bool addBand(qn_hvacSolid& solid, const Hanger& hanger) {
    const TripleFrame frame = hangerFrame(hanger.angle);
    const AcGeVector3d halfLength = hanger.rod / 2 * frame.x();
    DuctEnd start = {hanger.center - halfLength, hanger.isRectangular, enlarged(hanger, 2), frame};
    DuctEnd end = {hanger.center + halfLength, hanger.isRectangular, enlarged(hanger, 2), frame};
    if (!addTransition(solid, start, end, hanger.bodyFlags)) {
        return false;
    }
    const bool goesDown = hanger.elevation <= hanger.center.z;
    const double halfHeight = hanger.duct.height / 2;
    const AcGePoint3d from = raised(hanger.center, goesDown ? -halfHeight : halfHeight);
    if (!endsWhereItBegins(hanger, from.z) && !addRod(solid, hanger, from, rodFrame(goesDown))) {
        return false;
    }
    start.size = end.size = enlarged(hanger, 0.2);
    return subtractTransition(solid, start, end, hanger.bodyFlags);
}

}  // namespace

HandlerStatus drawHanger() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    Hanger hanger;
    if (!readHanger(cursor, hanger)) {
        return HandlerStatus::wrongType;
    }
    SolidPointer solid = newSolid();
    if (!solid || !(hanger.isBand ? addBand(*solid, hanger) : addTrapeze(*solid, hanger))) {
        return HandlerStatus::success;
    }
    solid->setFitting(HvacFitting::hanger);
    if (const qn_hvacSolid* const added = addToDrawing(std::move(solid))) {
        ResultList result;
        beginResultList(result);
        addNamedEntity(result, L"hanger", added);
        endAndReturnList(result);
    }
    return HandlerStatus::success;
}

}  // namespace tessary
