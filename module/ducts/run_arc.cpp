#include "module/ducts/run_arc.h"

#include "module/drawing/geometry_helpers.h"

namespace tessary {

namespace {

constexpr double quarterTurn = productPi * 0.5;
constexpr int leftTurn = 1;

bool setLine(AcDbLine& line, const AcGePoint3d& start, const AcGePoint3d& end) {
    return line.setStartPoint(start) == Acad::eOk && line.setEndPoint(end) == Acad::eOk;
}

// False when the extension is no length, so that there is no line of it.
bool setExtensions(RunArc& run, const AcGePoint3d& start, double heading, double extension) {
    AcGePoint3d end;
    AcGeVector3d direction;
    run.arc->getEndPoint(end);
    run.arc->getFirstDeriv(end, direction);
    return setLine(run.head, start, polarPoint(start, heading, -extension)) &&
           setLine(run.tail, end, end + extension * direction.normalize());
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
    if (extension != 0.0 && !setExtensions(run, start, heading, extension)) {
        run.arc.reset();
    }
    return run.arc != nullptr;
}

}  // namespace tessary
