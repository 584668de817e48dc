#include "host/graphics/color_table.h"

#include <algorithm>
#include <cmath>

namespace drafthost::graphics {

namespace {

constexpr Rgb kBasic[] = {{255, 255, 255}, {255, 0, 0},   {255, 255, 0},   {0, 255, 0},     {0, 255, 255},
                          {0, 0, 255},     {255, 0, 255}, {255, 255, 255}, {128, 128, 128}, {192, 192, 192}};
constexpr std::uint8_t kGreys[] = {51, 91, 132, 173, 214, 255};
// Brightest component of the five pairs of shades of a hue.
constexpr double kShades[] = {255, 165, 127, 76, 38};

double hueComponent(double hue, double offset) {
    const double h = std::fmod(hue + offset, 360.0);
    const double distance = std::min(h, 360.0 - h);  // from the component's own hue
    return std::clamp((120.0 - distance) / 60.0, 0.0, 1.0);
}

Rgb shadeOfHue(int index) {
    const double hue = (index / 10 - 1) * 15.0;
    const double bright = kShades[index % 10 / 2];
    const double floor =
        index % 2 ? 0.5 : 0.0;  // odd indices are tints: half way to the grey of their brightness
    const auto level = [&](double offset) {
        const double part = hueComponent(hue, offset);
        return static_cast<std::uint8_t>(bright * (floor + (1.0 - floor) * part));
    };
    return {level(0), level(240), level(120)};
}

}  // namespace

Rgb colorOfIndex(int index) {
    if (index >= 1 && index <= 9)
        return kBasic[index];
    if (index >= 10 && index <= 249)
        return shadeOfHue(index);
    if (index >= 250 && index <= 255) {
        const std::uint8_t grey = kGreys[index - 250];
        return {grey, grey, grey};
    }
    return kBasic[0];
}

}  // namespace drafthost::graphics
