#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/drawing/geometry_helpers.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"
#include "module/ducts/fitting_sizes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace tessary {

namespace {

// Branch bodies are this much smaller than the branches, so that their faces lie on none of the main's.
constexpr double branchWidthGap = 0.01;
constexpr double branchHeightGap = 0.001;
// An arc cosine tells no smaller angle from none.
constexpr double smallestAngle = 1e-7;

struct TakeoffArguments {
    FittingOptions options;
    TripleRun main;
    TripleRun onward;  // the main behind the fitting
    TripleRun branch1;
    TripleRun branch2;  // width 0: there is none
};

bool readTakeoff(ArgCursor& cursor, TakeoffArguments& arguments) {
    // Their places stay in the argument list for the programs that give them.
    bool unusedFlag = false;
    double unusedNumber = 0;
    if (!readFittingOptions(cursor, arguments.options) || !readFlag(cursor, unusedFlag) ||
        !readNumber(cursor, unusedNumber) || !readTripleRun(cursor, arguments.main) ||
        !readTripleRun(cursor, arguments.onward) || !readTripleRun(cursor, arguments.branch1)) {
        return false;
    }
    if (!readTripleRun(cursor, arguments.branch2)) {
        arguments.branch2 = {};
    }
    return true;
}

struct Branch {
    Branch(const TripleRun& branchRun, const TripleRun& main, bool convert)
        : run(branchRun), frame(computeTripleFrame(run, &main, convert)),
          runStart(centerStartPoint(run, &frame, convert)), size(outerSize(run)) {}

    const TripleRun& run;
    TripleFrame frame;
    AcGePoint3d runStart;
    SectionSize size;
    // Set by measureOpening.
    double before = 0;  // how far the opening reaches along the main, from where the axes meet
    double behind = 0;
    double reach = 0;   // along the branch, from the main's axis to just outside its wall
    AcGePoint3d start;  // on the main's axis
    AcGePoint3d end;
};

// A branch that rises or falls more steeply than the section's diagonal leaves through the top or bottom.
double sizeThatIsCut(const SectionSize& main, double rise) {
    const double diagonal = std::atan(main.height / main.width);
    return rise > diagonal || rise < -diagonal ? main.height : main.width;
}

// False for a branch that is parallel to the main.
bool measureOpening(Branch& branch, const TripleFrame& frame, const SectionSize& main) {
    const double angle = angleOfCosine(frame.x().dotProduct(branch.frame.x()));
    if (angle < smallestAngle || angle > std::numbers::pi - smallestAngle) {
        return false;
    }
    const double upward = frame.z().dotProduct(branch.frame.x());
    const double halfCut = sizeThatIsCut(main, std::asin(std::clamp(upward, -1.0, 1.0))) / 2;
    // The product's own quarter turn is never met exactly by a right angle, whose tangent is large enough.
    const bool isRightAngle = angle == productPi / 2;
    const double shift = isRightAngle ? 0 : halfCut / std::tan(angle);
    const double slant = isRightAngle ? 0 : std::abs(branch.size.width / 2 / std::tan(angle));
    const bool isVertical = std::abs(upward) >= 1;
    const double halfOpening = (isVertical ? branch.size.height : branch.size.width) / 2 / std::sin(angle);
    branch.before = halfOpening - shift;
    branch.behind = halfOpening + shift;
    branch.reach = slant + halfCut / std::sin(angle);
    return true;
}

class Takeoff {
public:
    explicit Takeoff(const TakeoffArguments& arguments);

    // False for a branch that is parallel to the main. The rest may be asked for only after it.
    bool measure();
    // False when the solid refuses a body.
    bool build(qn_hvacSolid& solid) const;
    bool needsTransition() const;
    // From the end of the fitting to the onward main's size. Null when the solid refuses it.
    SolidPointer buildTransition() const;

    double headLength() const { return runEnd_.distanceTo(mainStart_); }
    // Here the transition counts: the main goes on behind it.
    double onwardLength() const { return onwardStart_.distanceTo(onwardEnd()); }
    double branchLength1() const { return tailOf(branch1_); }
    double branchLength2() const { return branch2_ ? tailOf(*branch2_) : 0.0; }

private:
    bool measureBranch(Branch& branch);
    void measureMain();
    bool addBranch(qn_hvacSolid& solid, const Branch& branch) const;
    DuctEnd mainEnd(const AcGePoint3d& center) const;
    double transitionToOnward() const;
    AcGePoint3d onwardEnd() const;
    static double tailOf(const Branch& branch) { return branch.runStart.distanceTo(branch.end); }

