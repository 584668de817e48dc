#pragma once

// LISP functions that make and edit leaders. Each takes its arguments as docs/lisp-reference.md says.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus insertLeader();
HandlerStatus setLeaderPoints();
HandlerStatus setLeaderBlock();
HandlerStatus setLeaderOffset();
HandlerStatus explodeLeader();

}  // namespace tessary
