#pragma once

// Blocks that would contain themselves, directly or through others.

#include <unordered_set>

#include "host/exchange/dxf_structure.h"

namespace drafthost::exchange {

// Lines of the INSERT records in block definitions without which no block contains itself: those that lead
// back to a block that is being walked through, found by depth-first search.
std::unordered_set<std::uint32_t> insertionsThatCloseCycles(const DxfStructure& structure);

}  // namespace drafthost::exchange
