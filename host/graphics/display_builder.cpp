#include "host/graphics/display_builder.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <numbers>

#include "host/database/nesting.h"
#include "host/text/outlines.h"

namespace drafthost::graphics {

namespace {

constexpr double kDefaultWeight = 25;  // hundredths of a millimetre
constexpr double kDeviationOfExtents = 1.0 / 20000;

}  // namespace

DisplayBuilder::DisplayBuilder(const AcDbDatabase& database, double deviation)
    : database_(database), deviation_(deviation) {
    block_.layer = database.layerZero();
    traits_.layer = block_.layer;
}

void DisplayBuilder::setColor(std::uint16_t index) {
    traits_.color = index;
    traits_.trueColor = -1;
    traits_.background = false;
}

AcDbObjectId DisplayBuilder::effectiveLayer() const {
    return traits_.layer.isNull() || traits_.layer == database_.layerZero() ? block_.layer : traits_.layer;
}

Rgb DisplayBuilder::effectiveColor() {
    if (traits_.background)
        return kBackground;
    if (traits_.trueColor >= 0)
        return rgbOf(static_cast<std::uint32_t>(traits_.trueColor));
    if (traits_.color == 0)
        return block_.color;
    return traits_.color == 256 ? layerLook().color : colorOfIndex(traits_.color);
}

AcDbObjectId DisplayBuilder::effectiveLinetype() {
    if (traits_.linetype == database_.byBlockLinetype())
        return block_.linetype;
    if (traits_.linetype.isNull() || traits_.linetype == database_.byLayerLinetype()) {
        return layerLook().linetype;
    }
    return traits_.linetype;
}

int DisplayBuilder::effectiveWeight() {
    if (traits_.lineWeight == AcDb::kLnWtByBlock)
        return block_.lineWeight;
    return traits_.lineWeight == AcDb::kLnWtByLayer ? layerLook().lineWeight : traits_.lineWeight;
}

const std::vector<double>& DisplayBuilder::pattern(AcDbObjectId linetype) {
    const auto [found, isNew] = patterns_.try_emplace(linetype);
    if (isNew) {
        const AcDbObjectPointer<AcDbLinetypeTableRecord> record(linetype, AcDb::kForRead);
        for (int i = 0; record && i < record->numDashes(); ++i)
            found->second.push_back(record->dashLengthAt(i));
    }
    return found->second;
}

std::vector<double> DisplayBuilder::currentPattern() {
    const AcDbObjectId linetype = effectiveLinetype();
    if (linetype.isNull())
        return {};
    std::vector<double> scaled = pattern(linetype);
    const double scale = database_.ltscale() * traits_.linetypeScale;
    for (double& element : scaled)
        element *= scale;
    return scaled;
}

template <class Shape>
void DisplayBuilder::add(Shape shape) {
    const int weight = effectiveWeight();
    list_.items.push_back({effectiveColor(),
                           static_cast<float>((weight >= 0 ? weight : kDefaultWeight) / 100.0),
                           std::move(shape)});
}

void DisplayBuilder::addLine(Polyline2d line) {
    std::vector<Polyline2d> pieces;
    appendDashes(line, currentPattern(), pieces);
    for (Polyline2d& piece : pieces)
        add(std::move(piece));
}

bool DisplayBuilder::polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                              std::int64_t) {
    if (count == 0 || hidden())
        return false;
    Polyline2d line;
    line.points.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        line.points.push_back(toPlan(points[i]));
    addLine(std::move(line));
    return false;
}

bool DisplayBuilder::polygon(std::uint32_t count, const AcGePoint3d* points) {
    if (traits_.fill)
        return polyPolygon(1, &count, points);
    if (count == 0)
        return false;
    std::vector<AcGePoint3d> closed(points, points + count);
    closed.push_back(points[0]);
    return polyline(count + 1, closed.data(), nullptr, -1);
}

bool DisplayBuilder::polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                                 const AcGePoint3d* points) {
    if (hidden())
        return false;
    Area2d area;
    for (std::uint32_t i = 0; i < contourCount; ++i) {
        std::vector<AcGePoint2d>& contour = area.contours.emplace_back();
        for (std::uint32_t j = 0; j < counts[i]; ++j)
            contour.push_back(toPlan(*points++));
    }
    add(std::move(area));
    return false;
}

bool DisplayBuilder::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    return addArc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
}

bool DisplayBuilder::circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                                 const AcGeVector3d& startDirection, double sweepAngle) {
    return addArc(center, radius, normal, startDirection, sweepAngle);
}

