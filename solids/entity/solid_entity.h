#pragma once

// The solid entity: bodies, and what they cover together.

#include "solids/api/hvac_solid.h"
#include "solids/entity/part.h"
#include "solids/entity/surface.h"
#include "solids/shapes/transition.h"

#include <memory>
#include <optional>
#include <vector>

namespace solids {

// Bodies are kept one by one until the solid is filed or read: only operations that build it up know the last
// one from the others. They are joined when that is asked for first: to be filed, drawn, measured, merged.
// The joined surface is kept, and what is drawn of it too.
//
// Bodies whose union cannot be held by coordinates of double precision stay side by side: they are drawn and
// stored, but not measured and not merged with others, so that nobody is given a volume that counts something
// twice.
class SolidEntity final : public qn_hvacSolid {
public:
    // Null while the class is not registered.
    static AcRxClass* desc();
    AcRxClass* isA() const override;

    bool addTransition(const AcGePoint3d& start, bool startRectangular, double startWidth, double startHeight,
                       const AcGePoint3d& end, bool endRectangular, double endWidth, double endHeight,
                       const AcGeVector3d* startFrame, const AcGeVector3d* endFrame, int bodyFlags) override;
    bool subtractTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                            double startHeight, const AcGePoint3d& end, bool endRectangular, double endWidth,
                            double endHeight, const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                            int bodyFlags) override;
    bool addRadiusElbow(AcGePoint3d& start, double startWidth, double startHeight, double thickness1,
                        double thickness2, AcGePoint3d& end, double endWidth, double endHeight,
                        const AcGeVector3d* startFrame, const AcGeVector3d* endFrame, bool rectangular,
                        double radiusRatio, bool roundThroat, int bodyFlags, bool turnsFreely) override;
    bool addCableTraySquareRadiusElbow(AcGePoint3d& start, double width, double height, AcGePoint3d& end,
                                       const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                       double radiusRatio, int bodyFlags) override;
    bool addSquareElbowPrep(AcGePoint3d& start, double startWidth, double startHeight, AcGePoint3d& end,
                            double endWidth, double endHeight, const AcGeVector3d* startFrame,
                            const AcGeVector3d* endFrame, bool rectangular, AModeler::Point3d* startLeg,
                            AModeler::Point3d* endLeg, AcGePoint3d* axis, bool withCollars,
                            double collar) override;
    bool addSquareElbow(const AcGePoint3d& start, double startWidth, double startHeight,
                        const AcGePoint3d& end, double endWidth, double endHeight,
                        const AcGeVector3d* startFrame, const AcGeVector3d* endFrame, bool rectangular,
                        const AModeler::Point3d* startLeg, const AModeler::Point3d* endLeg,
                        const AcGePoint3d* axis, int bodyFlags) override;
    bool addWyePrep(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                    double height1, AcGePoint3d& end2, double width2, double height2,
                    const AcGeVector3d* frame, const AcGeVector3d* frame1, const AcGeVector3d* frame2,
                    bool rectangular, AModeler::Point3d* mainLeg, AModeler::Point3d* leg1,
                    AModeler::Point3d* leg2, AcGePoint3d* mainAxis, AcGePoint3d* axis1, AcGePoint3d* axis2,
                    bool withCollars, double collar) override;
    bool addWye(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                double height1, AcGePoint3d& end2, double width2, double height2, AcGePoint3d& junction,
                const AcGeVector3d* frame, const AcGeVector3d* frame1, const AcGeVector3d* frame2,
                bool rectangular, const AModeler::Point3d* mainLeg, const AModeler::Point3d* leg1,
                const AModeler::Point3d* leg2, const AcGePoint3d* mainAxis, const AcGePoint3d* axis1,
                const AcGePoint3d* axis2, int bodyFlags) override;
    // The cut is an end that air leaves by, open when the body's last end is: ducts are cut where others
    // join.
    bool sliceLast(const AcGePoint3d& point1, const AcGePoint3d& point2, const AcGePoint3d& point3,
                   const AcGePoint3d& keptSide) override;
    bool addSkin(AcGePoint3dArray points, double thickness) override;
    void clearBodies() override;
    bool doUnion(const qn_hvacSolid& other) override;
    void setFitting(HvacFitting fitting) override;

    // All bodies as one; a part without surface for an empty solid.
    const Part& joined() const;
    const Surface& surface() const;  // of the joined mesh
    int bodyCount() const { return static_cast<int>(parts_.size()); }
    const ACHAR* kindText() const;  // for people

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    // Edges and faces for all views, and the centre lines; then for each view the outlines of what is round.
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    void subViewportDraw(AcGiViewportDraw* viewportDraw) override;
    void subList() const override;
    // eNotApplicable for an empty solid, and for bodies that could not be joined.
    Acad::ErrorStatus subGetSolidMeasures(AcDbSolidMeasures& measures) const override;
    // Faces of the surface without the open ends.
    Acad::ErrorStatus subExplode(AcDbEntityArray& faces) const override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using qn_hvacSolid::subGetOsnapPoints;
    // The ends of the centre lines, and the middle of the extents. Whichever is moved takes the whole solid
    // along: a fitting is of one size.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using qn_hvacSolid::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using qn_hvacSolid::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;

private:
    // Operations end with one of these; false when the solid is not open for write.
    bool addPart(std::optional<Body> body);
    bool replaceParts(std::vector<Part> parts);
    // What filing has read and found sound.
    void takeFiled(std::int32_t fitting, Part part);

    std::vector<Part> parts_;
    HvacFitting fitting_ = HvacFitting::fromBodies;
    // Null: not asked for since the bodies changed. Of a solid with one part the part is the joined one.
    mutable std::unique_ptr<const Part> joined_;
    mutable std::unique_ptr<const Surface> surface_;
};

}  // namespace solids
