#pragma once

// What becomes of an object's contents when they are copied to another place.

#include <functional>

#include "host/database/memory_filer.h"
#include "host/database/object_imp.h"

namespace drafthost {

using HandleTranslation = std::function<AcDbHandle(AcDbHandle handle)>;

// Puts other ids in the place of those that the state holds, and other handles in the place of those that are
// all it knows of an object (extended data keep them so).
void translateState(ObjectState& state, const IdTranslation& ids, const HandleTranslation& handles);

// Lists of owned objects have no gaps where one was left behind.
void closeGaps(ObjectState& state);

// A text without a style has its drawing's current one, which is another elsewhere: names the source's.
void nameDefaults(ObjectState& state, const AcDbDatabase& source);

}  // namespace drafthost
