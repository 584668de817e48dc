#pragma once

// Where the centre line of a run lies, and the frame in which its section stands.

#include "host/api/geometry.h"
#include "module/ducts/triple_run.h"

#include <array>

namespace tessary {

// Unit vectors in a row, as the solid's operations take them.
class TripleFrame {
public:
    AcGeVector3d& x() { return axes_[0]; }  // along the run
    AcGeVector3d& y() { return axes_[1]; }  // across it, the direction of its width
    AcGeVector3d& z() { return axes_[2]; }  // the direction of its height
    const AcGeVector3d& x() const { return axes_[0]; }
    const AcGeVector3d& y() const { return axes_[1]; }
    const AcGeVector3d& z() const { return axes_[2]; }
    const AcGeVector3d* data() const { return axes_.data(); }

    // An axis without length, as runs without length have them, stays.
    void normalize();

private:
    std::array<AcGeVector3d, 3> axes_;
};

// The ends of the centre line. frame: of the run, by which the justifications move the drawn point; null for
// the point as drawn. convert: the drawn point is first handed to the LISP function "convert_rp_dp" with the
// run's conversion code; what it returns takes the point's place when it is a three-dimensional point.
AcGePoint3d centerStartPoint(const TripleRun& run, const TripleFrame* frame, bool convert);
AcGePoint3d centerEndPoint(const TripleRun& run, const TripleFrame* frame, bool convert);

// By the points as drawn, also where they are converted for the frame.
bool isVerticalRun(const TripleRun& run);

// other: the run that this one is joined to, from which a vertical run takes the direction of its width; null
// for none: its width then lies along the world's Y axis.
TripleFrame computeTripleFrame(const TripleRun& run, const TripleRun* other, bool convert);

}  // namespace tessary
