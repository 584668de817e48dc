#pragma once

// LISP functions that draw duct runs and fittings as solids, and two that work on such solids.
//
// A body that cannot be built gives nil and leaves nothing behind; the status wrongType is for arguments that
// are missing or of another type. Lengths in results are what a fitting takes from the adjoining runs, for
// callers to set the runs' setbacks by.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus getTripleCoord();
HandlerStatus drawTripleCenter();
HandlerStatus drawTripleTransition();
HandlerStatus drawTripleElbow();
HandlerStatus drawTripleSkin();
HandlerStatus drawTripleWye();
HandlerStatus drawTripleTakeoff();
HandlerStatus drawHanger();
HandlerStatus tripleUnion();
HandlerStatus explodeSolid();

}  // namespace tessary
