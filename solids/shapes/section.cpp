#include "solids/shapes/section.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace solids {

namespace {

constexpr double kFrameTolerance = 1e-6;

bool isUsableSize(double size) {
    return size >= kSmallestSize && size <= kLargestSize;
}

// Cosines over a quarter of a circle. The ends are exact, so that groups share their points.
const std::array<double, kGroupPoints>& quarterCosines() {
    static const std::array<double, kGroupPoints> cosines = [] {
        std::array<double, kGroupPoints> values{};
        for (int i = 0; i < kGroupPoints; ++i) {
            values[i] = std::cos(std::numbers::pi / 2 * i / (kGroupPoints - 1));
        }
        values.back() = 0;
        return values;
    }();
    return cosines;
}

// On the unit circle, i-th point of a group.
AcGeVector2d unitPoint(int group, int i) {
    const auto& cosines = quarterCosines();
    const double along = cosines[i];
    const double across = cosines[kGroupPoints - 1 - i];
    switch (group) {
        case 0: return {along, across};
        case 1: return {-across, along};
        case 2: return {-along, -across};
        default: return {across, -along};
    }
}

// Of a section: the rectangle that the quarters' centres make, and the quarters' half axes.
struct Corners {
    AcGeVector2d center;
    AcGeVector2d axes;
};

Corners cornersOf(const Section& section) {
    const AcGeVector2d half{section.width / 2, section.height / 2};
    if (section.rectangular) {
        return {half, {}};
    }
    if (isRound(section)) {
        return {{}, half};
    }
    const double radius = std::min(half.x, half.y);
    return {{half.x - radius, half.y - radius}, {radius, radius}};
}

}  // namespace

bool isUsable(const Frame& frame) {
    const auto& [x, y, z] = frame;
    return std::abs(x.length() - 1) <= kFrameTolerance && std::abs(y.length() - 1) <= kFrameTolerance &&
           std::abs(x.dotProduct(y)) <= kFrameTolerance &&
           (x.crossProduct(y) - z).length() <= 2 * kFrameTolerance;
}

std::optional<Frame> frameOf(const AcGeVector3d* vectors) {
    if (!vectors || !isUsable(Frame{vectors[0], vectors[1], vectors[2]})) {
        return std::nullopt;
    }
    const AcGeVector3d& x = vectors[0];
    const AcGeVector3d& y = vectors[1];
    Frame frame;
    frame.x = x / x.length();
    const AcGeVector3d across = y - frame.x * frame.x.dotProduct(y);
    frame.y = across / across.length();
    frame.z = frame.x.crossProduct(frame.y);
    return frame;
}

Frame rotated(const Frame& frame, double angle, const AcGeVector3d& axis) {
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const auto turn = [&](const AcGeVector3d& v) {
        return v * cosine + axis.crossProduct(v) * sine + axis * (axis.dotProduct(v) * (1 - cosine));
    };
    return {turn(frame.x), turn(frame.y), turn(frame.z)};
}

bool isUsable(const Section& section) {
    return isUsableSize(section.width) && isUsableSize(section.height);
}

bool isUsable(const AcGePoint3d& point) {
    return std::abs(point.x) <= kLargestSize && std::abs(point.y) <= kLargestSize &&
           std::abs(point.z) <= kLargestSize;
}

bool isRound(const Section& section) {
    return !section.rectangular && std::abs(section.width - section.height) < kSmallestSize;
}

FlatOutline flatOutline(const Section& section) {
    const Corners corners = cornersOf(section);
    FlatOutline outline;
    for (int group = 0; group < 4; ++group) {
        const double ySign = group == 0 || group == 3 ? 1 : -1;
        const double zSign = group < 2 ? 1 : -1;
        for (int i = 0; i < kGroupPoints; ++i) {
            const AcGeVector2d unit = unitPoint(group, i);
            outline[group * kGroupPoints + i] = {ySign * corners.center.x + unit.x * corners.axes.x,
                                                 zSign * corners.center.y + unit.y * corners.axes.y};
        }
    }
    return outline;
}

Outline placedOutline(const FlatOutline& outline, const AcGePoint3d& center, const Frame& frame) {
    Outline placed;
    for (int i = 0; i < kOutlinePoints; ++i) {
        placed[i] = center + (frame.y * outline[i].x + frame.z * outline[i].y);
    }
    return placed;
}

FlatOutline begunLater(const FlatOutline& outline, int steps) {
    constexpr int kGroupSides = kGroupPoints - 1;
    const int ahead = (steps % kRoundSides + kRoundSides) % kRoundSides;
    const int groups = ahead / kGroupSides;
    const int sides = ahead % kGroupSides;
    FlatOutline begun;
    for (int group = 0; group < 4; ++group) {
        for (int i = 0; i < kGroupPoints; ++i) {
            // The last point of a group is the first one of the next where the sides do not come out even.
            const int side = i + sides;
            const int over = side > kGroupSides ? 1 : 0;
            begun[group * kGroupPoints + i] =
                outline[(group + groups + over) % 4 * kGroupPoints + side - over * kGroupSides];
        }
    }
    return begun;
}

double reach(const Section& section, const Frame& frame, const AcGeVector3d& direction) {
    const Corners corners = cornersOf(section);
    const double y = std::abs(frame.y.dotProduct(direction));
    const double z = std::abs(frame.z.dotProduct(direction));
    return corners.center.x * y + corners.center.y * z + std::hypot(corners.axes.x * y, corners.axes.y * z);
}

}  // namespace solids
