#pragma once

// Drawing of what depends on the direction of view.

#include "host/api/graphics.h"

namespace drafthost::graphics {

// Has the drawable draw its part for a view, into what its world draw went to. Called after worldDraw
// returned false. transform: from the drawable's coordinates to the world's; towardsEye: in the world. A
// transform that flattens leaves no direction to see along: nothing is drawn.
void drawForView(AcGiDrawable& drawable, AcGiWorldDraw& target, const AcGeMatrix3d& transform,
                 const AcGeVector3d& towardsEye);

}  // namespace drafthost::graphics
