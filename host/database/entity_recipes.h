#pragma once

// Which types of entities LISP programs may make, and which groups they must give.

#include <span>
#include <string>
#include <vector>

#include "host/database/dxf_group.h"

namespace drafthost {

struct EntityRecipe {
    const wchar_t* type;
    // Subclass that the entity's own groups belong to, for entities whose class is not known here; null for
    // known ones.
    const wchar_t* subclass;
    std::span<const short> required;  // codes without which there is no such entity
    bool isSequence;                  // vertices follow, up to SEQEND
};

// Null for types that cannot be made.
const EntityRecipe* findRecipe(const std::wstring& type);

// The first required code that the groups lack; 0 when nothing is missing.
short missingGroup(const EntityRecipe& recipe, const std::vector<DxfGroup>& groups);

}  // namespace drafthost
