#pragma once

// What a block reference shows, and where.

#include <functional>
#include <vector>

#include "host/api/block_reference.h"
#include "host/database/block_reference_state.h"

namespace drafthost {

// Calls visit with the transformation from block coordinates to those of the reference's owner, for every
// place of an array; counts that only a damaged file can hold give the first place alone.
void forEachPlace(const BlockReferenceState& reference,
                  const std::function<void(const AcGeMatrix3d& toOwner)>& visit);

// The block's entities that references show: neither erased ones nor definitions of attributes, constant ones
// excepted. Empty for a block that is null or erased.
std::vector<AcDbEntity*> shownBlockEntities(AcDbObjectId block);

// What explosion would give, as it shows: entities of modules, whose symbols may keep their size when they
// are transformed, come as their parts. Appends new entities, caller owns.
Acad::ErrorStatus appendShownParts(const AcDbBlockReference& reference, AcDbEntityArray& parts);

// True when exploding the reference would lose parts: round ones that an uneven scale would make ellipses,
// and entities of unknown classes, which cannot be moved.
bool losesParts(const AcDbBlockReference& reference);

}  // namespace drafthost
