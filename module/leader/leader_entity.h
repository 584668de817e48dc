#pragma once

// A leader: two straight segments from a start point over a knee towards an end point, and a symbol there.

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/filer.h"

namespace tessary {

// The symbol is a block, drawn at the end point, turned as the second segment and scaled evenly by the
// offset. The second segment ends the offset before the end point, which is the rim of a symbol that is drawn
// with radius 1.
//
// Operations that change the leader need it open for write and return eNotOpenForWrite, having changed
// nothing, when it is not. Queries do not look how the leader is open: the host asks closed ones too when it
// draws.
class QNLeader : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(QNLeader)
    // Registers the class with the host, once. Ends the host when another class has its name.
    static void rxInit();

    // All points at the origin, no symbol.
    QNLeader();
    // World coordinates. offset: drawing units. blockId: may be null. layerId: a hidden one leaves the leader
    // without a layer, so that it gets the current one when it is appended to a drawing.
    QNLeader(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end, double offset,
             AcDbObjectId blockId, AcDbObjectId layerId);

    const AcGePoint3d& startPoint() const { return start_; }
    const AcGePoint3d& middlePoint() const { return middle_; }
    const AcGePoint3d& endPoint() const { return end_; }
    // Where the second segment ends. Beyond the knee when the offset is longer than the segment.
    AcGePoint3d tailPoint() const;
    AcDbObjectId blockId() const { return blockId_; }  // of the symbol; null when there is none
    double offset() const { return offset_; }
    // The symbol's placement; never in a database.
    const AcDbBlockReference& blockReference() const { return blockReference_; }

    // eInvalidInput for coordinates that are no numbers.
    Acad::ErrorStatus setPoints(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end);
    // Scales the symbol; it stays where it is. eInvalidInput for what is no number.
    Acad::ErrorStatus setOffset(double offset);
    // Finds the block as findOrLoadBlock does. False: there is none, and nothing is changed.
    bool setBlock(const ACHAR* blockName);
    // doSubents: also for the symbol, which otherwise stays on its layer.
    Acad::ErrorStatus setLayer(AcDbObjectId layerId, bool doSubents = true,
                               bool allowHiddenLayer = false) override;
    using AcDbCurve::setLayer;
    // Moves the symbol to the end point and turns it as the second segment. Does not open the leader for
    // write: for those who have changed its points already.
    void updateBlockPlacement();

    bool rolloverHit(std::uint64_t subEntity, std::uint64_t mouseFlags, bool reset) override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    Acad::ErrorStatus audit(AcDbAuditInfo* info) override;
    DrawableType drawableType() const override;
    bool isPlanar() const override;

    // eMakeMeProxy for data of a later version.
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    // The symbol is not in DXF files: a leader that was read from one has none until setBlock.
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    void subList() const override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbCurve::subGetOsnapPoints;
    // Moves the points only: the symbol's size is the offset's, whatever the matrix scales, and the symbol
    // stays parallel to the XY plane. eInvalidInput when a point would leave the range of numbers.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    // Two lines, then what the block is made of.
    Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbCurve::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbCurve::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;

public:
    // As a curve a leader is the straight line from its start point to its end point, past the knee, with the
    // distance from the start point as parameter. Nothing is refused: distances off the line lie on its
    // extension.
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& param) const override;
    Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& distance) const override;
    Acad::ErrorStatus getPointAtDist(double distance, AcGePoint3d& point) const override;

    // Where the segments and the symbol meet the other entity, appended. These hide the host's, whose markers
    // have 64 bits, and stand in for them with nobody but callers that name this class: whoever holds the
    // leader as an entity gets what the host answers for entities of modules, and programs were made with
    // that answer.
    virtual Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                            const AcGePlane& plane, AcGePoint3dArray& points,
                                            std::int32_t thisMarker = 0, std::int32_t otherMarker = 0) const;
    virtual Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                            AcGePoint3dArray& points, std::int32_t thisMarker = 0,
                                            std::int32_t otherMarker = 0) const;

private:
    AcDbLine firstSegment() const;
    AcDbLine secondSegment() const;
    // Asks the first segment, the second one and the symbol; stops at the first failing status and returns
    // it.
    template <class Question>
    Acad::ErrorStatus askParts(Question ask) const;
    // From start to end point; shorter than a unit when the points are the same.
    AcGeVector3d direction() const;
    // Behind the version number.
    Acad::ErrorStatus readMembers(AcDbDwgFiler& filer, std::int32_t version);

    AcGePoint3d start_;
    AcGePoint3d middle_;
    AcGePoint3d end_;
    AcDbObjectId blockId_;
    AcDbBlockReference blockReference_;
    // A symbol of its block's own size. Everything that makes a leader to be used sets the offset.
    double offset_ = 1.0;
};

template <class Question>
Acad::ErrorStatus QNLeader::askParts(Question ask) const {
    if (const Acad::ErrorStatus status = ask(firstSegment()); status != Acad::eOk) {
        return status;
    }
    if (const Acad::ErrorStatus status = ask(secondSegment()); status != Acad::eOk) {
        return status;
    }
    return ask(blockReference_);
}

}  // namespace tessary
