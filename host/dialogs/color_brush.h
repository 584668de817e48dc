#pragma once

#include "framework/gdi.h"
#include "host/graphics/color_table.h"

namespace drafthost {

// index: of a color, 1 to 255.
inline framework::Brush colorBrush(int index) {
    const graphics::Rgb color = graphics::colorOfIndex(index);
    return framework::Brush(CreateSolidBrush(RGB(color.red, color.green, color.blue)));
}

}  // namespace drafthost
