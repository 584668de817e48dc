// SolidEntity: bodies of duct fittings, from what callers say about them.

#include "solids/booleans/booleans.h"
#include "solids/entity/prepared_arrays.h"
#include "solids/entity/solid_entity.h"
#include "solids/shapes/radius_elbow.h"
#include "solids/shapes/skin.h"
#include "solids/shapes/wye.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace solids {

namespace {

// Null for points and sizes that are none, and for what is no frame.
std::optional<DuctEnd> ductEnd(const AcGePoint3d& center, bool rectangular, double width, double height,
                               const AcGeVector3d* frame) {
    DuctEnd end{center, {rectangular, width, height}, {}};
    if (!isInRange(center) || !isUsable(end.section)) {
        return std::nullopt;
    }
    const std::optional<Frame> vectors = frameOf(frame);
    if (!vectors) {
        return std::nullopt;
    }
    end.frame = *vectors;
    return end;
}

bool isThickness(double value) {
    return std::isfinite(value) && value >= 0;
}

std::optional<Body> transitionBody(const std::optional<DuctEnd>& start, const std::optional<DuctEnd>& end,
                                   int flags) {
    return start && end ? makeTransition(*start, *end, flags) : std::nullopt;
}

// Part of its length by which a body that is taken away is longer at both ends. Where it ends in the plane of
// a wall, the wall is cut through: rounding would leave a membrane in the opening.
constexpr double kOvershoot = 1e-6;

void lengthen(DuctEnd& start, DuctEnd& end) {
    const AcGeVector3d gap = (end.center - start.center) * kOvershoot;
    start.center = start.center - start.frame.x * gap.dotProduct(start.frame.x);
    end.center = end.center + end.frame.x * gap.dotProduct(end.frame.x);
}

}  // namespace

bool SolidEntity::addTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                                double startHeight, const AcGePoint3d& end, bool endRectangular,
                                double endWidth, double endHeight, const AcGeVector3d* startFrame,
                                const AcGeVector3d* endFrame, int bodyFlags) {
    return addPart(transitionBody(ductEnd(start, startRectangular, startWidth, startHeight, startFrame),
                                  ductEnd(end, endRectangular, endWidth, endHeight, endFrame), bodyFlags));
}

bool SolidEntity::subtractTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                                     double startHeight, const AcGePoint3d& end, bool endRectangular,
                                     double endWidth, double endHeight, const AcGeVector3d* startFrame,
                                     const AcGeVector3d* endFrame, int bodyFlags) {
    std::optional<DuctEnd> first = ductEnd(start, startRectangular, startWidth, startHeight, startFrame);
    std::optional<DuctEnd> last = ductEnd(end, endRectangular, endWidth, endHeight, endFrame);
    if (first && last) {
        lengthen(*first, *last);
    }
    const std::optional<Body> body = transitionBody(first, last, bodyFlags);
    if (!body || joined().mesh.empty() || joined().mayOverlap) {
        return false;
    }
    std::optional<Mesh> rest = subtract(joined().mesh, body->mesh);
    if (!rest || rest->empty()) {
        return false;
    }
    Part part{std::move(*rest), BodyKind::joined, joined().flags, joined().centerLines, false};
    std::vector<Part> parts;
    parts.push_back(std::move(part));
    return replaceParts(std::move(parts));
}

// turnsFreely: without it the elbow is only there to say where its ends come to lie, and is cleared again; it
// turns the same way.
bool SolidEntity::addRadiusElbow(AcGePoint3d& start, double startWidth, double startHeight, double thickness1,
                                 double thickness2, AcGePoint3d& end, double endWidth, double endHeight,
                                 const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                 bool rectangular, double radiusRatio, bool roundThroat, int bodyFlags,
                                 bool turnsFreely) {
    static_cast<void>(turnsFreely);
    const auto first = ductEnd(start, rectangular, startWidth, startHeight, startFrame);
    const auto second = ductEnd(end, rectangular, endWidth, endHeight, endFrame);
    const double radius = radiusRatio * startWidth;
    if (!first || !second || !roundThroat || !isThickness(thickness1) || !isThickness(thickness2) ||
        !std::isfinite(radius)) {
        return false;
    }
    std::optional<RadiusElbow> elbow =
        makeRadiusElbow(*first, *second, radius, thickness1 + thickness2, bodyFlags);
    if (!elbow || !addPart(std::move(elbow->body))) {
        return false;
    }
    start = elbow->start;
    end = elbow->end;
    return true;
}

bool SolidEntity::addCableTraySquareRadiusElbow(AcGePoint3d& start, double width, double height,
                                                AcGePoint3d& end, const AcGeVector3d* startFrame,
                                                const AcGeVector3d* endFrame, double radiusRatio,
                                                int bodyFlags) {
    const auto first = ductEnd(start, true, width, height, startFrame);
    const auto second = ductEnd(end, true, width, height, endFrame);
    const double radius = radiusRatio * width;
    if (!first || !second || !std::isfinite(radius)) {
        return false;
    }
    std::optional<RadiusElbow> elbow =
        makeCableTrayElbow(*first, second->center, second->frame, radius, bodyFlags);
    if (!elbow || !addPart(std::move(elbow->body))) {
        return false;
    }
    start = elbow->start;
    end = elbow->end;
    return true;
}

