#include "host/api/editor.h"
#include "module/binding/result_list.h"
#include "module/ducts/duct_functions.h"
#include "module/ducts/duct_solid.h"
#include "module/ducts/fitting_sizes.h"

#include <array>

namespace tessary {

namespace {

struct WyeArguments {
    FittingOptions options;
    TripleRun main;
    TripleRun branch1;
    TripleRun branch2;
};

bool readWye(ArgCursor& cursor, WyeArguments& arguments) {
    // Their places stay in the argument list for the programs that give them.
    bool unusedFlag = false;
    double unusedNumber = 0;
    return readFittingOptions(cursor, arguments.options) && readFlag(cursor, unusedFlag) &&
           readNumber(cursor, unusedNumber) && readTripleRun(cursor, arguments.main) &&
           readTripleRun(cursor, arguments.branch1) && readTripleRun(cursor, arguments.branch2);
}

struct Branch {
    Branch(const TripleRun& branchRun, const TripleRun& main, bool convert);

    const TripleRun& run;
    TripleFrame frame;
    AcGePoint3d runStart;
    AcGePoint3d end;   // far end of the run, later the wye's
    SectionSize size;  // of the wye's end
    bool needsTransition = false;
};

// The wye has one height. A branch keeps a width of its own only when its height is the main's, or when its
// width is and only the height has to change.
void fitToMain(Branch& branch, const TripleRun& main) {
    const SectionSize size = outerSize(main);
    const bool sharesSize = size.width == branch.size.width || size.height == branch.size.height;
    if (!sharesSize || isPlainRectangular(main) != isPlainRectangular(branch.run)) {
        branch.size = size;
        branch.needsTransition = true;
    } else if (size.height != branch.size.height) {
        branch.size.height = size.height;
        branch.needsTransition = true;
    }
}

Branch::Branch(const TripleRun& branchRun, const TripleRun& main, bool convert)
    : run(branchRun), frame(computeTripleFrame(run, &main, convert)),
      runStart(centerStartPoint(run, &frame, convert)), end(centerEndPoint(run, &frame, convert)),
      size(outerSize(run)) {
    fitToMain(*this, main);
}

class Wye {
public:
    explicit Wye(const WyeArguments& arguments);

    // False when the solid refuses it.
    bool build(qn_hvacSolid& solid);
    // From the end of the wye to the branch's own size. Null when the branch needs none.
    SolidPointer buildTransition(const Branch& branch) const;

    const Branch& branch1() const { return branch1_; }
    const Branch& branch2() const { return branch2_; }
    double headLength() const { return junction_.distanceTo(start_); }

private:
    const WyeArguments& given_;
    TripleFrame frame_;
    AcGePoint3d start_;  // far end of the main, later the wye's
    AcGePoint3d junction_;
    Branch branch1_;
    Branch branch2_;
};

Wye::Wye(const WyeArguments& arguments)
    : given_(arguments),
      frame_(computeTripleFrame(arguments.main, &arguments.branch1, arguments.options.convert)),
      start_(centerStartPoint(arguments.main, &frame_, arguments.options.convert)),
      junction_(centerEndPoint(arguments.main, &frame_, arguments.options.convert)),
      branch1_(arguments.branch1, arguments.main, arguments.options.convert),
      branch2_(arguments.branch2, arguments.main, arguments.options.convert) {}

bool Wye::build(qn_hvacSolid& solid) {
    const SectionSize size = outerSize(given_.main);
    const SectionSize& size1 = branch1_.size;
    const SectionSize& size2 = branch2_.size;
    const AcGeVector3d* const frame1 = branch1_.frame.data();
    const AcGeVector3d* const frame2 = branch2_.frame.data();
    const bool isBox = isPlainRectangular(given_.main);
    std::array<std::array<AModeler::Point3d, 8>, 3> legs;
    std::array<std::array<AcGePoint3d, 8>, 3> axes;
    return solid.addWyePrep(start_, size.width, size.height, branch1_.end, size1.width, size1.height,
                            branch2_.end, size2.width, size2.height, frame_.data(), frame1, frame2, isBox,
                            legs[0].data(), legs[1].data(), legs[2].data(), axes[0].data(), axes[1].data(),
                            axes[2].data(), true, collar) &&
           solid.addWye(start_, size.width, size.height, branch1_.end, size1.width, size1.height,
                        branch2_.end, size2.width, size2.height, junction_, frame_.data(), frame1, frame2,
                        isBox, legs[0].data(), legs[1].data(), legs[2].data(), axes[0].data(), axes[1].data(),
                        axes[2].data(), given_.options.bodyFlags);
}

// Drawn also when the solid refuses the body: as an empty solid.
SolidPointer Wye::buildTransition(const Branch& branch) const {
    if (!branch.needsTransition) {
        return nullptr;
    }
    const bool isMainPlain = isPlainRectangular(given_.main);
    const bool isBranchPlain = isPlainRectangular(branch.run);
    const SectionSize runSize = outerSize(branch.run);
    const double length = transitionLength(branch.size, isMainPlain, runSize, isBranchPlain, transitionSlope);
    SolidPointer solid = newSolid();
    if (solid) {
        addTransition(*solid, {branch.end, isMainPlain, branch.size, branch.frame},
                      {branch.end + length * branch.frame.x(), isBranchPlain, runSize, branch.frame},
                      given_.options.bodyFlags);
    }
    return solid;
}

// Without the branch's transition, whose length callers add themselves.
double tailLength(const Branch& branch) {
    return branch.runStart.distanceTo(branch.end);
}

}  // namespace

HandlerStatus drawTripleWye() {
    acedRetNil();
    const ArgumentList list;
    ArgCursor cursor = list.first();
    WyeArguments arguments;
    if (!readWye(cursor, arguments)) {
        return HandlerStatus::wrongType;
    }
    Wye wye(arguments);
    SolidPointer solid = newSolid();
    if (!solid || !wye.build(*solid)) {
        return HandlerStatus::success;
    }
    SolidPointer transition1 = wye.buildTransition(wye.branch1());
    SolidPointer transition2 = wye.buildTransition(wye.branch2());
    ResultList result;
    beginResultList(result);
    addNamedEntity(result, L"en1", addToDrawing(std::move(solid)));
    addNamedEntity(result, L"en2", addToDrawing(std::move(transition1)));
    addNamedEntity(result, L"en3", addToDrawing(std::move(transition2)));
    addNamedReal(result, L"dHeadLength", wye.headLength());
    addNamedReal(result, L"dTailLength1", tailLength(wye.branch1()));
    addNamedReal(result, L"dTailLength2", tailLength(wye.branch2()));
    endAndReturnList(result);
    return HandlerStatus::success;
}

}  // namespace tessary
