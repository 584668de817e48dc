#pragma once

// Solids as they are filed: checks of what comes in.

#include "solids/api/hvac_solid.h"
#include "solids/entity/part.h"

namespace solids {

// Numbers in front of a solid's points, in both forms of filing.
struct FiledHeader {
    std::int32_t version = 1;
    std::int32_t fitting = 0;  // HvacFitting
    std::int32_t kind = 0;     // BodyKind
    std::int32_t flags = 0;    // of the bodies
    bool mayOverlap = false;
    std::int32_t points = 0, triangles = 0, centerLines = 0;  // how many

    static constexpr std::int32_t kCurrentVersion = 1;
    // Far more than any fitting has: counts beyond are damage, and memory for them is not asked for.
    static constexpr std::int32_t kMostPoints = 4'000'000;
};

FiledHeader headerOf(const Part& part, HvacFitting fitting);
// Of counts that are possible, and kinds that there are.
bool isSound(const FiledHeader& header);
// What was read, all of it: an empty solid, or a closed surface of usable points that encloses something.
bool isSound(const Part& part);
bool isFaceKind(std::int64_t kind);

}  // namespace solids
