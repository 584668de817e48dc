#pragma once

// LISP functions for numbers and the screen size.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus arcSine();
HandlerStatus arcCosine();
HandlerStatus power();
HandlerStatus textToReal();
HandlerStatus randomInteger();
HandlerStatus screenWidth();
HandlerStatus screenHeight();

}  // namespace tessary
