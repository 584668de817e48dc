#pragma once

// World drawing: what entities draw through.

#include "host/api/database_ids.h"
#include "host/api/geometry.h"
#include "host/api/rx.h"

class AcGiWorldDraw;
class AcGiViewportDraw;

// Something that can draw itself.
class DRAFTHOST_API AcGiDrawable : public AcRxObject {
public:
    static AcRxClass* desc();
    AcRxClass* isA() const override;
    enum DrawableType { kGeometry = 0, kDistantLight = 1, kPointLight = 2, kSpotLight = 3 };
    virtual DrawableType drawableType() const { return kGeometry; }
    // The cursor rests on the part of that marker. True: the drawable wants to be drawn anew for it.
    virtual bool rolloverHit(std::uint64_t subEntity, std::uint64_t mouseFlags, bool reset);
    // Draws into the world draw. True: everything is drawn, no drawing by viewport is needed.
    bool worldDraw(AcGiWorldDraw* worldDraw);
    // Draws what depends on the direction of view. Called after worldDraw said that something is left.
    void viewportDraw(AcGiViewportDraw* viewportDraw);

protected:
    virtual bool subWorldDraw(AcGiWorldDraw* worldDraw) = 0;
    virtual void subViewportDraw(AcGiViewportDraw* viewportDraw);
};

// Colours are indices: 0 by block, 1 to 255, 256 by layer. Null ids mean by layer.
class DRAFTHOST_API AcGiSubEntityTraits {
public:
    virtual ~AcGiSubEntityTraits();
    virtual void setColor(std::uint16_t index) = 0;
    virtual std::uint16_t color() const = 0;
    virtual void
    setBackgroundColor() = 0;  // paints with the colour behind the drawing until the next setColor
    virtual void setTrueColor(std::uint32_t rgb) = 0;  // 0x00RRGGBB; overrides the index until setColor
    virtual void setLayer(AcDbObjectId layer) = 0;
    virtual AcDbObjectId layerId() const = 0;
    virtual void setLineType(AcDbObjectId linetype) = 0;
    virtual AcDbObjectId lineTypeId() const = 0;
    virtual void setLineTypeScale(double scale) = 0;
    virtual double lineTypeScale() const = 0;
    virtual void setLineWeight(int hundredthsOfMillimetre) = 0;  // -1 by layer, -2 by block, -3 default
    virtual int lineWeight() const = 0;
    virtual void setSelectionMarker(std::int64_t marker) = 0;
    virtual void setFill(bool filled) = 0;  // polygons: filled or outlined
};

// Look of a run of text.
struct AcGiTextStyle {
    const ACHAR* fontFile = L"";  // "arial.ttf", "txt.shx"; empty: the stroke font
    const ACHAR* typeface = L"";  // TrueType family, wins over fontFile when not empty
    double textSize = 1.0;        // cap height, drawing units
    double xScale = 1.0;          // width factor
    double obliqueAngle = 0.0;
    double trackingPercent = 1.0;  // space between characters
    bool bold = false, italic = false, backward = false, upsideDown = false, underlined = false,
         overlined = false;
};

// Of the edges of a shell, in the order in which its list of faces names them: the first face's from its
// first point to its second, and so on. Null members: all edges are shown.
struct AcGiEdgeData {
    const bool* visibility = nullptr;
};
// Of the faces of a shell, in their order. Null members: all faces are shown.
struct AcGiFaceData {
    const bool* visibility = nullptr;  // false: drawn neither filled nor by its edges
};

class DRAFTHOST_API AcGiWorldGeometry {
public:
    virtual ~AcGiWorldGeometry();
    // Each returns true when drawing was cut off by the caller (never, here); coordinates are model
    // coordinates.
    virtual bool polyline(std::uint32_t count, const AcGePoint3d* points,
                          const AcGeVector3d* normal = nullptr, std::int64_t marker = -1) = 0;
    virtual bool polygon(std::uint32_t count, const AcGePoint3d* points) = 0;
    // Filled area bounded by several closed contours, even-odd rule. counts has contourCount entries.
    virtual bool polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                             const AcGePoint3d* points) = 0;
    // Flat faces over common points. faceList: for each face its number of points, then their indices,
    // counter-clockwise seen from outside; faceListSize counts all these numbers. Wire-frame pictures show
    // the edges, shaded ones the faces too; where an edge is hidden, the faces beside it are parts of one
    // curved surface. Hidden faces still bound the body that a closed shell encloses. Unless an
    // implementation says otherwise, only the edges that are shown are drawn, as polylines.
    virtual bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
                       const std::int32_t* faceList, const AcGiEdgeData* edges = nullptr,
                       const AcGiFaceData* faces = nullptr);
    virtual bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) = 0;
    // Arc from the start direction through sweepAngle, counter-clockwise about normal.
    virtual bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                             const AcGeVector3d& startDirection, double sweepAngle) = 0;
    // One run of text without format codes; position is the left end of the base line. length -1: up to the
    // null.
    virtual bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                      const ACHAR* message, int length, const AcGiTextStyle& style) = 0;
    // Another drawable in its place, with what it draws for the view. True: nothing of it is left to draw.
    virtual bool draw(AcGiDrawable* drawable) = 0;
    virtual void pushModelTransform(const AcGeMatrix3d& matrix) = 0;
    virtual void popModelTransform() = 0;
};

class DRAFTHOST_API AcGiWorldDraw {
public:
    virtual ~AcGiWorldDraw();
    virtual AcGiWorldGeometry& geometry() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
    // Largest distance between a curve and the chords drawn for it.
    virtual double deviation() const = 0;
    virtual bool regenAbort() const { return false; }
};

// A view of the drawing.
class DRAFTHOST_API AcGiViewport {
public:
    virtual ~AcGiViewport();
    // Unit vector from the drawing towards the eye; views are parallel projections. In the coordinates of the
    // entity that is being drawn.
    virtual AcGeVector3d viewDir() const = 0;
};

// Drawing for one view: what the world draw cannot say because it depends on where one looks from.
class DRAFTHOST_API AcGiViewportDraw {
public:
    virtual ~AcGiViewportDraw();
    virtual AcGiWorldGeometry& geometry() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
    virtual const AcGiViewport& viewport() const = 0;
    // As of the world draw.
    virtual double deviation() const = 0;
};
