#pragma once

// The database server's service object. It will be created when the module is loaded, told so once, and told
// once more and released when the module is unloaded. Does nothing as long as there is no database server.

namespace tessary {

void createServiceObject();
void releaseServiceObject();

}  // namespace tessary
