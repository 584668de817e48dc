#pragma once

namespace tessary::server {

// Keeps the interfaces of the server's objects known to COM until the process ends. COM must be initialized
// on the calling thread. An interface that cannot be kept is no error: the server works without, too.
//
// COM announces an interface to its RPC layer with the first object that offers it to another process and
// takes it back with the last one. Wine (8.0 at least) does the latter while it holds the lock that every
// offer needs, and waits there for an event that is lost when a call on the interface returns in the same
// instant: from then on the server answers nobody, and clients wait for ever. So one reference to each
// interface stays out.
void keepInterfacesOffered();

}  // namespace tessary::server
