#pragma once

#include "solids/mesh/mesh.h"

#include <vector>

namespace solids {

enum class BodyKind : std::int32_t {
    joined = 0,  // of several bodies, or cut out of one
    straight = 1,
    transition = 2,
    radiusElbow = 3,
    squareElbow = 4,
    cableTrayElbow = 5,
    wye = 6,
    skin = 7,
};

// One body of a solid.
struct Body {
    Mesh mesh;  // valid, never empty
    BodyKind kind = BodyKind::joined;
    int flags = 0;  // HvacBodyFlags
    // Lines along the middle of the duct: one, of a wye one for each branch. None for skins.
    std::vector<std::vector<AcGePoint3d>> centerLines;
};

}  // namespace solids
