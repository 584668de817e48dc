#pragma once

#include "solids/mesh/mesh.h"

#include <optional>

namespace solids {

// Two bodies of which one stands on a flat face of the other, within its outline, as a rod stands on a bar:
// made one without exact arithmetic. Null when they are none, also when they meet anywhere else.
std::optional<Mesh> joinedWhereStanding(const Mesh& one, const Mesh& other);

}  // namespace solids
