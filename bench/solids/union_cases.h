#pragma once

// The bodies of the union benchmark: the same numbers for the program of the target and for the native one.

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace bench {

using Point = std::array<double, 3>;

// A prism from `origin` along `along` (with its length); the outline lies in the plane of across and up.
struct Prism {
    std::vector<Point> points;
    std::vector<std::array<int, 3>> triangles;
};

inline Prism prism(const std::vector<std::array<double, 2>>& outline, const Point& origin, const Point& along,
                   const Point& across, const Point& up) {
    Prism result;
    const int n = static_cast<int>(outline.size());
    for (const double end : {0.0, 1.0}) {
        for (const auto& [y, z] : outline) {
            Point point;
            for (std::size_t i = 0; i < 3; ++i) {
                point[i] = origin[i] + along[i] * end + across[i] * y + up[i] * z;
            }
            result.points.push_back(point);
        }
    }
    for (int i = 0; i < n; ++i) {
        const int next = (i + 1) % n;
        result.triangles.push_back({i, next, n + i});
        result.triangles.push_back({next, n + next, n + i});
    }
    for (int i = 1; i + 1 < n; ++i) {
        result.triangles.push_back({0, i + 1, i});
        result.triangles.push_back({n, n + i, n + i + 1});
    }
    return result;
}

inline std::vector<std::array<double, 2>> circle(double radius) {
    std::vector<std::array<double, 2>> points;
    for (int i = 0; i < 64; ++i) {
        const double angle = 2 * 3.14159265358979323846 * i / 64;
        points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    return points;
}

inline std::vector<std::array<double, 2>> rectangle(double width, double height) {
    return {{-width / 2, -height / 2},
            {width / 2, -height / 2},
            {width / 2, height / 2},
            {-width / 2, height / 2}};
}

struct UnionCase {
    std::string name;
    std::vector<Prism> bodies;  // united one after the other
};

inline std::vector<UnionCase> unionCases() {
    const Point x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, down{0, 0, -10};
    const auto crossing = [&](double radius) {
        return std::vector{prism(circle(1), {-3, 0, 0}, {6, 0, 0}, y, z),
                           prism(circle(radius), {0, -3, 0}, {0, 6, 0}, z, x)};
    };
    return {
        {"equal cylinders that cross", crossing(1)},
        {"cylinders that cross", crossing(0.7)},
        {"takeoff",
         {prism(rectangle(20, 10), {0, 0, 0}, {60, 0, 0}, y, z),
          prism(circle(4), {30, 0, 0}, {0, 30, 0}, z, x)}},
        {"hanger",
         {prism(rectangle(1, 1), {0, 0, 0}, {22, 0, 0}, y, z), prism(circle(0.25), {2, 0, -0.5}, down, y, x),
          prism(circle(0.25), {20, 0, -0.5}, down, y, x)}},
    };
}

}  // namespace bench
