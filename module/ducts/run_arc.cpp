#include "module/ducts/run_arc.h"

#include "module/drawing/geometry_helpers.h"

namespace tessary {

namespace {

constexpr double quarterTurn = productPi * 0.5;
constexpr int leftTurn = 1;

void setExtensions(RunArc& run, const AcGePoint3d& start, double heading, double extension) {
    run.head.setStartPoint(start);
    run.head.setEndPoint(polarPoint(start, heading, -extension));

    AcGePoint3d end;
    AcGeVector3d direction;
    run.arc->getEndPoint(end);
    run.arc->getFirstDeriv(end, direction);
    run.tail.setStartPoint(end);
    run.tail.setEndPoint(end + extension * direction.normalize());
}

}  // namespace

bool readArcArgument(ArgCursor& cursor, double extension, RunArc& run) {
    AcGePoint3d start;
    double heading = 0;
    double radius = 0;
    double sweep = 0;
    if (!readPoint(cursor, start) || !readNumber(cursor, heading) || !readInteger(cursor, run.turn) ||
        !readNumber(cursor, radius) || !readNumber(cursor, sweep)) {
        return false;
    }
    start.z = 0;
    run.length = radius * sweep;
    const AcGePoint3d center = polarPoint(start, heading + run.turn * quarterTurn, radius);
    const double startAngle = angleTo(center, start);
    const bool isLeft = run.turn == leftTurn;
    run.arc = std::make_unique<AcDbArc>(center, AcGeVector3d::kZAxis, radius,
                                        isLeft ? startAngle : startAngle - sweep,
                                        isLeft ? startAngle + sweep : startAngle);
    if (extension != 0.0) {
        setExtensions(run, start, heading, extension);
    }
    return true;
}

}  // namespace tessary
