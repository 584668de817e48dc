#include "host/editor/entity_outline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/database/nesting.h"
#include "host/geometry/shell.h"
#include "host/graphics/layer_looks.h"
#include "host/graphics/view_draw.h"

namespace drafthost::editor {

namespace {

constexpr double kChordAngle = std::numbers::pi / 48;

// Takes drawing calls; colours and linetypes do not matter, but what a layer hides cannot be picked at.
class Collector final : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    // database: of what is drawn; null: layers do not matter.
    explicit Collector(const AcDbDatabase* database) : database_(database) {}
    Outline take() { return std::move(outline_); }

    AcGiWorldGeometry& geometry() const override { return const_cast<Collector&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Collector&>(*this); }
    double deviation() const override { return 0; }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                  std::int64_t) override {
        if (count > 0 && !hidden())
            outline_.lines.push_back(plan(count, points));
        return false;
    }
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override {
        if (count > 0 && !hidden())
            outline_.areas.push_back(plan(count, points));
        return false;
    }
    bool polyPolygon(std::uint32_t contours, const std::uint32_t* counts,
                     const AcGePoint3d* points) override {
        for (std::uint32_t i = 0; i < contours; points += counts[i++])
            polygon(counts[i], points);
        return false;
    }
    // Picked by its edges, not inside of its faces.
    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override {
        if (!hidden())
            drawEdges(*this, readShell(pointCount, points, faceListSize, faceList, edges, faces));
        return false;
    }
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return circularArc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
    }
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& startDirection, double sweep) override {
        const int chords = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kChordAngle)));
        std::vector<AcGePoint3d> points;
        for (int i = 0; i <= chords; ++i) {
            AcGeVector3d direction = startDirection.normal();
            direction.rotateBy(sweep * i / chords, normal);
            points.push_back(center + direction * radius);
        }
        return polyline(static_cast<std::uint32_t>(points.size()), points.data(), nullptr, -1);
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
              const ACHAR* message, int length, const AcGiTextStyle& style) override {
        // Characters are about as wide as high: good enough to pick at.
        const auto count =
            length < 0 ? std::char_traits<wchar_t>::length(message) : static_cast<std::size_t>(length);
        const AcGeVector3d along =
            direction.normal() * (static_cast<double>(count) * style.textSize * style.xScale);
        const AcGeVector3d up = normal.crossProduct(direction).normal() * style.textSize;
        const AcGePoint3d box[] = {position, position + along, position + along + up, position + up};
        return polygon(4, box);
    }
    bool draw(AcGiDrawable* drawable) override {
        if (!drawable || depth_ >= kDeepestNesting)
            return true;
        const AcDbObjectId layer = layer_, blockLayer = blockLayer_;
        ++depth_;
        AcDbEntity* const entity = AcDbEntity::cast(drawable);
        if (!entity || enter(*entity)) {
            if (!entity || !addBox(*entity))
                drawWhole(*drawable);
        }
        --depth_;
        layer_ = layer;
        blockLayer_ = blockLayer;
        return true;
    }
    void pushModelTransform(const AcGeMatrix3d& matrix) override {
        transforms_.push_back(transform_);
        transform_ = transform_ * matrix;
    }
    void popModelTransform() override {
        if (transforms_.empty())
            return;
        transform_ = transforms_.back();
        transforms_.pop_back();
    }

    void setColor(std::uint16_t) override {}
    std::uint16_t color() const override { return 256; }
    void setBackgroundColor() override {}
    void setTrueColor(std::uint32_t) override {}
    void setLayer(AcDbObjectId layer) override { layer_ = layer; }
    AcDbObjectId layerId() const override { return layer_; }
    void setLineType(AcDbObjectId linetype) override { linetype_ = linetype; }
    AcDbObjectId lineTypeId() const override { return linetype_; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}

private:
    std::vector<AcGePoint2d> plan(std::uint32_t count, const AcGePoint3d* points) const {
        std::vector<AcGePoint2d> line;
        line.reserve(count);
        for (std::uint32_t i = 0; i < count; ++i)
            line.push_back((transform_ * points[i]).convert2d());
        return line;
    }

    // Everything is seen from above.
    void drawWhole(AcGiDrawable& drawable) {
        const AcDbObjectId layer = layer_;
        const AcGeMatrix3d transform = transform_;
        if (drawable.worldDraw(this))
            return;
        layer_ = layer;
        graphics::drawForView(drawable, *this, transform, AcGeVector3d::kZAxis);
    }

    // The layer that what is drawn now lies on: layer "0" of a block is its reference's.
    AcDbObjectId shownLayer() const {
        const bool isZero = layer_.isNull() || (database_ && layer_ == database_->layerZero());
        return isZero ? blockLayer_ : layer_;
    }
    bool hidden() { return database_ && layers_.of(shownLayer()).hidden(); }

    // Takes the entity's layer. False: the entity is not shown, with all that is in it.
    bool enter(const AcDbEntity& entity) {
        if (!entity.layerId().isNull())
            layer_ = entity.layerId();
        if (!entity.isVisible() || (database_ && layers_.of(shownLayer()).frozen))
            return false;
        if (entity.isKindOf(AcDbBlockReference::desc()))
            blockLayer_ = shownLayer();
        return true;
    }

    // Texts know their measures better than a drawing call does.
    bool addBox(const AcDbEntity& entity) {
        const bool isText = entity.isKindOf(AcDbText::desc()) || entity.isKindOf(AcDbMText::desc());
        constexpr int kInvisible = 1;
        const auto* const attribute = AcDbAttribute::cast(&entity);
        if (attribute && (attribute->flags() & kInvisible) != 0)
            return false;
        AcDbExtents box;
        if (!isText || entity.getGeomExtents(box) != Acad::eOk || !box.isValid())
            return false;
        const AcGePoint3d a = box.minPoint(), b = box.maxPoint();
        const AcGePoint3d corners[] = {a, {b.x, a.y, a.z}, {b.x, b.y, a.z}, {a.x, b.y, a.z}};
        polygon(4, corners);
        return true;
    }

    const AcDbDatabase* database_;
    graphics::LayerLooks layers_;
    Outline outline_;
    AcGeMatrix3d transform_;
    std::vector<AcGeMatrix3d> transforms_;
    AcDbObjectId layer_, blockLayer_, linetype_;
    int depth_ = 0;
};

