#include "solids/shapes/polygon.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <numeric>

namespace solids {

namespace {

struct Interval {
    double low = 0, high = 0;
    bool isNear(const Interval& other, double clearance) const {
        return low <= other.high + clearance && other.low <= high + clearance;
    }
};

struct Edge {
    std::int32_t index = 0;  // of the point that it starts from
    AcGePoint2d from, to;
    Interval along, across;  // the edge's extent in the direction of the sweep and in the other one
};

double distanceToEdge(const AcGePoint2d& point, const Edge& edge) {
    const AcGeVector2d direction = edge.to - edge.from;
    const double along =
        (point - edge.from).dotProduct(direction) / std::max(direction.dotProduct(direction), 1e-300);
    return point.distanceTo(edge.from + direction * std::clamp(along, 0.0, 1.0));
}

bool cross(const Edge& first, const Edge& second) {
    const auto areApart = [](const Edge& line, const Edge& points) {
        return (turn(line.from, line.to, points.from) > 0) != (turn(line.from, line.to, points.to) > 0);
    };
    return areApart(first, second) && areApart(second, first);
}

bool areClose(const Edge& first, const Edge& second, double clearance) {
    return cross(first, second) || distanceToEdge(first.from, second) < clearance ||
           distanceToEdge(first.to, second) < clearance || distanceToEdge(second.from, first) < clearance ||
           distanceToEdge(second.to, first) < clearance;
}

// The second edge starts where the first one ends.
bool foldsBack(const Edge& first, const Edge& second, double clearance) {
    const bool isSharp = (first.to - first.from).dotProduct(second.to - second.from) < 0;
    return isSharp &&
           (distanceToEdge(second.to, first) < clearance || distanceToEdge(first.from, second) < clearance);
}

Interval intervalOf(double a, double b) {
    return {std::min(a, b), std::max(a, b)};
}

struct Size {
    double x = 0, y = 0;
};

Size sizeOf(std::span<const AcGePoint2d> points) {
    const auto [left, right] = std::minmax_element(
        points.begin(), points.end(), [](const AcGePoint2d& a, const AcGePoint2d& b) { return a.x < b.x; });
    const auto [low, high] = std::minmax_element(
        points.begin(), points.end(), [](const AcGePoint2d& a, const AcGePoint2d& b) { return a.y < b.y; });
    return {right->x - left->x, high->y - low->y};
}

// Whether a sweep had better go along y: in the direction in which the points lie farther apart.
bool isUpright(std::span<const AcGePoint2d> points) {
    const Size size = sizeOf(points);
    return size.y > size.x;
}

// Sorted by where they begin in the direction of the sweep.
std::vector<Edge> sortedEdges(std::span<const AcGePoint2d> outline) {
    std::vector<Edge> edges;
    edges.reserve(outline.size());
    const bool upright = isUpright(outline);
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const AcGePoint2d& from = outline[i];
        const AcGePoint2d& to = outline[(i + 1) % outline.size()];
        const Interval x = intervalOf(from.x, to.x);
        const Interval y = intervalOf(from.y, to.y);
        edges.push_back({static_cast<std::int32_t>(i), from, to, upright ? y : x, upright ? x : y});
    }
    std::sort(edges.begin(), edges.end(),
              [](const Edge& a, const Edge& b) { return a.along.low < b.along.low; });
    return edges;
}

// What is left of the outline while ears are clipped: a ring of its points.
class Ring {
public:
    Ring(std::span<const AcGePoint2d> outline, double tolerance);
    std::optional<std::vector<PointTriple>> clipAll();

private:
    bool isConvex(std::int32_t i) const;
    bool isEar(std::int32_t i) const;
    bool isInside(std::int32_t ear, std::int32_t point) const;
    void clip(std::int32_t ear);
    void queueAllEars();
    double position(std::int32_t point) const { return upright_ ? points_[point].y : points_[point].x; }

