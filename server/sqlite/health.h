#pragma once

#include "server/sqlite/catalog.h"

namespace tessary::server {

enum class Thoroughness {
    quick,  // every page of small files, of large ones the header and the definitions
    full,   // every page
};

// What is wrong with the file, for people; nothing when it is in order. Throws what keeps it from being
// looked at, such as another user's lock.
std::optional<Text> findDamage(Connection& connection, Catalog& catalog, Thoroughness thoroughness);

}  // namespace tessary::server
