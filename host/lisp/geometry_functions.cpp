// Points and angles. A point of two numbers lies in the drawing plane; where points of two and of three
// numbers meet, all are taken as two-dimensional.

#include "host/lisp/language_functions.h"

#include <cmath>
#include <numbers>

namespace drafthost::lisp {

namespace {

Point difference(const Point& from, const Point& to) {
    return {to.x - from.x, to.y - from.y, to.z - from.z, 3};
}

Point cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x, 3};
}

double dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

double normalizedAngle(double angle) {
    return angle < 0 ? angle + 2 * std::numbers::pi : angle;
}

Value distance(Interpreter&, Arguments arguments) {
    const Point from = arguments.point(0);
    const Point to = arguments.point(1);
    const bool flat = from.dimension == 2 || to.dimension == 2;
    return Value::real(std::hypot(to.x - from.x, to.y - from.y, flat ? 0.0 : to.z - from.z));
}

Value angle(Interpreter&, Arguments arguments) {
    const Point from = arguments.point(0);
    const Point to = arguments.point(1);
    if (from.x == to.x && from.y == to.y) {
        return Value::real(0);
    }
    return Value::real(normalizedAngle(std::atan2(to.y - from.y, to.x - from.x)));
}

Value polar(Interpreter& interpreter, Arguments arguments) {
    const Point from = arguments.point(0);
    const double direction = arguments.real(1);
    const double length = arguments.real(2);
    const double x = from.x + length * std::cos(direction);
    const double y = from.y + length * std::sin(direction);
    return from.dimension == 2 ? interpreter.point(x, y) : interpreter.point(x, y, from.z);
}

// Where two lines meet: p + u * s and q + v * t. Nil when they are parallel or pass each other by more
// than rounding. Within the segments s and t run from 0 to 1.
Value intersection(Interpreter& interpreter, Arguments arguments) {
    Point corners[4];
    bool flat = false;
    for (std::size_t index = 0; index < 4; ++index) {
        corners[index] = arguments.point(index);
        flat = flat || corners[index].dimension == 2;
    }
    if (flat) {
        for (Point& corner : corners) {
            corner.z = 0;
        }
    }
    const bool withinSegments = arguments.size() < 5 || arguments[4];
    const Point u = difference(corners[0], corners[1]);
    const Point v = difference(corners[2], corners[3]);
    const Point between = difference(corners[0], corners[2]);
    const Point normal = cross(u, v);
    const double scale = dot(normal, normal);
    constexpr double tolerance = 1e-10;
    if (scale <= tolerance * tolerance * dot(u, u) * dot(v, v)) {
        return Value();
    }
    if (std::abs(dot(between, normal)) >
        tolerance * std::sqrt(scale) * (1 + std::sqrt(dot(between, between)))) {
        return Value();
    }
    const double s = dot(cross(between, v), normal) / scale;
    const double t = dot(cross(between, u), normal) / scale;
    const auto outside = [](double along) { return along < -tolerance || along > 1 + tolerance; };
    if (withinSegments && (outside(s) || outside(t))) {
        return Value();
    }
    const double x = corners[0].x + s * u.x;
    const double y = corners[0].y + s * u.y;
    return flat ? interpreter.point(x, y) : interpreter.point(x, y, corners[0].z + s * u.z);
}

constexpr BuiltinDefinition table[] = {
    {L"angle", angle, 2, 2, L"(angle p q) -> direction from p to q in radians, 0 to 2 pi"},
    {L"distance", distance, 2, 2, L"(distance p q) -> distance of two points"},
    {L"inters", intersection, 4, 5,
     L"(inters p1 p2 q1 q2 [nil]) -> where the segments (nil: lines) meet or nil"},
    {L"polar", polar, 3, 3, L"(polar p angle distance) -> point in this direction and distance"},
};

}  // namespace

std::span<const BuiltinDefinition> geometryFunctions() {
    return table;
}

}  // namespace drafthost::lisp
