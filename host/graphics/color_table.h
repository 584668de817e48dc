#pragma once

#include <cstdint>

namespace drafthost::graphics {

struct Rgb {
    std::uint8_t red = 0, green = 0, blue = 0;
    bool operator==(const Rgb&) const = default;
};

// Background of pictures: the dark slate that colour indices are designed to stand out from.
constexpr Rgb kBackground{33, 40, 48};

// The colour of index 1 to 255: seven pure colours, two greys, 24 hues in ten shades (10 to 249), six greys.
// Other indices give white.
Rgb colorOfIndex(int index);

constexpr Rgb rgbOf(std::uint32_t packed) {
    return {static_cast<std::uint8_t>(packed >> 16), static_cast<std::uint8_t>(packed >> 8),
            static_cast<std::uint8_t>(packed)};
}

}  // namespace drafthost::graphics
