#pragma once

// Records that objects of unknown classes refer to by name: the block and the style of a dimension.

#include <functional>

#include "host/database/database_impl.h"

namespace drafthost {

// Calls visit for each name in the state's groups that is a record's; the name may be changed. States of
// known classes have none.
void forEachNamedReference(ObjectState& state,
                           const std::function<void(std::wstring& name, TableIndex table)>& visit);

}  // namespace drafthost
