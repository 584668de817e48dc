#include "host/api/graphics.h"

// Key functions of the drawing interfaces: their virtual tables live here.
AcGiSubEntityTraits::~AcGiSubEntityTraits() = default;
AcGiWorldGeometry::~AcGiWorldGeometry() = default;
AcGiWorldDraw::~AcGiWorldDraw() = default;

bool AcGiDrawable::rolloverHit(std::uint64_t, std::uint64_t, bool) {
    return false;
}

bool AcGiDrawable::worldDraw(AcGiWorldDraw* worldDraw) {
    return worldDraw && subWorldDraw(worldDraw);
}
