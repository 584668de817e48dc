#include "host/database/graphics_recorder.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <numbers>

#include "host/database/nesting.h"

namespace drafthost {

namespace {

constexpr int kMostChords = 256;  // for a circle that a block reference squashes

bool isFrozen(AcDbObjectId layer) {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    return record && record->isFrozen();
}

std::vector<AcGePoint3d> transformed(const AcGeMatrix3d& matrix, std::size_t count,
                                     const AcGePoint3d* points) {
    std::vector<AcGePoint3d> result;
    result.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        result.push_back(matrix * points[i]);
    return result;
}

}  // namespace

GraphicsRecorder::GraphicsRecorder(const AcDbEntity& entity, double deviation)
    : database_(entity.database()), deviation_(deviation), own_(traitsOf(entity, {})), traits_(own_) {}

GraphicsRecorder::Traits GraphicsRecorder::traitsOf(const AcDbEntity& entity, AcDbObjectId layerOfOthers) {
    Traits traits;
    traits.layer = entity.layerId();
    if (traits.layer.isNull())
        traits.layer = layerOfOthers;
    traits.linetype = entity.linetypeId();
    traits.linetypeScale = entity.linetypeScale();
    traits.trueColor = entity.trueColor();
    traits.color = entity.colorIndex();
    traits.lineWeight = entity.lineWeight();
    return traits;
}

// The present traits with what "by block" and layer "0" stand for in the block reference that is drawn. Where
// a part takes its look from the layer of the reference and lies on another one itself, that look is fixed.
GraphicsRecorder::Traits GraphicsRecorder::resolved() const {
    Traits traits = traits_;
    if (blockDepth_ == 0 || !database_)
        return traits;
    if (traits.layer.isNull() || traits.layer == database_->layerZero())
        traits.layer = block_.layer;
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(block_.layer, AcDb::kForRead);
    const bool fixed = layer && traits.layer != block_.layer;
    if (traits.color == 0 && traits.trueColor < 0) {
        const bool byLayer = block_.trueColor < 0 && block_.color == 256;
        traits.color = fixed && byLayer ? layer->colorIndex() : block_.color;
        traits.trueColor = fixed && byLayer ? layer->trueColor() : block_.trueColor;
    }
    if (traits.linetype == database_->byBlockLinetype()) {
        const bool byLayer = block_.linetype.isNull() || block_.linetype == database_->byLayerLinetype();
        traits.linetype = fixed && byLayer ? layer->linetypeObjectId() : block_.linetype;
    }
    if (traits.lineWeight == AcDb::kLnWtByBlock) {
        const bool byLayer = block_.lineWeight == AcDb::kLnWtByLayer;
        traits.lineWeight = fixed && byLayer ? layer->lineWeight() : block_.lineWeight;
    }
    return traits;
}

ProxyGraphics::Look GraphicsRecorder::presentLook() const {
    const Traits traits = resolved();
    ProxyGraphics::Look look;
    if (traits.layer != own_.layer)
        look.layer = traits.layer;
    if (traits.linetype != own_.linetype)
        look.linetype = traits.linetype;
    if (traits.linetypeScale != own_.linetypeScale)
        look.linetypeScale = traits.linetypeScale;
    if (traits.lineWeight != own_.lineWeight)
        look.lineWeight = traits.lineWeight;
    if (traits.background) {
        look.color = ProxyGraphics::kBackground;
    } else if (traits.color != own_.color || traits.trueColor != own_.trueColor) {
        look.color = traits.color;
        look.trueColor = traits.trueColor;
    }
    look.fill = traits.fill;
    return look;
}

std::int32_t GraphicsRecorder::lookNumber() {
    const ProxyGraphics::Look look = presentLook();
    const auto found = std::ranges::find(looks_, look);
    const auto number = static_cast<std::int32_t>(found - looks_.begin());
    if (found == looks_.end())
        looks_.push_back(look);
    return number;
}

template <class Shape>
void GraphicsRecorder::add(Shape shape, std::size_t count) {
    if (!full())
        pieces_.push_back({lookNumber(), std::move(shape)});
    count_ += count;
}

bool GraphicsRecorder::polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                                std::int64_t) {
    if (count > 0)
        add(ProxyGraphics::Line{transformed(transform_, count, points)});
    return false;
}

bool GraphicsRecorder::polygon(std::uint32_t count, const AcGePoint3d* points) {
    return count == 0 || polyPolygon(1, &count, points);
}

bool GraphicsRecorder::polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                                   const AcGePoint3d* points) {
    ProxyGraphics::Area area;
    std::size_t total = 0;
    for (std::uint32_t i = 0; i < contourCount; total += counts[i++])
        area.counts.push_back(static_cast<std::int32_t>(counts[i]));
    area.points = transformed(transform_, total, points);
    add(std::move(area));
    return false;
}

