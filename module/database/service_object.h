#pragma once

// The database server's service object: created when the module is loaded and released when it is unloaded,
// and told both. Without a server there is none, and nothing else depends on it.

namespace tessary {

// Throws a _com_error when the server refuses the module.
void createServiceObject();

// Also forgets the connections that are left, so that nothing of the server outlives the module's use of COM.
void releaseServiceObject();

}  // namespace tessary
