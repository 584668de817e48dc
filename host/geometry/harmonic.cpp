#include "host/geometry/harmonic.h"

#include <cmath>

#include "host/geometry/angles.h"

namespace drafthost {
namespace {

// The zero between two angles at which the sum has different signs, by bisection down to neighbouring
// doubles.
double zeroBetween(const Harmonic& sum, double low, double high) {
    const bool positiveAtLow = sum.value(low) > 0;
    for (;;) {
        const double middle = low + (high - low) / 2;
        if (!(middle > low && middle < high))
            return middle;
        ((sum.value(middle) > 0) == positiveAtLow ? low : high) = middle;
    }
}

}  // namespace

double Harmonic::value(double angle) const {
    const double c = std::cos(angle), s = std::sin(angle);
    return constant + cos1 * c + sin1 * s + cos2 * (c * c - s * s) + sin2 * (2 * s * c);
}

Harmonic Harmonic::derivative() const {
    return {0, sin1, -cos1, 2 * sin2, -2 * cos2};
}

void HarmonicAngles::add(double angle) {
    angle = normalizeAngle(angle);
    if (count == static_cast<int>(angles.size()))
        return;
    int place = count++;
    for (; place > 0 && angles[place - 1] > angle; --place)
        angles[place] = angles[place - 1];
    angles[place] = angle;
}

// Sign changes between samples. Two extremes closer together than a sample are missed together: the wave
// between them is then far smaller than the rounding of the callers' coordinates.
HarmonicAngles extremesOf(const Harmonic& sum) {
    constexpr int kSamples = 96;
    constexpr double kStep = kTwoPi / kSamples;
    const Harmonic slope = sum.derivative();
    HarmonicAngles extremes;
    double before = slope.value(0);
    for (int i = 1; i <= kSamples; ++i) {
        const double after = slope.value(i * kStep);
        if ((before > 0) != (after > 0))
            extremes.add(zeroBetween(slope, (i - 1) * kStep, i * kStep));
        before = after;
    }
    return extremes;
}

// Between neighbouring extremes the sum is monotone.
HarmonicAngles zerosOf(const Harmonic& sum, double nearZero) {
    const HarmonicAngles extremes = extremesOf(sum);
    HarmonicAngles zeros;
    for (int i = 0; i < extremes.count; ++i) {
        const double low = extremes.angles[i];
        const double high = i + 1 < extremes.count ? extremes.angles[i + 1] : extremes.angles[0] + kTwoPi;
        const double atLow = sum.value(low), atHigh = sum.value(high);
        if (std::abs(atLow) <= nearZero) {
            zeros.add(low);
        } else if (std::abs(atHigh) > nearZero && (atLow > 0) != (atHigh > 0)) {
            zeros.add(zeroBetween(sum, low, high));
        }
    }
    return zeros;
}

}  // namespace drafthost