// A shell for which there is no room left is left out whole: a part of it would enclose nothing.
bool GraphicsRecorder::shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
                             const std::int32_t* faceList, const AcGiEdgeData* edges,
                             const AcGiFaceData* faces) {
    Shell shell = readShell(pointCount, points, faceListSize, faceList, edges, faces);
    if (shell.empty())
        return false;
    const std::size_t count = shell.faces.size();
    if (count > kMostPieces - std::min(count_, kMostPieces)) {
        count_ += count;
        return false;
    }
    transformShell(shell, transform_);
    if (transform_.det() < 0)
        turnOver(shell);
    add(std::move(shell), count);
    return false;
}

bool GraphicsRecorder::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    return circularArc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
}

// An arc that a block reference does not squash stays one; any other becomes chords.
bool GraphicsRecorder::circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                                   const AcGeVector3d& startDirection, double sweepAngle) {
    if (!(radius > 0))
        return false;
    const AcGeVector3d along = startDirection.normal();
    const AcGeVector3d x = transform_ * (along * radius);
    const AcGeVector3d y = transform_ * (normal.normal().crossProduct(along) * radius);
    const AcGePoint3d middle = transform_ * center;
    const double length = x.length();
    const bool round = length > 0 && std::abs(y.length() - length) <= 1e-9 * length &&
                       std::abs(x.dotProduct(y)) <= 1e-9 * length * length;
    if (round) {
        add(ProxyGraphics::Arc{middle, x.crossProduct(y).normal(), x / length, length, sweepAngle});
        return false;
    }
    ProxyGraphics::Line line;
    for (int i = 0; i <= kMostChords; ++i) {
        const double angle = sweepAngle * i / kMostChords;
        line.points.push_back(middle + x * std::cos(angle) + y * std::sin(angle));
    }
    add(std::move(line));
    return false;
}

// Text that a block reference skews is kept upright: its height and width are right, its slant is not.
bool GraphicsRecorder::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                            const AcGeVector3d& direction, const ACHAR* message, int length,
                            const AcGiTextStyle& style) {
    const AcGeVector3d along = transform_ * direction.normal();
    const AcGeVector3d upward = transform_ * normal.normal().crossProduct(direction.normal());
    const double width = along.length(), height = upward.length();
    const AcGeVector3d facing = along.crossProduct(upward);
    if (!(facing.length() > 0))
        return false;
    ProxyGraphics::Text text;
    text.position = transform_ * position;
    text.normal = facing.normal();
    text.direction = along / width;
    text.text.assign(message, length < 0 ? std::wcslen(message) : static_cast<std::size_t>(length));
    text.fontFile = style.fontFile ? style.fontFile : L"";
    text.typeface = style.typeface ? style.typeface : L"";
    text.style = style;
    text.style.fontFile = text.style.typeface = L"";
    text.style.textSize *= height;
    text.style.xScale *= width / height;
    add(std::move(text));
    return false;
}

void GraphicsRecorder::drawEntity(AcDbEntity& entity) {
    const AcDbObjectId chosen = entity.objectId().isNull() ? traits_.layer : AcDbObjectId();
    traits_ = traitsOf(entity, chosen);
    if (!entity.isVisible() || isFrozen(resolved().layer))
        return;
    const bool isBlock = entity.isKindOf(AcDbBlockReference::desc());
    if (isBlock) {
        block_ = resolved();
        ++blockDepth_;
    }
    entity.worldDraw(this);
    if (isBlock)
        --blockDepth_;
}

bool GraphicsRecorder::draw(AcGiDrawable* drawable) {
    if (!drawable || depth_ >= kDeepestNesting || full())
        return true;
    const Traits traits = traits_, block = block_;
    const std::size_t transformCount = transforms_.size();
    ++depth_;
    if (AcDbEntity* const entity = AcDbEntity::cast(drawable))
        drawEntity(*entity);
    else
        drawable->worldDraw(this);
    --depth_;
    while (transforms_.size() > transformCount)
        popModelTransform();
    traits_ = traits;
    block_ = block;
    return true;
}

void GraphicsRecorder::pushModelTransform(const AcGeMatrix3d& matrix) {
    transforms_.push_back(transform_);
    transform_ = transform_ * matrix;
}

void GraphicsRecorder::popModelTransform() {
    if (transforms_.empty())
        return;
    transform_ = transforms_.back();
    transforms_.pop_back();
}

void GraphicsRecorder::setColor(std::uint16_t index) {
    traits_.color = index;
    traits_.trueColor = -1;
    traits_.background = false;
}

}  // namespace drafthost
