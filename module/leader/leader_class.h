#pragma once

// Registration of the leader entity's class with the host. Does nothing as long as the module has no leader
// entity.

namespace tessary {

void registerLeaderClass();
void removeLeaderClass();

}  // namespace tessary
