#include "host/graphics/resolving_draw.h"

#include <algorithm>

#include "host/database/nesting.h"
#include "host/graphics/view_draw.h"

namespace drafthost::graphics {

namespace {

constexpr double kDefaultWeight = 25;  // hundredths of a millimetre
constexpr double kDeviationOfSize = 1.0 / 20000;

}  // namespace

double sizeOfDrawing(const AcDbDatabase& database) {
    const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForRead);
    if (!space)
        return 1;
    AcDbExtents extents;
    for (const AcDbObjectId id : space->entityIds()) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->getGeomExtents(extents);
    }
    return extents.isValid() ? extents.minPoint().distanceTo(extents.maxPoint()) : 1;
}

double deviationFor(double sizeOfDrawing) {
    return std::max(sizeOfDrawing * kDeviationOfSize, 1e-9);
}

ResolvingDraw::ResolvingDraw(const AcDbDatabase& database, double deviation, const AcGeVector3d& towardsEye)
    : database_(database), deviation_(deviation), towardsEye_(towardsEye) {
    block_.layer = database.layerZero();
    traits_.layer = block_.layer;
}

void ResolvingDraw::setColor(std::uint16_t index) {
    traits_.color = index;
    traits_.trueColor = -1;
    traits_.background = false;
}

AcDbObjectId ResolvingDraw::effectiveLayer() const {
    return traits_.layer.isNull() || traits_.layer == database_.layerZero() ? block_.layer : traits_.layer;
}

Rgb ResolvingDraw::effectiveColor() {
    if (traits_.background)
        return kBackground;
    if (traits_.trueColor >= 0)
        return rgbOf(static_cast<std::uint32_t>(traits_.trueColor));
    if (traits_.color == 0)
        return block_.color;
    return traits_.color == 256 ? layerLook().color : colorOfIndex(traits_.color);
}

AcDbObjectId ResolvingDraw::effectiveLinetype() {
    if (traits_.linetype == database_.byBlockLinetype())
        return block_.linetype;
    if (traits_.linetype.isNull() || traits_.linetype == database_.byLayerLinetype()) {
        return layerLook().linetype;
    }
    return traits_.linetype;
}

int ResolvingDraw::effectiveWeight() {
    if (traits_.lineWeight == AcDb::kLnWtByBlock)
        return block_.lineWeight;
    return traits_.lineWeight == AcDb::kLnWtByLayer ? layerLook().lineWeight : traits_.lineWeight;
}

const std::vector<double>& ResolvingDraw::pattern(AcDbObjectId linetype) {
    const auto [found, isNew] = patterns_.try_emplace(linetype);
    if (isNew) {
        const AcDbObjectPointer<AcDbLinetypeTableRecord> record(linetype, AcDb::kForRead);
        for (int i = 0; record && i < record->numDashes(); ++i)
            found->second.push_back(record->dashLengthAt(i));
    }
    return found->second;
}

std::vector<double> ResolvingDraw::currentPattern() {
    const AcDbObjectId linetype = effectiveLinetype();
    if (linetype.isNull())
        return {};
    std::vector<double> scaled = pattern(linetype);
    const double scale = database_.ltscale() * traits_.linetypeScale;
    for (double& element : scaled)
        element *= scale;
    return scaled;
}

float ResolvingDraw::effectiveMillimetres() {
    const int weight = effectiveWeight();
    return static_cast<float>((weight >= 0 ? weight : kDefaultWeight) / 100.0);
}

void ResolvingDraw::drawModelSpace() {
    AcArray<AcDbObjectId> ids;
    {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForRead);
        if (space)
            ids = space->entityIds();
    }
    for (const AcDbObjectId id : ids) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            draw(entity.object());
    }
}

// An entity outside the drawing, which another one draws as a part of itself, lies on the layer that the
// drawing entity has chosen unless it has one of its own.
void ResolvingDraw::takeTraits(const AcDbEntity& entity) {
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
void ResolvingDraw::drawEntity(AcDbEntity& entity) {
    if (!entity.isVisible())
        return;
    takeTraits(entity);
    if (layerLook().frozen)
        return;
    if (entity.isKindOf(AcDbBlockReference::desc()))
        block_ = {effectiveLayer(), effectiveColor(), effectiveLinetype(), effectiveWeight()};
    const Traits own = traits_;
    const AcGeMatrix3d before = transform_;
    const std::size_t transformCount = transforms_.size();
    beginEntity(entity);
    const bool complete = entity.worldDraw(this);
    transforms_.resize(transformCount);
    transform_ = before;
    if (!complete) {
        traits_ = own;
        ++viewDepth_;
        drawForView(entity, *this, transform_, towardsEye_);
        --viewDepth_;
    }
    endEntity(entity);
}

// What depends on the view is drawn at once, so that the caller has nothing left to do. It goes on with the
// traits and the transform it had.
bool ResolvingDraw::draw(AcGiDrawable* drawable) {
    if (!drawable || depth_ >= kDeepestNesting)
        return true;
    const Traits traits = traits_;
    const BlockLook block = block_;
    const AcGeMatrix3d before = transform_;
    const std::size_t transformCount = transforms_.size();
    ++depth_;
    if (AcDbEntity* const entity = AcDbEntity::cast(drawable))
        drawEntity(*entity);
    else if (!drawable->worldDraw(this))
        drawForView(*drawable, *this, before, towardsEye_);
    --depth_;
    transforms_.resize(transformCount);
    transform_ = before;
    traits_ = traits;
    block_ = block;
    return true;
}

void ResolvingDraw::pushModelTransform(const AcGeMatrix3d& matrix) {
    transforms_.push_back(transform_);
    transform_ = transform_ * matrix;
}

void ResolvingDraw::popModelTransform() {
    if (transforms_.empty())
        return;
    transform_ = transforms_.back();
    transforms_.pop_back();
}

}  // namespace drafthost::graphics
