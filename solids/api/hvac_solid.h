#pragma once

// The solid entity of the companion module: sheet-metal fittings as closed bodies.
//
// The class lives in a binary of its own. Callers need no library of it: the operations are virtual, and the
// class is found in the host's class dictionary as long as its module is loaded.
//
// A solid is what its bodies cover together. An operation that fails returns false and leaves the solid as it
// was, and so its in/out arguments. Frames are three unit vectors in a row, at right angles and right-handed:
// X along the duct in the direction of flow, Y across it (the width's direction), Z the third axis (the
// height's); a frame's argument points to X. Points are world coordinates, sizes outer ones in drawing units;
// sizes that are not positive are refused, as is everything that is no number. Sections that are not
// rectangular are round when width and height agree, otherwise flat ovals.
//
// Pairs of operations Prep and build: the first finds out whether a body can be built and where it ends, and
// fills arrays that the caller provides and hands to the second untouched.

#include "host/api/entity.h"

namespace AModeler {

struct Point3d {
    double x = 0, y = 0, z = 0;
};

}  // namespace AModeler

// What body flags ask for, added together. Other bits are kept with the body and mean nothing.
enum HvacBodyFlags : int {
    kHvacClosedBody = 0,  // the plain closed body
    kHvacOpenStart = 1,   // its first end is drawn open: one sees into the duct
    kHvacOpenEnd = 2,     // the same for its last end, and of a wye for both branches' ends
    kHvacCenterline = 4,  // its centre line is drawn
};

// What a solid is called in lists of parts when its bodies alone do not tell.
enum class HvacFitting : int { fromBodies = 0, takeoff = 1, hanger = 2 };

class qn_hvacSolid : public AcDbEntity {
public:
    static constexpr const ACHAR* className = L"qn_hvacSolid";

    // Null while the companion module is not loaded.
    static AcRxClass* desc() {
        const auto* const classes = AcRxDictionary::cast(acrxSysRegistry()->at(ACRX_CLASS_DICTIONARY));
        return AcRxClass::cast(classes->at(className));
    }
    static qn_hvacSolid* cast(const AcRxObject* object) {
        const AcRxClass* const solids = desc();
        return object && solids && object->isKindOf(solids)
                   ? static_cast<qn_hvacSolid*>(const_cast<AcRxObject*>(object))
                   : nullptr;
    }
    // A new empty solid, caller owns. Null while the companion module is not loaded.
    static qn_hvacSolid* create() {
        const AcRxClass* const solids = desc();
        return solids ? static_cast<qn_hvacSolid*>(solids->create()) : nullptr;
    }

    // A straight body, or a transition from one section to another.
    virtual bool addTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                               double startHeight, const AcGePoint3d& end, bool endRectangular,
                               double endWidth, double endHeight, const AcGeVector3d* startFrame,
                               const AcGeVector3d* endFrame, int bodyFlags) = 0;
    // Takes what such a body covers away from all bodies, which become one. Refused when nothing would be
    // left.
    virtual bool subtractTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                                    double startHeight, const AcGePoint3d& end, bool endRectangular,
                                    double endWidth, double endHeight, const AcGeVector3d* startFrame,
                                    const AcGeVector3d* endFrame, int bodyFlags) = 0;

    // start, end: in, the far ends of the runs that the elbow joins; out, the elbow's own ends on their
    // centre lines. radiusRatio: centreline radius over startWidth. thickness1, thickness2: of the layers of
    // the wall, which lie inside the sizes. roundThroat: true; false is refused. Fails for runs that are
    // parallel, that pass each other too far off, or that leave no room for the radius.
    virtual bool addRadiusElbow(AcGePoint3d& start, double startWidth, double startHeight, double thickness1,
                                double thickness2, AcGePoint3d& end, double endWidth, double endHeight,
                                const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                bool rectangular, double radiusRatio, bool roundThroat, int bodyFlags,
                                bool turnsFreely) = 0;
    // The flat elbow of a cable tray: round at the throat, square at the heel. Arguments as above; a start
    // and end that are the elbow's ends already stay.
    virtual bool addCableTraySquareRadiusElbow(AcGePoint3d& start, double width, double height,
                                               AcGePoint3d& end, const AcGeVector3d* startFrame,
                                               const AcGeVector3d* endFrame, double radiusRatio,
                                               int bodyFlags) = 0;

    // The mitred elbow. The sizes across the plane of the bend must agree, otherwise it cannot be built.
    // collar: length of straight duct at both ends. startLeg, endLeg: 8 corners each of the box around a leg,
    // four at its free end, then four on the mitre. axis: 8 points, the start, the corner and the end of the
    // centre line, the rest the corner again.
    virtual bool addSquareElbowPrep(AcGePoint3d& start, double startWidth, double startHeight,
                                    AcGePoint3d& end, double endWidth, double endHeight,
                                    const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                    bool rectangular, AModeler::Point3d* startLeg, AModeler::Point3d* endLeg,
                                    AcGePoint3d* axis, bool withCollars, double collar) = 0;
    virtual bool addSquareElbow(const AcGePoint3d& start, double startWidth, double startHeight,
                                const AcGePoint3d& end, double endWidth, double endHeight,
                                const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                bool rectangular, const AModeler::Point3d* startLeg,
                                const AModeler::Point3d* endLeg, const AcGePoint3d* axis, int bodyFlags) = 0;

    // A wye: from the main, which ends in the junction, into two branches. The points are the far ends of the
    // three runs and become the wye's ends. legs: 8 corners each of the boxes around the legs of the main and
    // the branches. axes: 8 points each, for the main and each branch.
    virtual bool addWyePrep(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                            double height1, AcGePoint3d& end2, double width2, double height2,
                            const AcGeVector3d* frame, const AcGeVector3d* frame1, const AcGeVector3d* frame2,
                            bool rectangular, AModeler::Point3d* mainLeg, AModeler::Point3d* leg1,
                            AModeler::Point3d* leg2, AcGePoint3d* mainAxis, AcGePoint3d* axis1,
                            AcGePoint3d* axis2, bool withCollars, double collar) = 0;
    // junction: out, where the centre lines meet.
    virtual bool addWye(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                        double height1, AcGePoint3d& end2, double width2, double height2,
                        AcGePoint3d& junction, const AcGeVector3d* frame, const AcGeVector3d* frame1,
                        const AcGeVector3d* frame2, bool rectangular, const AModeler::Point3d* mainLeg,
                        const AModeler::Point3d* leg1, const AModeler::Point3d* leg2,
                        const AcGePoint3d* mainAxis, const AcGePoint3d* axis1, const AcGePoint3d* axis2,
                        int bodyFlags) = 0;

    // Cuts the body added last by the plane through the first three points and keeps the side of the fourth.
    // A body wholly on that side stays as it is. Refused when nothing would be left, when the points make no
    // plane, or without a body.
    virtual bool sliceLast(const AcGePoint3d& point1, const AcGePoint3d& point2, const AcGePoint3d& point3,
                           const AcGePoint3d& keptSide) = 0;

    // A thin body over the outline that the points make in order, planar or folded; the thickness lies on the
    // side from which they run counter-clockwise, on the other side when it is negative.
    virtual bool addSkin(AcGePoint3dArray points, double thickness) = 0;

    virtual void clearBodies() = 0;

    // Merges what the other solid covers into this one; the other is not changed. Both need not touch.
    // Refused when either is empty, and for the solid itself.
    virtual bool doUnion(const qn_hvacSolid& other) = 0;

    virtual void setFitting(HvacFitting fitting) = 0;
};
