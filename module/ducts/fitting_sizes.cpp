#include "module/ducts/fitting_sizes.h"

#include "module/drawing/geometry_helpers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessary {

namespace {

// Lays the first frame into the plane of the bend and returns it as it goes on after the bend.
TripleFrame turnIntoBend(TripleFrame& frame1, const AcGeVector3d& direction2) {
    frame1.y() = frame1.x().crossProduct(direction2);
    frame1.z() = frame1.x().crossProduct(frame1.y());
    TripleFrame onward;
    onward.x() = direction2;
    onward.y() = frame1.y();
    onward.z() = direction2.crossProduct(frame1.y());
    frame1.normalize();
    onward.normalize();
    return onward;
}

// The first frame as the bend carries it on.
TripleFrame carriedRoundBend(const TripleFrame& frame1, const AcGeVector3d& direction2) {
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(angleOfCosine(frame1.x().dotProduct(direction2)),
                                                     frame1.x().crossProduct(direction2));
    TripleFrame onward;
    onward.x() = turn * frame1.x();
    onward.y() = turn * frame1.y();
    onward.z() = turn * frame1.z();
    return onward;
}

}  // namespace

double transitionLength(const SectionSize& size1, bool isRectangular1, const SectionSize& size2,
                        bool isRectangular2, double slopeDegrees) {
    const double difference =
        std::max(std::abs(size1.height - size2.height), std::abs(size1.width - size2.width));
    const double length = difference * 0.5 / std::tan(degToRad(slopeDegrees));
    return isRectangular1 == isRectangular2 ? length
                                            : std::max(length, std::max(size1.width, size1.height) / 2);
}

void alignSecondFrame(TripleFrame& frame1, TripleFrame& frame2, const SectionSize& size1,
                      bool isPlainRectangular1, SectionSize& size2) {
    const bool isRound = size1.width == size1.height && !isPlainRectangular1;
    const TripleFrame onward =
        isRound ? turnIntoBend(frame1, frame2.x()) : carriedRoundBend(frame1, frame2.x());
    AcGeTol tolerance;
    tolerance.equalVector = 0.01;
    const AcGeVector3d& across = onward.y();
    if (across.isEqualTo(frame2.y(), tolerance)) {
        return;
    }
    const bool pointsTheOtherWay = across.isEqualTo(-frame2.y(), tolerance);
    if (!pointsTheOtherWay &&
        (across.isEqualTo(frame2.z(), tolerance) || across.isEqualTo(-frame2.z(), tolerance))) {
        std::swap(size2.width, size2.height);
    }
    frame2 = onward;
}

double angleOfCosine(double cosine) {
    return std::acos(std::clamp(cosine, -1.0, 1.0));
}

}  // namespace tessary
