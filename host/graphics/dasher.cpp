#include "host/graphics/dasher.h"

#include <cmath>

namespace drafthost::graphics {

namespace {

constexpr double kMostRepetitions = 4000;

AcGePoint2d between(const AcGePoint2d& a, const AcGePoint2d& b, double fraction) {
    return a + (b - a) * fraction;
}

double lengthOf(const Polyline2d& line) {
    double length = 0;
    for (std::size_t i = 1; i < line.points.size(); ++i)
        length += line.points[i - 1].distanceTo(line.points[i]);
    return length;
}

// Walks a polyline once and hands out the piece of it between two rising distances.
class PolylineWalker {
public:
    explicit PolylineWalker(const Polyline2d& line) : line_(line) {}
    Polyline2d piece(double from, double to) {
        advanceTo(from);
        Polyline2d result{{pointAt(from)}};
        while (index_ + 2 < line_.points.size() && start_ + segmentLength() < to) {
            start_ += segmentLength();
            ++index_;
            result.points.push_back(line_.points[index_]);
        }
        result.points.push_back(pointAt(to));
        return result;
    }

private:
    double segmentLength() const { return line_.points[index_].distanceTo(line_.points[index_ + 1]); }
    void advanceTo(double distance) {
        while (index_ + 2 < line_.points.size() && start_ + segmentLength() < distance) {
            start_ += segmentLength();
            ++index_;
        }
    }
    AcGePoint2d pointAt(double distance) const {
        const double length = segmentLength();
        return length > 0
                   ? between(line_.points[index_], line_.points[index_ + 1], (distance - start_) / length)
                   : line_.points[index_];
    }
    const Polyline2d& line_;
    std::size_t index_ = 0;
    double start_ = 0;  // distance of points[index_]
};

}  // namespace

std::vector<std::pair<double, double>> dashSpans(double length, std::span<const double> pattern) {
    double repeat = 0;
    for (const double element : pattern)
        repeat += std::fabs(element);
    const double repetitions = repeat > 0 ? std::floor(length / repeat) : 0;
    if (repetitions < 1 || repetitions > kMostRepetitions)
        return {{0.0, length}};

    const double firstDash = std::fmax(pattern[0], 0.0);
    const double lead = (firstDash + length - repetitions * repeat) / 2;  // length of the dash at either end
    std::vector<std::pair<double, double>> spans{{0.0, lead}};
    double at = lead;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        for (std::size_t i = 1; i < pattern.size(); ++i) {
            if (pattern[i] >= 0)
                spans.emplace_back(at, at + pattern[i]);
            at += std::fabs(pattern[i]);
        }
        if (pattern[0] >= 0)
            spans.emplace_back(at, at + pattern[0]);
        at += std::fabs(pattern[0]);
    }
    spans.back().second = length;  // the last dash is the counterpart of the first
    return spans;
}

void appendDashes(const Polyline2d& line, std::span<const double> pattern, std::vector<Polyline2d>& out) {
    const double length = pattern.empty() ? 0 : lengthOf(line);
    if (!(length > 0) || line.points.size() < 2) {
        out.push_back(line);
        return;
    }
    PolylineWalker walker(line);
    for (const auto& [from, to] : dashSpans(length, pattern))
        out.push_back(walker.piece(from, to));
}

void appendDashes(const Arc2d& arc, std::span<const double> pattern, std::vector<Arc2d>& out) {
    const double length = std::fabs(arc.sweep) * arc.radius;
    if (pattern.empty() || !(length > 0)) {
        out.push_back(arc);
        return;
    }
    for (const auto& [from, to] : dashSpans(length, pattern)) {
        Arc2d piece = arc;
        piece.startAngle += arc.sweep * (from / length);
        piece.sweep = arc.sweep * ((to - from) / length);
        out.push_back(piece);
    }
}

}  // namespace drafthost::graphics
