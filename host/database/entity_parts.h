#pragma once

// Relations between entities and the rest of the drawing that several classes need.

#include <functional>
#include <string>

#include "host/api/database.h"
#include "host/database/object_imp.h"

namespace drafthost {

// The layer of that name, made with standard properties when the drawing has none; null for an impossible
// name.
AcDbObjectId layerForName(AcDbDatabase& database, const std::wstring& name);

bool isPaperSpace(const AcDbBlockTableRecord& block);
// "Model", "Layout1": the layout that shows the block; empty for blocks that are no layouts.
std::wstring layoutName(const AcDbBlockTableRecord& block);

// Sub-entities an entity owns: attributes of a block reference, vertices of entities of unknown classes; the
// end of the sequence is the last. Erased ones are among them.
std::vector<AcDbObjectId> subEntityIds(const AcDbEntity& entity);

// Changes the sub-entities' common properties along with the entity's, whatever their open state.
void changeSubEntities(const AcDbEntity& entity, const std::function<void(EntityState&)>& change);

// Erases the sub-entities with their owner, or brings back those that went with it.
void eraseSubEntities(const AcDbEntity& entity, bool erasing);

// Gives an entity that is about to be appended the current layer when it has none, and this database's
// records in the place of those of another drawing.
void adoptProperties(EntityState& state, AcDbDatabase& database);

}  // namespace drafthost
