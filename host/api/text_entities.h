#pragma once

// Text entities: single-line text, attributes, multiline text.

#include "host/api/entity.h"

// Single-line text. Position and alignment point are in the text's plane coordinate system raised to world
// coordinates.
class DRAFTHOST_API AcDbText : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbText)
    AcDbText();
    AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = AcDbObjectId::kNull,
             double height = 0, double rotation = 0);
    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& point);
    AcGePoint3d alignmentPoint() const;
    Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& point);
    const ACHAR* textString() const;  // valid until the text changes
    Acad::ErrorStatus setTextString(const ACHAR* text);
    double height() const;
    Acad::ErrorStatus setHeight(double height);
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);
    double widthFactor() const;
    double oblique() const;
    int horizontalMode() const;  // 0 left, 1 centre, 2 right, 3 aligned, 4 middle, 5 fit
    int verticalMode() const;    // 0 base line, 1 bottom, 2 middle, 3 top
    Acad::ErrorStatus setHorizontalMode(int mode);
    Acad::ErrorStatus setVerticalMode(int mode);
    AcGeVector3d normal() const;
    AcDbObjectId textStyle() const;
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    explicit AcDbText(drafthost::ObjectImp* imp);
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

class DRAFTHOST_API AcDbAttributeDefinition : public AcDbText {
public:
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition)
    AcDbAttributeDefinition();
    const ACHAR* tag() const;
    const ACHAR* prompt() const;
    int flags() const;  // 1 invisible, 2 constant, 4 verify, 8 preset
    Acad::ErrorStatus setTag(const ACHAR* tag);
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
};

class DRAFTHOST_API AcDbAttribute : public AcDbText {
public:
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
    AcDbAttribute();
    const ACHAR* tag() const;
    int flags() const;
    Acad::ErrorStatus setTag(const ACHAR* tag);
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
};

// Multiline text with format codes, broken into lines at a width.
class DRAFTHOST_API AcDbMText : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbMText)
    enum AttachmentPoint : int {
        kTopLeft = 1,
        kTopCenter,
        kTopRight,
        kMiddleLeft,
        kMiddleCenter,
        kMiddleRight,
        kBottomLeft,
        kBottomCenter,
        kBottomRight
    };
    AcDbMText();
    // With format codes. contents(): caller releases with acutDelString.
    ACHAR* contents() const;
    Acad::ErrorStatus setContents(const ACHAR* text);
    AcGePoint3d location() const;
    Acad::ErrorStatus setLocation(const AcGePoint3d& point);
    double width() const;  // reference width; 0: lines are not wrapped
    Acad::ErrorStatus setWidth(double width);
    double textHeight() const;  // cap height of text without a height code
    Acad::ErrorStatus setTextHeight(double height);
    AcDbObjectId textStyle() const;
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);  // eWrongObjectType for an id of another class
    AttachmentPoint attachment() const;
    // eInvalidInput for codes outside 1 to 9; the attachment stays.
    Acad::ErrorStatus setAttachment(AttachmentPoint point);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput for a vector of no length
    AcGeVector3d direction() const;
    Acad::ErrorStatus
    setDirection(const AcGeVector3d& direction);  // eInvalidInput for no length or along the normal
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);
    double lineSpacingFactor() const;
    Acad::ErrorStatus setLineSpacingFactor(double factor);  // 0.25 to 4

    bool backgroundFillOn() const;
    Acad::ErrorStatus setBackgroundFill(bool on);
    double backgroundScaleFactor() const;
    Acad::ErrorStatus setBackgroundScaleFactor(double factor);  // 1 to 5
    bool useBackgroundColorOn() const;
    Acad::ErrorStatus setUseBackgroundColor(bool on);

    // Measures of the laid-out text, drawing units.
    double actualWidth() const;  // widest line
    // worldDraw may be null.
    double
    actualHeight(AcGiWorldDraw* worldDraw = nullptr) const;  // top of the first line to bottom of the last
    double ascent() const;                                   // of the first line, above its base line
    double descent() const;  // of the last line, below its base line; positive

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
