#pragma once

#include "host/api/text_entities.h"

namespace tessary {

// Width of the last line of a multiline text that is open for write, drawing units. Measures by taking words
// from the end of the last paragraph until the rest is at least one text height lower; the contents are put
// back afterwards. Blanks that were taken are measured with the line.
double measureLastLineWidth(AcDbMText& text);

}  // namespace tessary
