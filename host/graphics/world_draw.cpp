#include "host/api/graphics.h"

#include <algorithm>

// Key functions of the drawing interfaces: their virtual tables live here.
AcGiSubEntityTraits::~AcGiSubEntityTraits() = default;
AcGiWorldGeometry::~AcGiWorldGeometry() = default;
AcGiWorldDraw::~AcGiWorldDraw() = default;
AcGiViewport::~AcGiViewport() = default;
AcGiViewportDraw::~AcGiViewportDraw() = default;

bool AcGiDrawable::rolloverHit(std::uint64_t, std::uint64_t, bool) {
    return false;
}

bool AcGiDrawable::worldDraw(AcGiWorldDraw* worldDraw) {
    return worldDraw && subWorldDraw(worldDraw);
}

void AcGiDrawable::viewportDraw(AcGiViewportDraw* viewportDraw) {
    if (viewportDraw)
        subViewportDraw(viewportDraw);
}

void AcGiDrawable::subViewportDraw(AcGiViewportDraw*) {}

bool AcGiWorldGeometry::shell(std::uint32_t, const AcGePoint3d* points, std::uint32_t faceListSize,
                              const std::int32_t* faceList, const AcGiEdgeData* edges,
                              const AcGiFaceData* faces) {
    const bool* const edgeShown = edges ? edges->visibility : nullptr;
    const bool* const faceShown = faces ? faces->visibility : nullptr;
    std::uint32_t edge = 0, face = 0;
    for (std::uint32_t at = 0; at < faceListSize; ++face) {
        const auto count = static_cast<std::uint32_t>(std::max(faceList[at], 0));
        const std::int32_t* const corners = faceList + at + 1;
        for (std::uint32_t i = 0; i < count; ++i, ++edge) {
            if ((faceShown && !faceShown[face]) || (edgeShown && !edgeShown[edge]))
                continue;
            const AcGePoint3d ends[] = {points[corners[i]], points[corners[(i + 1) % count]]};
            if (polyline(2, ends))
                return true;
        }
        at += count + 1;
    }
    return false;
}
