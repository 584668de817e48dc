#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"
#include "module/ducts/fitting_sizes.h"

#include <array>
#include <cmath>

namespace tessary {

namespace {

// The radius of the centre line over the width: what none given means, and what is taken for elbows that
// would have no throat.
constexpr double usualRadiusRatio = 1.5;
constexpr double tightestRadiusRatio = 0.501;

struct ElbowArguments {
    FittingOptions options;
    bool isCableTray = false;
    bool isSquare = false;
    double radius = 0;  // of the centre line
    TripleRun run1;
    TripleRun run2;
};

// "CABLETRAY", or the flag for square elbows, which may follow another text.
bool readKind(ArgCursor& cursor, ElbowArguments& arguments) {
    std::wstring kind;
    if (readString(cursor, kind) && kind == L"CABLETRAY") {
        arguments.isCableTray = true;
        return true;
    }
    return readFlag(cursor, arguments.isSquare);
}

bool readElbow(ArgCursor& cursor, ElbowArguments& arguments) {
    return readFittingOptions(cursor, arguments.options) && readKind(cursor, arguments) &&
           readNumber(cursor, arguments.radius) && readTripleRun(cursor, arguments.run1) &&
           readTripleRun(cursor, arguments.run2);
}

// As drawn, whatever the points are converted to.
bool areInOnePlane(const TripleRun& run1, const TripleRun& run2) {
    return run1.start.z == run1.end.z && run2.start.z == run2.end.z && run1.end.z == run2.start.z;
}

class Elbow {
public:
    explicit Elbow(const ElbowArguments& arguments);

    // False when the solid refuses it.
    bool build(qn_hvacSolid& solid);
    // From the elbow's end to the second run's size. Null when the elbow ends with that size. The sizes are
    // known once the elbow is built.
    SolidPointer buildTransition() const;

    // How far before the end of the first run the elbow begins, and how far behind the start of the second
    // one it ends. The transition comes on top of that: callers that draw with it add its length themselves.
    double headLength() const { return frame1_.x().dotProduct(runEnd1_ - start_); }
    double tailLength() const { return frame2_.x().dotProduct(end_ - runStart2_); }

private:
    bool buildRound(qn_hvacSolid& solid);
    bool buildSquare(qn_hvacSolid& solid);
    double radiusRatio() const;

