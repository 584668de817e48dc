#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"
#include "module/ducts/fitting_sizes.h"

namespace tessary {

namespace {

// A transition that the solid refuses is drawn as an empty solid, so that callers find an entity for every
// change of size and can set the runs' lengths by it.
SolidPointer buildTransition(const FittingOptions& options, const TripleRun& run1, const TripleRun& run2,
                             double length) {
    const TripleFrame frame1 = computeTripleFrame(run1, &run2, options.convert);
    const TripleFrame frame2 = computeTripleFrame(run2, &run1, options.convert);
    const AcGePoint3d start = centerEndPoint(run1, &frame1, options.convert);
    const AcGePoint3d end = centerStartPoint(run2, &frame2, options.convert) + length * frame2.x();
    SolidPointer solid = newSolid();
    if (solid) {
        addTransition(*solid, {start, isPlainRectangular(run1), outerSize(run1), frame1},
                      {end, isPlainRectangular(run2), outerSize(run2), frame2}, options.bodyFlags);
    }
    return solid;
}

}  // namespace

HandlerStatus drawTripleTransition() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    FittingOptions options;
    TripleRun run1;
    TripleRun run2;
    if (!readFittingOptions(cursor, options) || !readTripleRun(cursor, run1) ||
        !readTripleRun(cursor, run2)) {
        return HandlerStatus::wrongType;
    }
    const double length = transitionLength(outerSize(run1), isPlainRectangular(run1), outerSize(run2),
                                           isPlainRectangular(run2), transitionSlope);
    if (length <= 0) {
        return HandlerStatus::success;
    }
    const qn_hvacSolid* const solid = addToDrawing(buildTransition(options, run1, run2, length));
    if (!solid) {
        return HandlerStatus::success;
    }
    ResultList result;
    beginResultList(result);
    addNamedEntity(result, L"en1", solid);
    addNamedReal(result, L"dHeadLength", 0.0);
    addNamedReal(result, L"dTailLength", length);
    endAndReturnList(result);
    return HandlerStatus::success;
}

}  // namespace tessary
