#pragma once

// Antialiased painting of polygons and lines into a pixel buffer.
//
// Scan conversion by sub-scanlines: every pixel row is cut into kSubRows thin rows; in each, the spans inside
// the shape are found from the sorted crossings of its edges (non-zero or even-odd rule) and their exact
// horizontal cover is summed. (After the coverage-accumulation scan converters of outline font renderers.)

#include <cstdint>
#include <span>
#include <vector>

#include "host/api/geometry.h"
#include "host/graphics/color_table.h"

namespace drafthost::graphics {

enum class FillRule { NonZero, EvenOdd };

// Pixels, 24-bit colour, row 0 on top. Coordinates are pixels from the top left corner; shapes may reach
// outside.
class Canvas {
public:
    Canvas(int width, int height, Rgb background);
    int width() const { return width_; }
    int height() const { return height_; }
    const std::vector<Rgb>& pixels() const { return pixels_; }

    void fill(std::span<const std::vector<AcGePoint2d>> contours, FillRule rule, Rgb color);
    // A line of that width in pixels with square ends and, when wider than two pixels, round joins.
    void stroke(std::span<const AcGePoint2d> points, double lineWidth, Rgb color);

private:
    struct Edge {
        double topX, topY, bottomY, slope;  // slope: change of x for one row
        int winding;
    };
    void addEdge(const AcGePoint2d& from, const AcGePoint2d& to);
    void addQuad(const AcGePoint2d& a, const AcGePoint2d& b, double halfWidth);
    void addDisc(const AcGePoint2d& center, double radius);
    void paintEdges(FillRule rule, Rgb color);
    void coverRow(double y, FillRule rule);
    void coverSpan(double from, double to);
    void blendRow(int row, Rgb color);

    int width_, height_;
    std::vector<Rgb> pixels_;
    std::vector<Edge> edges_;
    std::vector<std::size_t> active_;
    std::vector<std::pair<double, int>> crossings_;
    std::vector<float> cover_;
    int coverFrom_ = 0, coverTo_ = -1;
};

}  // namespace drafthost::graphics