    const ElbowArguments& given_;
    TripleFrame frame1_;
    TripleFrame frame2_;
    AcGePoint3d runEnd1_;
    AcGePoint3d runStart2_;
    AcGePoint3d start_;  // the far ends of the runs, later the elbow's own ends
    AcGePoint3d end_;
    SectionSize size1_;
    SectionSize runSize2_;
    SectionSize size2_;  // of the elbow's end
    bool needsTransition_ = false;
};

Elbow::Elbow(const ElbowArguments& arguments)
    : given_(arguments),
      frame1_(computeTripleFrame(arguments.run1, &arguments.run2, arguments.options.convert)),
      frame2_(computeTripleFrame(arguments.run2, &arguments.run1, arguments.options.convert)),
      runEnd1_(centerEndPoint(arguments.run1, &frame1_, arguments.options.convert)),
      runStart2_(centerStartPoint(arguments.run2, &frame2_, arguments.options.convert)),
      start_(centerStartPoint(arguments.run1, &frame1_, arguments.options.convert)),
      end_(centerEndPoint(arguments.run2, &frame2_, arguments.options.convert)),
      size1_(outerSize(arguments.run1)), runSize2_(outerSize(arguments.run2)) {
    alignSecondFrame(frame1_, frame2_, size1_, isPlainRectangular(arguments.run1), runSize2_);
    size2_ = runSize2_;
}

double Elbow::radiusRatio() const {
    const double ratio = given_.radius / size1_.width;
    if (ratio == 0) {
        return usualRadiusRatio;
    }
    return ratio > 0 && ratio <= 0.5 ? tightestRadiusRatio : ratio;
}

bool Elbow::build(qn_hvacSolid& solid) {
    return given_.isSquare ? buildSquare(solid) : buildRound(solid);
}

// The first run's size is kept round the bend.
bool Elbow::buildRound(qn_hvacSolid& solid) {
    needsTransition_ = size1_ != size2_ || isPlainRectangular(given_.run1) != isPlainRectangular(given_.run2);
    size2_ = size1_;
    const bool isFlatTray = given_.isCableTray && areInOnePlane(given_.run1, given_.run2);
    const double ratio = radiusRatio();
    const int bodyFlags = given_.options.bodyFlags;
    if (!solid.addRadiusElbow(start_, size1_.width, size1_.height, given_.run1.thickness1,
                              given_.run1.thickness2, end_, size2_.width, size2_.height, frame1_.data(),
                              frame2_.data(), isRectangular(given_.run1), ratio, true, bodyFlags,
                              !isFlatTray)) {
        return false;
    }
    if (!isFlatTray) {
        return true;
    }
    // The round body has found where the tray's elbow begins and ends.
    solid.clearBodies();
    return solid.addCableTraySquareRadiusElbow(start_, size1_.width, size1_.height, end_, frame1_.data(),
                                               frame2_.data(), ratio, bodyFlags);
}

// A mitre needs equal sizes across the plane of the bend, and which ones these are depends on how the runs
// lie. So the second run's sizes are tried before the first one's take their place.
bool Elbow::buildSquare(qn_hvacSolid& solid) {
    const std::array<SectionSize, 4> trials = {
        runSize2_,
        SectionSize{size1_.width, runSize2_.height},
        SectionSize{runSize2_.width, size1_.height},
        size1_,
    };
    const bool isBox = isRectangular(given_.run1);
    std::array<AModeler::Point3d, 8> startLeg;
    std::array<AModeler::Point3d, 8> endLeg;
    std::array<AcGePoint3d, 8> axis;
    for (const SectionSize& trial : trials) {
        if (solid.addSquareElbowPrep(start_, size1_.width, size1_.height, end_, trial.width, trial.height,
                                     frame1_.data(), frame2_.data(), isBox, startLeg.data(), endLeg.data(),
                                     axis.data(), true, collar)) {
            needsTransition_ = &trial != trials.data();
            size2_ = trial;
            return solid.addSquareElbow(start_, size1_.width, size1_.height, end_, size2_.width,
                                        size2_.height, frame1_.data(), frame2_.data(), isBox, startLeg.data(),
                                        endLeg.data(), axis.data(), given_.options.bodyFlags);
        }
    }
    return false;
}

// Drawn also when the solid refuses the body: as an empty solid.
SolidPointer Elbow::buildTransition() const {
    if (!needsTransition_) {
        return nullptr;
    }
    const bool isPlain1 = isPlainRectangular(given_.run1);
    const bool isPlain2 = isPlainRectangular(given_.run2);
    const double length = transitionLength(size2_, isPlain1, runSize2_, isPlain2, transitionSlope);
    SolidPointer solid = newSolid();
    if (solid) {
        addTransition(*solid, {end_, isPlain1, size2_, frame2_},
                      {end_ + length * frame2_.x(), isPlain2, runSize2_, frame2_}, given_.options.bodyFlags);
    }
    return solid;
}

}  // namespace

HandlerStatus drawTripleElbow() {
    acedRetNil();
    const ArgumentList list;
    ArgCursor cursor = list.first();
    ElbowArguments arguments;
    if (!readElbow(cursor, arguments)) {
        return HandlerStatus::wrongType;
    }
    Elbow elbow(arguments);
    SolidPointer solid = newSolid();
    if (!solid || !elbow.build(*solid)) {
        return HandlerStatus::success;
    }
    SolidPointer transition = elbow.buildTransition();
    ResultList result;
    beginResultList(result);
    addNamedEntity(result, L"en1", addToDrawing(std::move(solid)));
    addNamedEntity(result, L"en2", addToDrawing(std::move(transition)));
    addNamedReal(result, L"dHeadLength", elbow.headLength());
    addNamedReal(result, L"dTailLength", elbow.tailLength());
    endAndReturnList(result);
    return HandlerStatus::success;
}

}  // namespace tessary
