#pragma once

// LISP functions that measure curves. Each opens the entity as a curve for read.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus curveLength();
HandlerStatus curvePointAtDistance();
HandlerStatus curveClosestPoint();
HandlerStatus curveDistanceAtPoint();

}  // namespace tessary