    std::span<const AcGePoint2d> points_;
    bool upright_;
    double tolerance_;  // a point that is not farther than that from a line lies on it
    std::vector<std::int32_t> previous_, next_;
    std::vector<bool> isLeft_;
    std::vector<std::int32_t> blockers_;  // corners that were not convex at first, by position
    std::size_t left_;
    std::deque<std::int32_t> ears_;
    std::vector<PointTriple> triangles_;
};

Ring::Ring(std::span<const AcGePoint2d> outline, double tolerance)
    : points_(outline), upright_(isUpright(outline)), tolerance_(tolerance), previous_(outline.size()),
      next_(outline.size()), isLeft_(outline.size(), true), left_(outline.size()) {
    const auto count = static_cast<std::int32_t>(outline.size());
    for (std::int32_t i = 0; i < count; ++i) {
        previous_[i] = i == 0 ? count - 1 : i - 1;
        next_[i] = i + 1 == count ? 0 : i + 1;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        if (!isConvex(i)) {
            blockers_.push_back(i);
        }
    }
    std::sort(blockers_.begin(), blockers_.end(),
              [&](std::int32_t a, std::int32_t b) { return position(a) < position(b); });
}

bool Ring::isConvex(std::int32_t i) const {
    const AcGePoint2d& before = points_[previous_[i]];
    const AcGePoint2d& after = points_[next_[i]];
    return turn(before, points_[i], after) > tolerance_ * before.distanceTo(after);
}

// In the ear's triangle, or on the edge that clipping would leave.
bool Ring::isInside(std::int32_t ear, std::int32_t point) const {
    const AcGePoint2d& before = points_[previous_[ear]];
    const AcGePoint2d& after = points_[next_[ear]];
    const AcGePoint2d& tested = points_[point];
    return turn(before, points_[ear], tested) >= 0 && turn(points_[ear], after, tested) >= 0 &&
           turn(after, before, tested) >= -tolerance_ * before.distanceTo(after);
}

bool Ring::isEar(std::int32_t i) const {
    if (!isLeft_[i] || !isConvex(i)) {
        return false;
    }
    const auto [low, high] = std::minmax({position(i), position(previous_[i]), position(next_[i])});
    auto blocker = std::lower_bound(blockers_.begin(), blockers_.end(), low - tolerance_,
                                    [&](std::int32_t point, double at) { return position(point) < at; });
    for (; blocker != blockers_.end() && position(*blocker) <= high + tolerance_; ++blocker) {
        const bool isCorner = *blocker == i || *blocker == previous_[i] || *blocker == next_[i];
        if (isLeft_[*blocker] && !isCorner && isInside(i, *blocker)) {
            return false;
        }
    }
    return true;
}

void Ring::clip(std::int32_t ear) {
    triangles_.push_back({previous_[ear], ear, next_[ear]});
    next_[previous_[ear]] = next_[ear];
    previous_[next_[ear]] = previous_[ear];
    isLeft_[ear] = false;
    --left_;
}

void Ring::queueAllEars() {
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(points_.size()); ++i) {
        if (isEar(i)) {
            ears_.push_back(i);
        }
    }
}

// Clipping changes only whether the two neighbours are ears; taking the ears in turn keeps the triangles
// from gathering in one corner.
std::optional<std::vector<PointTriple>> Ring::clipAll() {
    triangles_.reserve(points_.size());
    queueAllEars();
    while (left_ >= 3) {
        if (ears_.empty()) {
            return std::nullopt;
        }
        const std::int32_t ear = ears_.front();
        ears_.pop_front();
        if (!isEar(ear)) {
            continue;
        }
        clip(ear);
        for (const std::int32_t neighbour : {previous_[ear], next_[ear]}) {
            if (left_ >= 3 && isEar(neighbour)) {
                ears_.push_back(neighbour);
            }
        }
    }
    return std::move(triangles_);
}

}  // namespace

double extentOf(std::span<const AcGePoint2d> points) {
    if (points.empty()) {
        return 0;
    }
    const Size size = sizeOf(points);
    return std::hypot(size.x, size.y);
}

// By a sweep: edges are compared with those that have begun and not yet ended.
bool isSimple(std::span<const AcGePoint2d> outline, double clearance) {
    const auto count = static_cast<std::int32_t>(outline.size());
    std::vector<Edge> open;
    for (const Edge& edge : sortedEdges(outline)) {
        std::erase_if(open, [&](const Edge& other) { return other.along.high + clearance < edge.along.low; });
        for (const Edge& other : open) {
            if (!edge.across.isNear(other.across, clearance)) {
                continue;
            }
            const bool isNext = (other.index + 1) % count == edge.index;
            const bool isPrevious = (edge.index + 1) % count == other.index;
            if (isNext || isPrevious ? foldsBack(isNext ? other : edge, isNext ? edge : other, clearance)
                                     : areClose(edge, other, clearance)) {
                return false;
            }
        }
        open.push_back(edge);
    }
    return true;
}

std::optional<std::vector<PointTriple>> triangulate(std::span<const AcGePoint2d> outline) {
    if (outline.size() < 3) {
        return std::nullopt;
    }
    auto triangles = Ring(outline, extentOf(outline) * 1e-12).clipAll();
    return triangles ? std::move(triangles) : Ring(outline, 0).clipAll();
}

}  // namespace solids
