#pragma once

// LISP functions that find where an arc of a run meets another arc or a straight segment, as distances along
// the run.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus intersectArcArc();
HandlerStatus intersectArcLine();
HandlerStatus intersectLineArc();

}  // namespace tessary
