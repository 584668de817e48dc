#pragma once

// What the files that make up AcDbMText share.

#include "host/database/text_states.h"
#include "host/geometry/angles.h"
#include "host/text/mtext_layout.h"

namespace drafthost {

text::MTextLayout layoutOf(const AcDbMText& text);
// Angle of the direction from the X axis of the normal's entity coordinates, in [0, 2 pi); and back.
double rotationOf(const MTextState& state);
AcGeVector3d directionAt(double angle, const AcGeVector3d& normal);

}  // namespace drafthost
