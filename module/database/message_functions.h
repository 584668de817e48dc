#pragma once

// LISP functions for sounds, message boxes and a random number.

#include "module/binding/argument_readers.h"
#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus beep();
HandlerStatus messageBeep();
HandlerStatus messageBox();
HandlerStatus libraryRandomNumber();

// Style of a message box (MB_...) from its keywords, which may stand in a list of their own. Reads up to the
// first argument that is no text.
unsigned readMessageBoxStyle(ArgCursor& keywords);

}  // namespace tessary
