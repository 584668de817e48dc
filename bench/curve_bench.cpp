// What a curve entity costs over the bare formula it stands for. Benchmarks come in pairs: /baseline is the
// formula, /ours the call through the host's interface.

#include <benchmark/benchmark.h>

#include <cmath>

#include "host/api/curves.h"

namespace {

struct PlainArc {
    double x, y, radius, start, sweep;
};

constexpr PlainArc kFirst{0, 0, 5, 0.2, 2.5};
constexpr PlainArc kSecond{4, 1, 3, 1.0, 4.0};

bool isWithin(const PlainArc& arc, double x, double y) {
    double angle = std::atan2(y - arc.y, x - arc.x) - arc.start;
    if (angle < 0)
        angle += 6.283185307179586;
    return angle <= arc.sweep;
}

// Circle and circle by the radical line, then both angle ranges.
int meet(const PlainArc& a, const PlainArc& b, double (&found)[4]) {
    const double dx = b.x - a.x, dy = b.y - a.y, d = std::hypot(dx, dy);
    const double foot = (d * d + a.radius * a.radius - b.radius * b.radius) / (2 * d);
    const double square = a.radius * a.radius - foot * foot;
    if (square < 0)
        return 0;
    const double half = std::sqrt(square);
    int count = 0;
    for (const double side : {half, -half}) {
        const double x = a.x + (dx * foot - dy * side) / d, y = a.y + (dy * foot + dx * side) / d;
        if (!isWithin(a, x, y) || !isWithin(b, x, y))
            continue;
        found[count++] = x;
        found[count++] = y;
    }
    return count;
}

void arcDistanceFormula(benchmark::State& state) {
    PlainArc arc = kFirst;
    double parameter = 1.2;
    for (auto _ : state) {
        benchmark::DoNotOptimize(arc);
        benchmark::DoNotOptimize(parameter);
        double distance = (parameter - arc.start) * arc.radius;
        benchmark::DoNotOptimize(distance);
    }
}
BENCHMARK(arcDistanceFormula)->Name("distance_at_parameter/arc/baseline");

template <class Curve>
void distanceOf(benchmark::State& state, const Curve& curve, double parameter) {
    const AcDbCurve* asked = &curve;
    for (auto _ : state) {
        benchmark::DoNotOptimize(asked);
        double distance = 0;
        asked->getDistAtParam(parameter, distance);
        benchmark::DoNotOptimize(distance);
    }
}

void arcDistanceEntity(benchmark::State& state) {
    distanceOf(state, AcDbArc({0, 0, 0}, kFirst.radius, kFirst.start, kFirst.start + kFirst.sweep), 1.2);
}
BENCHMARK(arcDistanceEntity)->Name("distance_at_parameter/arc/ours");

void lineDistanceFormula(benchmark::State& state) {
    double ends[6] = {1, 2, 0, 30, 40, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(ends);
        const double dx = ends[3] - ends[0], dy = ends[4] - ends[1], dz = ends[5] - ends[2];
        double length = std::sqrt(dx * dx + dy * dy + dz * dz);
        benchmark::DoNotOptimize(length);
    }
}
BENCHMARK(lineDistanceFormula)->Name("distance_at_parameter/line/baseline");

void lineDistanceEntity(benchmark::State& state) {
    distanceOf(state, AcDbLine({1, 2, 0}, {30, 40, 0}), 17);
}
BENCHMARK(lineDistanceEntity)->Name("distance_at_parameter/line/ours");

void arcsMeetFormula(benchmark::State& state) {
    PlainArc first = kFirst, second = kSecond;
    for (auto _ : state) {
        benchmark::DoNotOptimize(first);
        benchmark::DoNotOptimize(second);
        double found[4];
        benchmark::DoNotOptimize(meet(first, second, found));
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(arcsMeetFormula)->Name("arc_meets_arc/baseline");

void arcsMeetEntity(benchmark::State& state) {
    const AcDbArc first({kFirst.x, kFirst.y, 0}, kFirst.radius, kFirst.start, kFirst.start + kFirst.sweep);
    const AcDbArc second({kSecond.x, kSecond.y, 0}, kSecond.radius, kSecond.start,
                         kSecond.start + kSecond.sweep);
    AcGePoint3dArray points;
    for (auto _ : state) {
        points.removeAll();
        first.intersectWith(&second, AcDb::kOnBothOperands, points);
        benchmark::DoNotOptimize(points.asArrayPtr());
    }
}
BENCHMARK(arcsMeetEntity)->Name("arc_meets_arc/ours");

}  // namespace
