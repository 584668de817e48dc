#include "host/graphics/display_list.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace drafthost::graphics {

namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};

void addArc(Bounds& bounds, const Arc2d& arc) {
    bounds.add(arc.at(0));
    bounds.add(arc.at(1));
    const double low = std::min(arc.startAngle, arc.startAngle + arc.sweep);
    const double high = std::max(arc.startAngle, arc.startAngle + arc.sweep);
    constexpr double kQuarter = std::numbers::pi / 2;
    for (double angle = std::ceil(low / kQuarter) * kQuarter; angle < high; angle += kQuarter) {
        bounds.add(
            {arc.center.x + arc.radius * std::cos(angle), arc.center.y + arc.radius * std::sin(angle)});
    }
}

}  // namespace

void Bounds::add(const AcGePoint2d& p) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return;
    if (!valid) {
        minX = maxX = p.x;
        minY = maxY = p.y;
        valid = true;
        return;
    }
    minX = std::min(minX, p.x);
    maxX = std::max(maxX, p.x);
    minY = std::min(minY, p.y);
    maxY = std::max(maxY, p.y);
}

Bounds DisplayList::bounds() const {
    Bounds bounds;
    const auto addAll = [&](const std::vector<AcGePoint2d>& points) {
        for (const AcGePoint2d& point : points)
            bounds.add(point);
    };
    for (const DisplayItem& item : items) {
        std::visit(Overloaded{[&](const Polyline2d& line) { addAll(line.points); },
                              [&](const Arc2d& arc) { addArc(bounds, arc); },
                              [&](const Area2d& area) {
                                  for (const auto& contour : area.contours)
                                      addAll(contour);
                              }},
                   item.shape);
    }
    return bounds;
}

int chordCount(double radius, double sweep, double deviation) {
    constexpr int kLeast = 4, kMost = 720;
    if (!(radius > 0) || !(deviation > 0) || deviation >= radius)
        return kLeast;
    const double step = 2.0 * std::acos(1.0 - deviation / radius);
    return static_cast<int>(std::clamp(std::ceil(std::fabs(sweep) / step), double{kLeast}, double{kMost}));
}

}  // namespace drafthost::graphics