// An arc that is still circular in plan stays an arc; any other becomes chords.
bool DisplayBuilder::addArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                            const AcGeVector3d& start, double sweep) {
    if (!(radius > 0) || hidden())
        return false;
    const AcGeVector3d along = start.normal();
    const AcGeVector3d across = normal.normal().crossProduct(along);
    const AcGeVector2d planAlong = (transform_ * (along * radius)).convert2d();
    const AcGeVector2d planAcross = (transform_ * (across * radius)).convert2d();
    const AcGePoint2d planCenter = toPlan(center);
    const double planRadius = planAlong.length();
    const bool circular = planRadius > 0 &&
                          std::fabs(planAcross.length() - planRadius) <= 1e-9 * planRadius &&
                          std::fabs(planAlong.dotProduct(planAcross)) <= 1e-9 * planRadius * planRadius;
    if (circular) {
        const double turn = planAlong.x * planAcross.y - planAlong.y * planAcross.x;
        std::vector<Arc2d> pieces;
        appendDashes(Arc2d{planCenter, planRadius, planAlong.angle(), turn < 0 ? -sweep : sweep},
                     currentPattern(), pieces);
        for (Arc2d& piece : pieces)
            add(piece);
        return false;
    }
    const int chords = chordCount(radius, sweep, deviation_);
    Polyline2d line;
    for (int i = 0; i <= chords; ++i) {
        const double angle = sweep * i / chords;
        line.points.push_back(planCenter + (planAlong * std::cos(angle) + planAcross * std::sin(angle)));
    }
    addLine(std::move(line));
    return false;
}

// Text is drawn as its outlines; a linetype does not apply to it.
bool DisplayBuilder::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                          const AcGeVector3d& direction, const ACHAR* message, int length,
                          const AcGiTextStyle& style) {
    if (hidden())
        return false;
    const std::size_t count = length < 0 ? std::wcslen(message) : static_cast<std::size_t>(length);
    const AcGeVector3d along = direction.normal();
    const AcGeVector3d upward = normal.normal().crossProduct(along);
    const auto toPlanContour = [&](const text::Contour& contour) {
        std::vector<AcGePoint2d> plan;
        plan.reserve(contour.size());
        for (const AcGePoint2d& p : contour)
            plan.push_back(toPlan(position + along * p.x + upward * p.y));
        return plan;
    };
    for (const text::GlyphOutline& glyph : text::layoutRun(style, {message, count}).glyphs) {
        Area2d area{{}, false};
        for (const text::Contour& contour : glyph.contours) {
            if (glyph.filled) {
                area.contours.push_back(toPlanContour(contour));
            } else {
                add(Polyline2d{toPlanContour(contour)});
            }
        }
        if (!area.contours.empty())
            add(std::move(area));
    }
    return false;
}

// An entity outside the drawing, which another one draws as a part of itself, lies on the layer that the
// drawing entity has chosen unless it has one of its own.
void DisplayBuilder::takeTraits(const AcDbEntity& entity) {
    const AcDbObjectId chosen = traits_.layer;
    const bool isResident = !entity.objectId().isNull();
    traits_ = Traits{};
    traits_.layer = entity.layerId();
    if (traits_.layer.isNull() && !isResident)
        traits_.layer = chosen;
    traits_.linetype = entity.linetypeId();
    traits_.linetypeScale = entity.linetypeScale();
    traits_.trueColor = entity.trueColor();
    traits_.lineWeight = entity.lineWeight();
    traits_.color = entity.colorIndex();
}

// Everything drawn while an entity draws itself belongs to it: by-block values and layer "0" of what a block
// reference draws in turn are its own. A frozen layer hides the entity with its contents, a layer that is off
// hides only what is drawn on it.
bool DisplayBuilder::drawEntity(AcDbEntity& entity) {
    if (!entity.isVisible())
        return true;
    takeTraits(entity);
    if (layerLook().frozen)
        return true;
    if (entity.isKindOf(AcDbBlockReference::desc()))
        block_ = {effectiveLayer(), effectiveColor(), effectiveLinetype(), effectiveWeight()};
    return entity.worldDraw(this);
}

// The caller goes on with the traits and the transform it had.
bool DisplayBuilder::draw(AcGiDrawable* drawable) {
    if (!drawable || depth_ >= kDeepestNesting)
        return true;
    const Traits traits = traits_;
    const BlockLook block = block_;
    const std::size_t transformCount = transforms_.size();
    ++depth_;
    AcDbEntity* const entity = AcDbEntity::cast(drawable);
    const bool complete = entity ? drawEntity(*entity) : drawable->worldDraw(this);
    --depth_;
    while (transforms_.size() > transformCount)
        popModelTransform();
    traits_ = traits;
    block_ = block;
    return complete;
}

void DisplayBuilder::pushModelTransform(const AcGeMatrix3d& matrix) {
    transforms_.push_back(transform_);
    transform_ = transform_ * matrix;
}

void DisplayBuilder::popModelTransform() {
    if (transforms_.empty())
        return;
    transform_ = transforms_.back();
    transforms_.pop_back();
}

DisplayList buildDisplayList(const AcDbDatabase& database) {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForRead);
    if (!space)
        return {};
    const AcArray<AcDbObjectId> ids = space->entityIds();
    AcDbExtents extents;
    for (const AcDbObjectId id : ids) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->getGeomExtents(extents);
    }
    const double size = extents.isValid() ? extents.minPoint().distanceTo(extents.maxPoint()) : 1.0;
    DisplayBuilder builder(database, std::max(size * kDeviationOfExtents, 1e-9));
    for (const AcDbObjectId id : ids) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            builder.draw(entity.object());
    }
    return builder.take();
}

}  // namespace drafthost::graphics
