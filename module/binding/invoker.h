#pragma once

#include "module/binding/handler_status.h"

namespace tessary {

// Runs the implementation of a LISP function with the document of the working database locked for writing,
// prints the message of its status and returns the host's result code (RSRSLT or RSERR). An exception is
// announced on the command line and passes on to the host; the document is unlocked by then.
int invokeHandler(Handler handler);

}  // namespace tessary
