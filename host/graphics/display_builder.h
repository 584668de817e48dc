#pragma once

// Turns the drawing calls of entities into the display list of a plan view: applies block transforms, cuts
// linetypes into dashes, and turns text into outlines.

#include "host/graphics/dasher.h"
#include "host/graphics/display_list.h"
#include "host/graphics/resolving_draw.h"

namespace drafthost::graphics {

// The model space of a drawing, in drawing order. Entities that somebody has open for writing are left out.
DisplayList buildDisplayList(const AcDbDatabase& database);

class DisplayBuilder final : public ResolvingDraw {
public:
    DisplayBuilder(const AcDbDatabase& database, double deviation);
    DisplayList take() { return std::move(list_); }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::int64_t marker) override;
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                     const AcGePoint3d* points) override;
    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override;
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& startDirection, double sweepAngle) override;
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
              const ACHAR* message, int length, const AcGiTextStyle& style) override;

private:
    AcGePoint2d toPlan(const AcGePoint3d& point) const { return (transform() * point).convert2d(); }
    bool addArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                const AcGeVector3d& start, double sweep);
    void addLine(Polyline2d line);
    template <class Shape>
    void add(Shape shape);

    DisplayList list_;
};

}  // namespace drafthost::graphics
