#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"

namespace tessary {

namespace {

// Shorter bodies are not drawn. Drawing units.
constexpr double shortestBody = 0.01;

// The optional run at the end of the arguments from which a vertical run takes the direction of its width.
TripleFrame readFrame(ArgCursor& cursor, const TripleRun& run, bool convert) {
    TripleRun other;
    const bool hasOther = readTripleRun(cursor, other);
    return computeTripleFrame(run, hasOther ? &other : nullptr, convert);
}

// A list of its own rather than a point.
void addCoordinates(ResultList& list, const AcGeVector3d& axis) {
    list.append(
        ownValueList(acutBuildList(RTLB, RTREAL, axis.x, RTREAL, axis.y, RTREAL, axis.z, RTLE, RTNONE)));
}

// Null when the run is too short, or the solid refuses it. Setbacks longer than the run give a body that
// points backwards: where fittings overlap, drafters see it.
SolidPointer buildStraightBody(const FittingOptions& options, const TripleRun& run,
                               const TripleFrame& frame) {
    const AcGePoint3d start = centerStartPoint(run, &frame, options.convert);
    const AcGePoint3d end = centerEndPoint(run, &frame, options.convert);
    if (start.distanceTo(end) < shortestBody) {
        return nullptr;
    }
    const AcGePoint3d bodyStart = start + run.startSetback * frame.x();
    const AcGePoint3d bodyEnd = end - run.endSetback * frame.x();
    if (bodyStart.distanceTo(bodyEnd) < shortestBody) {
        return nullptr;
    }
    SolidPointer solid = newSolid();
    const bool isBox = isRectangular(run);
    const SectionSize size = outerSize(run);
    const bool isBuilt = solid && addTransition(*solid, {bodyStart, isBox, size, frame},
                                                {bodyEnd, isBox, size, frame}, options.bodyFlags);
    return isBuilt ? std::move(solid) : nullptr;
}

}  // namespace

HandlerStatus getTripleCoord() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    TripleRun run;
    if (!readTripleRun(cursor, run)) {
        return HandlerStatus::wrongType;
    }
    const TripleFrame frame = readFrame(cursor, run, true);
    ResultList result;
    beginResultList(result);
    addCoordinates(result, frame.x());
    addCoordinates(result, frame.y());
    addCoordinates(result, frame.z());
    endAndReturnList(result);
    return HandlerStatus::success;
}

HandlerStatus drawTripleCenter() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    FittingOptions options;
    TripleRun run;
    if (!readFittingOptions(cursor, options) || !readTripleRun(cursor, run)) {
        return HandlerStatus::wrongType;
    }
    const TripleFrame frame = readFrame(cursor, run, options.convert);
    if (const qn_hvacSolid* const body = addToDrawing(buildStraightBody(options, run, frame))) {
        returnEntity(*body);
    }
    return HandlerStatus::success;
}

}  // namespace tessary
