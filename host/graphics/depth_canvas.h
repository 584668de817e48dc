#pragma once

// Painting with hidden surfaces: every sample keeps the colour of what lies nearest to the eye (a depth
// buffer). Shapes are cut into the spans of the rows of samples, at whose centres they are looked at.

#include <cstdint>
#include <span>
#include <vector>

#include "host/api/geometry.h"
#include "host/graphics/canvas.h"
#include "host/graphics/color_table.h"

namespace drafthost::graphics {

// A value that changes evenly over the picture: at (x, y) it is at + alongX * x + alongY * y.
struct Gradient {
    double at = 0, alongX = 0, alongY = 0;
    double operator()(double x, double y) const { return at + alongX * x + alongY * y; }
};

// Samples of some rows of a picture. Coordinates are samples from the picture's top left corner; depths grow
// towards the eye. Shapes may reach outside.
class DepthCanvas {
public:
    // Of the rows from firstRow on.
    DepthCanvas(int width, int firstRow, int rowCount, Rgb background);
    int firstRow() const { return firstRow_; }
    int endRow() const { return firstRow_ + rowCount_; }

    // A corner of a surface; shade from 0 to 1 is its share of the colour.
    struct Vertex {
        double x = 0, y = 0, depth = 0, shade = 1;
    };
    void fillTriangle(const Vertex& a, const Vertex& b, const Vertex& c, Rgb color);
    // A straight line with square ends.
    void drawLine(const Vertex& from, const Vertex& to, double width, Rgb color);
    void fillArea(std::span<const std::vector<AcGePoint2d>> contours, FillRule rule, const Gradient& depth,
                  Rgb color);

    // The mean of the samples in the square of this size, the upper left one given by column and row.
    Rgb mean(int column, int row, int size) const;

private:
    struct Paint {
        Gradient depth, shade;
        double leastDepth, mostDepth;  // samples beside a shape's border do not overshoot its depths
        double leastShade, mostShade;
        Rgb color;
    };
    void fillConvex(std::span<const AcGePoint2d> corners, const Paint& paint);
    void paintSpan(int row, double from, double to, const Paint& paint);

    int width_, firstRow_, rowCount_;
    std::vector<float> depths_;
    std::vector<Rgb> colors_;
    struct Crossing {
        double x;
        int winding;
    };
    std::vector<std::vector<Crossing>> crossings_;  // of each row, while an area is filled
};

}  // namespace drafthost::graphics
