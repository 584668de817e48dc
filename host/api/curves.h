#pragma once

// Curve entities: line, circle, arc, lightweight polyline.

#include "host/api/entity.h"

// Distances are measured along the curve from its start point. Parameters: a line's is the distance from its
// start, a circle's and an arc's the angle, a polyline's the vertex index plus the fraction of the segment's
// length.
class DRAFTHOST_API AcDbCurve : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbCurve)
    virtual bool isClosed() const;
    virtual bool isPeriodic() const;
    virtual Acad::ErrorStatus getStartParam(double& param) const;
    virtual Acad::ErrorStatus getEndParam(double& param) const;
    virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
    // eInvalidInput for a parameter or distance off the curve, or a point farther from it than the tolerance
    // allows.
    virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const;
    virtual Acad::ErrorStatus getDistAtParam(double param, double& distance) const;
    virtual Acad::ErrorStatus getParamAtDist(double distance, double& param) const;
    virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& distance) const;
    virtual Acad::ErrorStatus getPointAtDist(double distance, AcGePoint3d& point) const;
    // Tangent, d(point)/d(parameter).
    virtual Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& derivative) const;
    virtual Acad::ErrorStatus getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const;
    // extend: the curve is taken as lengthened (lines infinite, arcs full circles).
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                                bool extend = false) const;
    // Closest where curve and point are seen along the direction; the result lies on the curve.
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                                AcGePoint3d& result, bool extend = false) const;
    virtual Acad::ErrorStatus getArea(double& area) const;

protected:
    AcDbCurve();  // for classes of modules
    explicit AcDbCurve(drafthost::ObjectImp* imp);
};

class DRAFTHOST_API AcDbLine : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbLine)
    AcDbLine();
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);
    AcGePoint3d startPoint() const;
    AcGePoint3d endPoint() const;
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
    double thickness() const;
    AcGeVector3d normal() const;

    bool isClosed() const override;
    bool isPeriodic() const override;
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& param) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& derivative) const override;
    using AcDbCurve::getFirstDeriv;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                        bool extend) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                        AcGePoint3d& result, bool extend) const override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetOsnapPoints;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbEntity::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;
};

class DRAFTHOST_API AcDbCircle : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbCircle)
    AcDbCircle();
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);
    AcGePoint3d center() const;  // world coordinates
    double radius() const;
    AcGeVector3d normal() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    Acad::ErrorStatus setRadius(double radius);
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    bool isClosed() const override;
    bool isPeriodic() const override;
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& param) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& derivative) const override;
    using AcDbCurve::getFirstDeriv;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                        bool extend) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                        AcGePoint3d& result, bool extend) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetOsnapPoints;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbEntity::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;
};

// Runs counter-clockwise about its normal from start angle to end angle. Equal angles: a full turn.
class DRAFTHOST_API AcDbArc : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbArc)
    AcDbArc();
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
    AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
            double endAngle);
    AcGePoint3d center() const;  // world coordinates
    double radius() const;
    double startAngle() const;  // in [0, 2 pi)
    double endAngle() const;    // in [0, 2 pi)
    double totalAngle() const;  // in (0, 2 pi]
    double length() const;
    AcGeVector3d normal() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    Acad::ErrorStatus setRadius(double radius);
    Acad::ErrorStatus setStartAngle(double angle);
    Acad::ErrorStatus setEndAngle(double angle);
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    bool isClosed() const override;
    bool isPeriodic() const override;
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& param) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& derivative) const override;
    using AcDbCurve::getFirstDeriv;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                        bool extend) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                        AcGePoint3d& result, bool extend) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetOsnapPoints;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbEntity::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;
};

// Lightweight polyline: vertices in one plane, straight and arc segments. A bulge is the tangent of a quarter
// of the arc's included angle, positive counter-clockwise from this vertex to the next.
class DRAFTHOST_API AcDbPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbPolyline)
    AcDbPolyline();
    unsigned numVerts() const;
    // Index from 0 to numVerts(). point: in the polyline's plane.
    Acad::ErrorStatus addVertexAt(unsigned index, const AcGePoint2d& point, double bulge = 0,
                                  double startWidth = 0, double endWidth = 0);
    Acad::ErrorStatus removeVertexAt(unsigned index);
    Acad::ErrorStatus getPointAt(unsigned index, AcGePoint2d& point) const;
    Acad::ErrorStatus getPointAt(unsigned index, AcGePoint3d& point) const;  // world coordinates
    Acad::ErrorStatus setPointAt(unsigned index, const AcGePoint2d& point);
    Acad::ErrorStatus getBulgeAt(unsigned index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned index, double& startWidth, double& endWidth) const;
    Acad::ErrorStatus setClosed(bool closed);
    double elevation() const;
    AcGeVector3d normal() const;

    bool isClosed() const override;
    bool isPeriodic() const override;
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& param) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& derivative) const override;
    using AcDbCurve::getFirstDeriv;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                        bool extend) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                        AcGePoint3d& result, bool extend) const override;
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetOsnapPoints;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbEntity::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const override;
    void subList() const override;
};
