#include "host/geometry/triangulate.h"

#include <algorithm>
#include <cmath>

namespace drafthost {

namespace {

using Corner = std::int32_t;

// The face's corners in a plane where it runs counter-clockwise.
std::vector<AcGePoint2d> flattened(std::span<const AcGePoint3d> points, std::span<const Corner> corners) {
    const auto at = [&](std::size_t i) {
        return points[static_cast<std::size_t>(corners[i])] - points[static_cast<std::size_t>(corners[0])];
    };
    AcGeVector3d normal;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i)
        normal += at(i).crossProduct(at(i + 1));
    const double x = std::fabs(normal.x), y = std::fabs(normal.y), z = std::fabs(normal.z);
    std::vector<AcGePoint2d> flat;
    flat.reserve(corners.size());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGeVector3d v = at(i);
        if (z >= x && z >= y)
            flat.push_back(normal.z < 0 ? AcGePoint2d{v.y, v.x} : AcGePoint2d{v.x, v.y});
        else if (y >= x)
            flat.push_back(normal.y < 0 ? AcGePoint2d{v.x, v.z} : AcGePoint2d{v.z, v.x});
        else
            flat.push_back(normal.x < 0 ? AcGePoint2d{v.z, v.y} : AcGePoint2d{v.y, v.z});
    }
    return flat;
}

// Positive when c lies to the left of the line from a to b.
double turn(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool samePlace(const AcGePoint2d& a, const AcGePoint2d& b) {
    return a.x == b.x && a.y == b.y;
}

class EarClipper {
public:
    explicit EarClipper(std::vector<AcGePoint2d> flat) : flat_(std::move(flat)), isLeft_(flat_.size(), 1) {
        const std::size_t count = flat_.size();
        for (std::size_t i = 0; i < count; ++i) {
            left_.push_back(i);
            if (!(turn(flat_[(i + count - 1) % count], flat_[i], flat_[(i + 1) % count]) > 0))
                reentrant_.push_back(i);
        }
    }

    // clip(i, j, k): a triangle of these corners.
    template <class Clip>
    void run(Clip clip) {
        std::size_t at = 0, tried = 0;
        while (left_.size() > 3) {
            const std::size_t count = left_.size();
            // Without an ear the outline crosses itself or has no area: any corner will do.
            if (tried < count && !isEar(at)) {
                at = (at + 1) % count;
                ++tried;
                continue;
            }
            clip(left_[(at + count - 1) % count], left_[at], left_[(at + 1) % count]);
            isLeft_[left_[at]] = 0;
            left_.erase(left_.begin() + static_cast<std::ptrdiff_t>(at));
            // Going on behind the ear keeps the triangles from fanning out of one corner.
            at = (at + 1) % left_.size();
            tried = 0;
        }
        clip(left_[0], left_[1], left_[2]);
    }

private:
    // The corner sticks out, and no other one lies in its triangle or on its border: cut off there, corners
    // on a straight line would be left as triangles without area. Clipping makes no corner reentrant that was
    // not, so that the others need not be looked at.
    bool isEar(std::size_t at) const {
        const std::size_t count = left_.size();
        const AcGePoint2d& a = flat_[left_[(at + count - 1) % count]];
        const AcGePoint2d& b = flat_[left_[at]];
        const AcGePoint2d& c = flat_[left_[(at + 1) % count]];
        if (!(turn(a, b, c) > 0))
            return false;
        return std::ranges::none_of(reentrant_, [&](std::size_t i) {
            const AcGePoint2d& p = flat_[i];
            return isLeft_[i] && !samePlace(p, a) && !samePlace(p, b) && !samePlace(p, c) &&
                   turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
        });
    }

    std::vector<AcGePoint2d> flat_;
    std::vector<std::uint8_t> isLeft_;
    std::vector<std::size_t> left_, reentrant_;
};

}  // namespace

void triangulateFace(std::span<const AcGePoint3d> points, std::span<const Corner> corners,
                     std::vector<std::array<Corner, 3>>& triangles) {
    if (corners.size() < 3)
        return;
    if (corners.size() == 3) {
        triangles.push_back({corners[0], corners[1], corners[2]});
        return;
    }
    EarClipper(flattened(points, corners)).run([&](std::size_t i, std::size_t j, std::size_t k) {
        triangles.push_back({corners[i], corners[j], corners[k]});
    });
}

}  // namespace drafthost
