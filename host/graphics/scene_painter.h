#pragma once

// Paints scenes: surfaces in the light of a lamp above the viewer's left shoulder, what lies in front hiding
// what lies behind.

#include <vector>

#include "host/graphics/picture.h"
#include "host/graphics/scene.h"

namespace drafthost::graphics {

// Pixels row by row from the top; the frame is one of the view's x and y. A surface's inside, seen through an
// open end, is darker than its outside.
std::vector<Rgb> paintScene(const Scene& scene, const PictureFrame& frame);

}  // namespace drafthost::graphics