double distanceToSegment(const AcGePoint2d& p, const AcGePoint2d& a, const AcGePoint2d& b) {
    const AcGeVector2d along = b - a;
    const double square = along.dotProduct(along);
    const double t = square > 0 ? std::clamp((p - a).dotProduct(along) / square, 0.0, 1.0) : 0.0;
    return p.distanceTo(a + along * t);
}

double distanceToLine(const std::vector<AcGePoint2d>& line, const AcGePoint2d& point) {
    double least = point.distanceTo(line.front());
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        least = std::min(least, distanceToSegment(point, line[i], line[i + 1]));
    }
    return least;
}

// Even-odd rule.
bool isInside(const std::vector<AcGePoint2d>& corners, const AcGePoint2d& p) {
    bool inside = false;
    for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
        const AcGePoint2d& a = corners[i];
        const AcGePoint2d& b = corners[j];
        if ((a.y > p.y) == (b.y > p.y))
            continue;
        if (p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

double side(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

bool isOn(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& p) {
    return p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

bool segmentsMeet(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c, const AcGePoint2d& d) {
    const double s1 = side(a, b, c), s2 = side(a, b, d), s3 = side(c, d, a), s4 = side(c, d, b);
    if (((s1 > 0) != (s2 > 0)) && ((s3 > 0) != (s4 > 0)) && s1 != 0 && s2 != 0 && s3 != 0 && s4 != 0)
        return true;
    return (s1 == 0 && isOn(a, b, c)) || (s2 == 0 && isOn(a, b, d)) || (s3 == 0 && isOn(c, d, a)) ||
           (s4 == 0 && isOn(c, d, b));
}

bool meetsBorder(const std::vector<AcGePoint2d>& line, const Region& region) {
    const std::size_t corners = region.corners.size();
    const std::size_t sides = region.fence ? corners - 1 : corners;
    for (std::size_t i = 0; i < std::max<std::size_t>(line.size(), 2) - 1; ++i) {
        const AcGePoint2d& a = line[i];
        const AcGePoint2d& b = line[std::min(i + 1, line.size() - 1)];
        for (std::size_t j = 0; j < sides; ++j) {
            if (segmentsMeet(a, b, region.corners[j], region.corners[(j + 1) % corners]))
                return true;
        }
    }
    return false;
}

std::vector<AcGePoint2d> closedLine(std::vector<AcGePoint2d> area) {
    area.push_back(area.front());
    return area;
}

bool lineTouches(const std::vector<AcGePoint2d>& line, const Region& region) {
    return (!region.fence && isInside(region.corners, line.front())) || meetsBorder(line, region);
}

}  // namespace

Outline outlineOf(AcDbEntity& entity) {
    Collector collector(entity.database());
    collector.draw(&entity);
    return collector.take();
}

std::optional<double> distanceTo(const Outline& outline, const AcGePoint2d& point) {
    if (outline.empty())
        return std::nullopt;
    double least = std::numeric_limits<double>::max();
    for (const auto& area : outline.areas) {
        if (isInside(area, point))
            return 0.0;
        least = std::min(least, distanceToLine(closedLine(area), point));
    }
    for (const auto& line : outline.lines)
        least = std::min(least, distanceToLine(line, point));
    return least;
}

bool liesInside(const Outline& outline, const Region& region) {
    if (outline.empty() || region.corners.size() < 3 || region.fence)
        return false;
    const auto inside = [&](const std::vector<AcGePoint2d>& line) {
        return isInside(region.corners, line.front()) && !meetsBorder(line, region);
    };
    return std::all_of(outline.lines.begin(), outline.lines.end(), inside) &&
           std::all_of(outline.areas.begin(), outline.areas.end(),
                       [&](const auto& area) { return inside(closedLine(area)); });
}

bool touches(const Outline& outline, const Region& region) {
    if (region.corners.size() < (region.fence ? 2 : 3))
        return false;
    return std::any_of(outline.lines.begin(), outline.lines.end(),
                       [&](const auto& line) { return lineTouches(line, region); }) ||
           std::any_of(outline.areas.begin(), outline.areas.end(), [&](const auto& area) {
               return lineTouches(closedLine(area), region) || isInside(area, region.corners.front());
           });
}

}  // namespace drafthost::editor