bool SolidEntity::addSquareElbowPrep(AcGePoint3d& start, double startWidth, double startHeight,
                                     AcGePoint3d& end, double endWidth, double endHeight,
                                     const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                     bool rectangular, AModeler::Point3d* startLeg, AModeler::Point3d* endLeg,
                                     AcGePoint3d* axis, bool withCollars, double collar) {
    const auto first = ductEnd(start, rectangular, startWidth, startHeight, startFrame);
    const auto second = ductEnd(end, rectangular, endWidth, endHeight, endFrame);
    const double length = withCollars ? collar : 0.0;
    if (!first || !second || !startLeg || !endLeg || !axis || !isThickness(length)) {
        return false;
    }
    const std::optional<SquareElbowPlan> plan = planSquareElbow(*first, *second, length);
    if (!plan) {
        return false;
    }
    putLeg(plan->startLeg, startLeg);
    putLeg(plan->endLeg, endLeg);
    putAxis(plan->start, plan->corner, plan->end, axis);
    start = plan->start;
    end = plan->end;
    return true;
}

bool SolidEntity::addSquareElbow(const AcGePoint3d& start, double startWidth, double startHeight,
                                 const AcGePoint3d& end, double endWidth, double endHeight,
                                 const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                 bool rectangular, const AModeler::Point3d* startLeg,
                                 const AModeler::Point3d* endLeg, const AcGePoint3d* axis, int bodyFlags) {
    const auto first = ductEnd(start, rectangular, startWidth, startHeight, startFrame);
    const auto second = ductEnd(end, rectangular, endWidth, endHeight, endFrame);
    if (!first || !second || !axis || !belongs({startLeg, axis, 0, start}, axis[1]) ||
        !belongs({endLeg, axis, 2, end}, axis[1])) {
        return false;
    }
    return addPart(makeSquareElbow(*first, *second, axis[1], bodyFlags));
}

bool SolidEntity::addWyePrep(AcGePoint3d& start, double width, double height, AcGePoint3d& end1,
                             double width1, double height1, AcGePoint3d& end2, double width2, double height2,
                             const AcGeVector3d* frame, const AcGeVector3d* frame1,
                             const AcGeVector3d* frame2, bool rectangular, AModeler::Point3d* mainLeg,
                             AModeler::Point3d* leg1, AModeler::Point3d* leg2, AcGePoint3d* mainAxis,
                             AcGePoint3d* axis1, AcGePoint3d* axis2, bool withCollars, double collar) {
    const auto main = ductEnd(start, rectangular, width, height, frame);
    const auto branch1 = ductEnd(end1, rectangular, width1, height1, frame1);
    const auto branch2 = ductEnd(end2, rectangular, width2, height2, frame2);
    const double length = withCollars ? collar : 0.0;
    if (!main || !branch1 || !branch2 || !mainLeg || !leg1 || !leg2 || !mainAxis || !axis1 || !axis2 ||
        !isThickness(length)) {
        return false;
    }
    const std::optional<WyePlan> plan = planWye(*main, *branch1, *branch2, length);
    if (!plan) {
        return false;
    }
    putLeg(plan->mainLeg, mainLeg);
    putLeg(plan->leg1, leg1);
    putLeg(plan->leg2, leg2);
    putAxis(plan->start, plan->junction, plan->junction, mainAxis);
    putAxis(plan->junction, plan->junction, plan->end1, axis1);
    putAxis(plan->junction, plan->junction, plan->end2, axis2);
    start = plan->start;
    end1 = plan->end1;
    end2 = plan->end2;
    return true;
}

bool SolidEntity::addWye(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                         double height1, AcGePoint3d& end2, double width2, double height2,
                         AcGePoint3d& junction, const AcGeVector3d* frame, const AcGeVector3d* frame1,
                         const AcGeVector3d* frame2, bool rectangular, const AModeler::Point3d* mainLeg,
                         const AModeler::Point3d* leg1, const AModeler::Point3d* leg2,
                         const AcGePoint3d* mainAxis, const AcGePoint3d* axis1, const AcGePoint3d* axis2,
                         int bodyFlags) {
    const auto main = ductEnd(start, rectangular, width, height, frame);
    const auto branch1 = ductEnd(end1, rectangular, width1, height1, frame1);
    const auto branch2 = ductEnd(end2, rectangular, width2, height2, frame2);
    if (!main || !branch1 || !branch2 || !mainAxis) {
        return false;
    }
    const AcGePoint3d planned = mainAxis[1];
    if (!belongs({mainLeg, mainAxis, 0, start}, planned) || !belongs({leg1, axis1, 2, end1}, planned) ||
        !belongs({leg2, axis2, 2, end2}, planned) ||
        !addPart(makeWye(*main, *branch1, *branch2, planned, bodyFlags))) {
        return false;
    }
    junction = planned;
    return true;
}

bool SolidEntity::addSkin(AcGePoint3dArray points, double thickness) {
    if (!std::isfinite(thickness) || !std::ranges::all_of(points, isInRange)) {
        return false;
    }
    return addPart(makeSkin({points.asArrayPtr(), static_cast<std::size_t>(points.length())}, thickness));
}

}  // namespace solids
