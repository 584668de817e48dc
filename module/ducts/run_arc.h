#pragma once

#include "host/api/curves.h"
#include "module/binding/argument_readers.h"

#include <memory>

namespace tessary {

// An arc of a run as it is laid out: from a start point in a heading, turning left or right. Everything lies
// in the plane z = 0, and nothing is in a drawing.
struct RunArc {
    // Runs counter-clockwise, whichever way the run turns: for a right turn it ends at the run's start point.
    std::unique_ptr<AcDbArc> arc;
    // Set only with an extension: straight on before the start, and straight on from the arc's own end point.
    // For a right turn the second coincides with the first; distances along the run are computed for that.
    AcDbLine head;
    AcDbLine tail;
    double length = 0;  // radius times angle turned, whatever its sign
    int turn = 0;       // as given: 1 left, -1 right

    // The distances that callers get take only -1 for a right turn, while the arc takes only 1 for a left
    // one.
    bool countsBackwards() const { return turn == -1; }
};

// Reads start point, heading, turn, radius and angle turned. extension: length of the straight pieces, 0 for
// none; negative ones lie on the other side. False, with arc null, as soon as a value cannot be read.
bool readArcArgument(ArgCursor& cursor, double extension, RunArc& run);

}  // namespace tessary
