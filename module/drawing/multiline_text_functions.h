#pragma once

// LISP functions that measure and change multiline texts.

#include "module/binding/handler_status.h"

namespace tessary {

HandlerStatus multilineTextWidth();
HandlerStatus multilineTextHeight();
HandlerStatus multilineTextAscent();
HandlerStatus multilineTextDescent();
HandlerStatus lastLineWidth();
HandlerStatus multilineTextDirection();
HandlerStatus setMultilineTextNormal();
HandlerStatus setMultilineTextDirection();
HandlerStatus setMultilineTextMask();
HandlerStatus insertMultilineText();

}  // namespace tessary
