#pragma once

// Solids on their way into the drawing. A solid that an operation refuses dies with its pointer: nothing of
// it gets into the drawing.

#include "module/ducts/run_points.h"
#include "solids/api/hvac_solid.h"

#include <memory>

namespace tessary {

// Straight duct that mitred elbows, wyes and takeoffs keep at each of their ends. Drawing units.
inline constexpr double collar = 3.0;

using SolidPointer = std::unique_ptr<qn_hvacSolid>;

// Null while the companion module is not loaded; callers treat that as a body that cannot be built.
SolidPointer newSolid();

// Adds the solid to model space and closes it. Null for null, and when the drawing does not take it: an alert
// has then told why.
const qn_hvacSolid* addToDrawing(SolidPointer solid);

// One end of a straight body or a transition.
struct DuctEnd {
    AcGePoint3d center;
    bool isRectangular;
    SectionSize size;
    const TripleFrame& frame;
};

bool addTransition(qn_hvacSolid& solid, const DuctEnd& start, const DuctEnd& end, int bodyFlags);
bool subtractTransition(qn_hvacSolid& solid, const DuctEnd& start, const DuctEnd& end, int bodyFlags);

// What the functions that draw fittings begin with.
struct FittingOptions {
    bool convert = false;  // drawn points go through the LISP conversion
    int bodyFlags = 0;     // handed to every body
};
bool readFittingOptions(ArgCursor& cursor, FittingOptions& options);

}  // namespace tessary
