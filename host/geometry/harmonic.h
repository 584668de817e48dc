#pragma once

// Sums of sines and cosines of the angle and of its double: what distances to ellipses and meetings of
// ellipses come to.

#include <array>

namespace drafthost {

// value(t) = constant + cos1 cos t + sin1 sin t + cos2 cos 2t + sin2 sin 2t
struct Harmonic {
    double constant = 0, cos1 = 0, sin1 = 0, cos2 = 0, sin2 = 0;

    double value(double angle) const;
    Harmonic derivative() const;
};

// Ascending angles in [0, 2 pi). Such a sum has at most four zeros in a turn.
struct HarmonicAngles {
    int count = 0;
    std::array<double, 4> angles{};
    void add(double angle);
};

// Where the sum has a maximum or minimum; none for a constant.
HarmonicAngles extremesOf(const Harmonic& sum);
// Zeros; a maximum or minimum within nearZero of zero is one zero, and stands for the two that may lie beside
// it.
HarmonicAngles zerosOf(const Harmonic& sum, double nearZero);

}  // namespace drafthost
