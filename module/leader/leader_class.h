#pragma once

// Registration of the leader entity's class with the host.

namespace tessary {

// When the module is loaded, before the host rebuilds its class hierarchy.
void registerLeaderClass();
// When it is unloaded: leaders in drawings become proxies.
void removeLeaderClass();

}  // namespace tessary
