#include "module/ducts/run_points.h"

#include "host/api/editor.h"
#include "module/binding/value_list.h"
#include "module/drawing/geometry_helpers.h"

#include <cmath>
#include <cstdint>

namespace tessary {

namespace {

constexpr double quarterTurn = productPi / 2;

// The conversion belongs to the product's LISP code. Without it, and when it fails, points stay as drawn.
AcGePoint3d converted(const AcGePoint3d& drawn, int code) {
    const ValueList call(acutBuildList(RTSTR, L"convert_rp_dp", RTLB, RTREAL, drawn.x, RTREAL, drawn.y,
                                       RTREAL, drawn.z, RTLE, RTLONG, std::int32_t{code}, RTNONE));
    resbuf* answer = nullptr;
    const int status = acedInvoke(call.get(), &answer);
    const ValueList result(answer);
    if (status != RTNORM || !result || result->restype != RT3DPOINT) {
        return drawn;
    }
    const ads_real* coordinates = result->resval.rpoint;
    return {coordinates[0], coordinates[1], coordinates[2]};
}

// From the drawn point to the centre, along the height.
double verticalShift(const TripleRun& run, double halfHeight) {
    if (run.vertical == L"t") {
        return -halfHeight;
    }
    if (run.vertical == L"h" && run.raised != 0) {
        return halfHeight + run.raise;
    }
    return run.vertical == L"b" || run.vertical == L"h" ? halfHeight : 0.0;
}

double horizontalShift(const TripleRun& run, double halfWidth) {
    if (run.horizontal == L"r") {
        return -halfWidth;
    }
    return run.horizontal == L"l" ? halfWidth : 0.0;
}

AcGePoint3d centerPoint(const TripleRun& run, const AcGePoint3d& drawn, const TripleFrame* frame,
                        bool convert) {
    const AcGePoint3d point = convert ? converted(drawn, run.conversionCode) : drawn;
    if (!frame) {
        return point;
    }
    const SectionSize size = outerSize(run);
    return point + verticalShift(run, size.height / 2) * frame->z() +
           horizontalShift(run, size.width / 2) * frame->y();
}

}  // namespace

void TripleFrame::normalize() {
    for (AcGeVector3d& axis : axes_) {
        axis.normalize();
    }
}

AcGePoint3d centerStartPoint(const TripleRun& run, const TripleFrame* frame, bool convert) {
    return centerPoint(run, run.start, frame, convert);
}

AcGePoint3d centerEndPoint(const TripleRun& run, const TripleFrame* frame, bool convert) {
    return centerPoint(run, run.end, frame, convert);
}

bool isVerticalRun(const TripleRun& run) {
    return run.verticalMarker == -1 || centerStartPoint(run, nullptr, false)
                                           .convert2d()
                                           .isEqualTo(centerEndPoint(run, nullptr, false).convert2d());
}

TripleFrame computeTripleFrame(const TripleRun& run, const TripleRun* other, bool convert) {
    TripleFrame frame;
    const AcGePoint3d start = centerStartPoint(run, nullptr, convert);
    const AcGePoint3d end = centerEndPoint(run, nullptr, convert);
    frame.x() = end - start;
    if (!isVerticalRun(run)) {
        const double across = angleTo(start, end) + quarterTurn;
        frame.y() = AcGeVector3d(std::cos(across), std::sin(across), 0);
        frame.z() = frame.x().crossProduct(frame.y());
    } else if (!other) {
        frame.z() = AcGeVector3d::kXAxis;
    } else {
        frame.y() = computeTripleFrame(*other, nullptr, convert).y();
        frame.z() = frame.x().crossProduct(frame.y());
    }
    frame.y() = frame.z().crossProduct(frame.x());
    frame.normalize();
    return frame;
}

}  // namespace tessary
