#pragma once

// What a drawing looks like in plan view: coloured lines, arcs and filled areas in drawing order, ready to be
// painted at any size. Coordinates are world coordinates with z dropped; colours and linetypes are resolved.

#include <variant>
#include <vector>

#include "host/api/geometry.h"
#include "host/graphics/color_table.h"

namespace drafthost::graphics {

struct Polyline2d {
    std::vector<AcGePoint2d> points;
};

// From startAngle through sweep (negative: clockwise); a full circle has a sweep of +-2 pi.
struct Arc2d {
    AcGePoint2d center;
    double radius = 0;
    double startAngle = 0;
    double sweep = 0;
    AcGePoint2d at(double fraction) const {
        const double angle = startAngle + sweep * fraction;
        return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    }
};

// Area inside closed contours.
struct Area2d {
    std::vector<std::vector<AcGePoint2d>> contours;
    bool evenOdd = true;  // otherwise every point that a contour winds around
};

struct DisplayItem {
    Rgb color;
    float weight = 0.25f;  // millimetres; areas have none
    std::variant<Polyline2d, Arc2d, Area2d> shape;
};

struct Bounds {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    bool valid = false;
    void add(const AcGePoint2d& p);
};

struct DisplayList {
    std::vector<DisplayItem> items;
    Bounds bounds() const;
};

// Number of chords that keep an arc within the deviation (both in the same unit), 4 to 720.
int chordCount(double radius, double sweep, double deviation);

}  // namespace drafthost::graphics
