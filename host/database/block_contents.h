#pragma once

// Putting entities into blocks, and which blocks show which.

#include "host/database/database_impl.h"
#include "host/database/table_states.h"

namespace drafthost {

// Puts the entity at the end of the block, open for write; layer and handle are settled. The block's open
// state is not asked. eAlreadyInDb, eSelfReference, eHandleExists.
Acad::ErrorStatus appendToBlock(AcDbBlockTableRecord& block, AcDbEntity* entity, AcDbHandle handle,
                                AcDbObjectId& id);

// True when the block is the other one or shows it through block references, however deep.
bool showsBlock(AcDbObjectId block, AcDbObjectId other);

// eSelfReference when a reference to the block cannot stand in the owner. Model and paper space are no blocks
// to refer to; an owner that is null or no block is no obstacle.
Acad::ErrorStatus mayReferTo(AcDbObjectId owner, AcDbObjectId block);

// True when a reference that is not erased shows the block.
bool isReferenced(const AcDbDatabase& database, AcDbObjectId block);

// The marking entities of a block's begin and end, made when missing.
void completeBlock(AcDbBlockTableRecord& block);

}  // namespace drafthost
