#pragma once

// Shells made ready for shading.

#include "host/geometry/shell.h"
#include "host/graphics/scene.h"

namespace drafthost::graphics {

// The faces that are shown, cut into triangles. Faces joined by hidden edges are parts of one curved surface:
// around a point they have one normal, the mean of theirs weighted with their angles there. Points that no
// such face names are left out. Faces that are not shown count for whether the shell encloses a body.
SceneSurface surfaceOf(const Shell& shell, Rgb color);

}  // namespace drafthost::graphics
