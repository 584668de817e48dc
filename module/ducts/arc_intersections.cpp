#include "module/ducts/arc_intersections.h"

#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/drawing/geometry_helpers.h"
#include "module/ducts/run_arc.h"

#include <span>

namespace tessary {

namespace {

using Members = std::span<const AcDbCurve* const>;

// The result: a list of ("d" . distance). It stays without parentheses as long as there is nothing to report.
class DistanceList {
public:
    void add(double distance) {
        if (!list_.head()) {
            beginResultList(list_);
        }
        addNamedReal(list_, L"d", distance);
    }
    void returnToLisp() {
        if (list_.head()) {
            endAndReturnList(list_);
        } else {
            acedRetNil();
        }
    }

private:
    ResultList list_;
};

// Points that lie on the member and on one of the others, in the order of the others. Empty when the host
// cannot intersect one of the pairs.
AcGePoint3dArray intersections(const AcDbCurve& member, Members others) {
    AcGePoint3dArray points;
    for (const AcDbCurve* other : others) {
        if (member.intersectWith(other, AcDb::kOnBothOperands, points) != Acad::eOk) {
            return {};
        }
    }
    return points;
}

// Reports the intersections as offset + scale * (distance along the member from its start point). Points
// whose distance the host cannot tell are left out.
void report(const AcDbCurve& member, Members others, double offset, double scale, DistanceList& distances) {
    for (const AcGePoint3d& point : intersections(member, others)) {
        double distance = 0;
        if (member.getDistAtPoint(point, distance) == Acad::eOk) {
            distances.add(offset + scale * distance);
        }
    }
}

// Reports the intersections of a run's arc, and of its extensions when it has them, as distances along the
// run.
void reportAlongArc(const RunArc& run, bool isExtended, Members others, DistanceList& distances) {
    const bool backwards = run.countsBackwards();
    if (isExtended) {
        report(run.head, others, backwards ? run.length : 0, backwards ? 1 : -1, distances);
    }
    report(*run.arc, others, backwards ? run.length : 0, backwards ? -1 : 1, distances);
    if (isExtended) {
        report(run.tail, others, backwards ? 0 : run.length, backwards ? -1 : 1, distances);
    }
}

// Two points, in the plane z = 0, as a line lengthened at both ends.
bool readLine(ArgCursor& cursor, double extension, AcDbLine& line) {
    AcGePoint3d start;
    AcGePoint3d end;
    if (!readPoint(cursor, start) || !readPoint(cursor, end)) {
        return false;
    }
    start.z = 0;
    end.z = 0;
    if (extension != 0.0) {
        start = polarPoint(start, angleTo(end, start), extension);
        end = polarPoint(end, angleTo(start, end), extension);
    }
    return line.setStartPoint(start) == Acad::eOk && line.setEndPoint(end) == Acad::eOk;
}

// The optional first argument of all three functions: 0 when the list begins with a point.
double readExtension(ArgCursor& cursor) {
    double extension = 0;
    readNumber(cursor, extension);
    return extension;
}

}  // namespace

// Arguments that are missing or of another type give nil, never an error: callers try combinations.

HandlerStatus intersectArcArc() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    const double extension = readExtension(cursor);
    RunArc first;
    RunArc second;
    if (!readArcArgument(cursor, extension, first) || !readArcArgument(cursor, extension, second)) {
        return HandlerStatus::success;
    }
    const bool isExtended = extension != 0.0;
    const AcDbCurve* const members[] = {&second.head, second.arc.get(), &second.tail};
    const Members others = isExtended ? std::span(members) : std::span(members).subspan(1, 1);
    DistanceList distances;
    reportAlongArc(first, isExtended, others, distances);
    distances.returnToLisp();
    return HandlerStatus::success;
}

HandlerStatus intersectArcLine() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    const double extension = readExtension(cursor);
    RunArc run;
    AcDbLine line;
    if (!readArcArgument(cursor, extension, run) || !readLine(cursor, extension, line)) {
        return HandlerStatus::success;
    }
    const AcDbCurve* const others[] = {&line};
    DistanceList distances;
    reportAlongArc(run, extension != 0.0, others, distances);
    distances.returnToLisp();
    return HandlerStatus::success;
}

HandlerStatus intersectLineArc() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    const double extension = readExtension(cursor);
    AcDbLine line;
    RunArc run;
    if (!readLine(cursor, extension, line) || !readArcArgument(cursor, extension, run)) {
        return HandlerStatus::success;
    }
    const AcDbCurve* const members[] = {&run.head, run.arc.get(), &run.tail};
    const Members others = extension != 0.0 ? std::span(members) : std::span(members).subspan(1, 1);
    DistanceList distances;
    report(line, others, -extension, 1, distances);
    distances.returnToLisp();
    return HandlerStatus::success;
}

}  // namespace tessary