    const TakeoffArguments& given_;
    TripleFrame frame_;
    AcGePoint3d runEnd_;  // of the main, where the axes meet or nearly do
    AcGePoint3d onwardStart_;
    SectionSize size_;
    SectionSize onwardSize_;
    Branch branch1_;
    std::optional<Branch> branch2_;
    double behind_ = 0;      // from the run's end to the fitting's
    AcGePoint3d mainStart_;  // of the fitting
    AcGePoint3d mainEnd_;
};

// A round main's frame follows the branches, the second one last.
Takeoff::Takeoff(const TakeoffArguments& arguments)
    : given_(arguments),
      frame_(computeTripleFrame(arguments.main, &arguments.onward, arguments.options.convert)),
      runEnd_(centerEndPoint(arguments.main, &frame_, arguments.options.convert)),
      size_(outerSize(arguments.main)), onwardSize_(outerSize(arguments.onward)),
      branch1_(arguments.branch1, arguments.main, arguments.options.convert) {
    const bool convert = arguments.options.convert;
    const TripleFrame onwardFrame = computeTripleFrame(arguments.onward, &arguments.main, convert);
    onwardStart_ = centerStartPoint(arguments.onward, &onwardFrame, convert);
    if (arguments.branch2.width != 0) {
        branch2_.emplace(arguments.branch2, arguments.main, convert);
    }
    const bool isMainPlain = isPlainRectangular(arguments.main);
    alignSecondFrame(frame_, branch1_.frame, size_, isMainPlain, branch1_.size);
    if (branch2_) {
        alignSecondFrame(frame_, branch2_->frame, size_, isMainPlain, branch2_->size);
    }
}

bool Takeoff::measureBranch(Branch& branch) {
    if (!measureOpening(branch, frame_, size_)) {
        return false;
    }
    const AcGeVector3d& along = branch.frame.x();
    branch.start = branch.runStart + along.dotProduct(runEnd_ - branch.runStart) * along;
    branch.end = branch.start + (branch.reach + collar) * along;
    if (branch.size.height == size_.height) {
        branch.size.height -= branchHeightGap;
    }
    return true;
}

bool Takeoff::measure() {
    if (!measureBranch(branch1_) || (branch2_ && !measureBranch(*branch2_))) {
        return false;
    }
    measureMain();
    return true;
}

// The fitting's part of the main holds all openings, wherever along the main the branches start.
void Takeoff::measureMain() {
    const double offset1 = frame_.x().dotProduct(branch1_.runStart - runEnd_);
    const double offset2 = branch2_ ? frame_.x().dotProduct(branch2_->runStart - runEnd_) : 0.0;
    const double first = branch2_ ? std::min({offset1, offset2, 0.0}) : offset1;
    const double last = branch2_ ? std::max({offset1, offset2, 0.0}) : offset1;
    const double before = std::max(branch1_.before, branch2_ ? branch2_->before : 0.0) + collar - first;
    behind_ = std::max(branch1_.behind, branch2_ ? branch2_->behind : 0.0) + collar + last;
    mainStart_ = runEnd_ - before * frame_.x();
    mainEnd_ = runEnd_ + behind_ * frame_.x();
}

DuctEnd Takeoff::mainEnd(const AcGePoint3d& center) const {
    return {center, isRectangular(given_.main), size_, frame_};
}

bool Takeoff::addBranch(qn_hvacSolid& solid, const Branch& branch) const {
    const SectionSize size = {branch.size.width - branchWidthGap, branch.size.height};
    const bool isBox = isRectangular(branch.run);
    return addTransition(solid, {branch.start, isBox, size, branch.frame},
                         {branch.end, isBox, size, branch.frame}, given_.options.bodyFlags);
}

bool Takeoff::build(qn_hvacSolid& solid) const {
    if (!addTransition(solid, mainEnd(mainStart_), mainEnd(mainEnd_), given_.options.bodyFlags) ||
        !addBranch(solid, branch1_) || (branch2_ && !addBranch(solid, *branch2_))) {
        return false;
    }
    // What of the last branch reaches beyond the ends of the main goes. A branch that stays between them is
    // left as it is, and so is one that a cut cannot be made through.
    solid.sliceLast(mainStart_, mainStart_ + frame_.y(), mainStart_ + frame_.z(), mainEnd_);
    solid.sliceLast(mainEnd_, mainEnd_ + frame_.y(), mainEnd_ + frame_.z(), mainStart_);
    solid.setFitting(HvacFitting::takeoff);
    return true;
}

bool Takeoff::needsTransition() const {
    return size_ != onwardSize_ || isPlainRectangular(given_.main) != isPlainRectangular(given_.onward);
}

double Takeoff::transitionToOnward() const {
    return needsTransition() ? transitionLength(size_, isPlainRectangular(given_.main), onwardSize_,
                                                isPlainRectangular(given_.onward), transitionSlope)
                             : 0.0;
}

AcGePoint3d Takeoff::onwardEnd() const {
    return onwardStart_ + (behind_ + transitionToOnward()) * frame_.x();
}

SolidPointer Takeoff::buildTransition() const {
    SolidPointer solid = newSolid();
    const DuctEnd end = {onwardEnd(), isRectangular(given_.onward), onwardSize_, frame_};
    const bool isBuilt = solid && addTransition(*solid, mainEnd(mainEnd_), end, given_.options.bodyFlags);
    return isBuilt ? std::move(solid) : nullptr;
}

// Nothing of the fitting is drawn when one of its solids cannot be built.
void drawTakeoff(Takeoff& takeoff) {
    SolidPointer solid = newSolid();
    if (!takeoff.measure() || !solid || !takeoff.build(*solid)) {
        return;
    }
    SolidPointer transition;
    if (takeoff.needsTransition()) {
        transition = takeoff.buildTransition();
        if (!transition) {
            return;
        }
    }
    const qn_hvacSolid* const addedTransition = addToDrawing(std::move(transition));
    ResultList result;
    beginResultList(result);
    addNamedEntity(result, L"en1", addToDrawing(std::move(solid)));
    addNamedEntity(result, L"en2", addedTransition);
    addNamedReal(result, L"dHeadLength", takeoff.headLength());
    addNamedReal(result, L"dTailLength1", takeoff.onwardLength());
    addNamedReal(result, L"dTailLength2", takeoff.branchLength1());
    addNamedReal(result, L"dTailLength3", takeoff.branchLength2());
    endAndReturnList(result);
}

}  // namespace

HandlerStatus drawTripleTakeoff() {
    acedRetNil();
    const ArgumentList list;
    ArgCursor cursor = list.first();
    TakeoffArguments arguments;
    if (!readTakeoff(cursor, arguments)) {
        return HandlerStatus::wrongType;
    }
    Takeoff takeoff(arguments);
    drawTakeoff(takeoff);
    return HandlerStatus::success;
}

}  // namespace tessary
