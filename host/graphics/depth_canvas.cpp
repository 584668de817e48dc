#include "host/graphics/depth_canvas.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace drafthost::graphics {

namespace {

// The gradient that has the three values at the corners. Not for triangles without area.
Gradient through(const DepthCanvas::Vertex& a, const DepthCanvas::Vertex& b, const DepthCanvas::Vertex& c,
                 double doubleArea, double DepthCanvas::Vertex::*value) {
    const double ab = b.*value - a.*value, ac = c.*value - a.*value;
    Gradient gradient;
    gradient.alongX = (ab * (c.y - a.y) - ac * (b.y - a.y)) / doubleArea;
    gradient.alongY = (ac * (b.x - a.x) - ab * (c.x - a.x)) / doubleArea;
    gradient.at = a.*value - gradient.alongX * a.x - gradient.alongY * a.y;
    return gradient;
}

// First sample whose centre does not lie before x.
int firstCentre(double x, int low, int high) {
    return static_cast<int>(std::ceil(std::clamp(x - 0.5, double(low), double(high))));
}

double crossingAt(const AcGePoint2d& a, const AcGePoint2d& b, double y) {
    // The same for both faces beside an edge, to the last bit: no gaps between them.
    const AcGePoint2d& top = a.y < b.y ? a : b;
    const AcGePoint2d& bottom = a.y < b.y ? b : a;
    return top.x + (y - top.y) * ((bottom.x - top.x) / (bottom.y - top.y));
}

}  // namespace

DepthCanvas::DepthCanvas(int width, int firstRow, int rowCount, Rgb background)
    : width_(width), firstRow_(firstRow), rowCount_(rowCount),
      depths_(static_cast<std::size_t>(width) * static_cast<std::size_t>(rowCount),
              -std::numeric_limits<float>::infinity()),
      colors_(depths_.size(), background), crossings_(static_cast<std::size_t>(rowCount)) {}

void DepthCanvas::paintSpan(int row, double from, double to, const Paint& paint) {
    const int first = firstCentre(from, 0, width_), end = firstCentre(to, 0, width_);
    if (first >= end)
        return;
    const double y = row + 0.5;
    double depth = paint.depth(first + 0.5, y), shade = paint.shade(first + 0.5, y);
    const std::size_t rowStart = static_cast<std::size_t>(row - firstRow_) * static_cast<std::size_t>(width_);
    float* const depths = depths_.data() + rowStart;
    Rgb* const colors = colors_.data() + rowStart;
    for (int x = first; x < end; ++x, depth += paint.depth.alongX, shade += paint.shade.alongX) {
        const auto sample = static_cast<float>(std::clamp(depth, paint.leastDepth, paint.mostDepth));
        if (!(sample > depths[x]))
            continue;
        depths[x] = sample;
        const double share = std::clamp(shade, paint.leastShade, paint.mostShade);
        colors[x] = {static_cast<std::uint8_t>(paint.color.red * share + 0.5),
                     static_cast<std::uint8_t>(paint.color.green * share + 0.5),
                     static_cast<std::uint8_t>(paint.color.blue * share + 0.5)};
    }
}

void DepthCanvas::fillConvex(std::span<const AcGePoint2d> corners, const Paint& paint) {
    const auto [top, bottom] = std::ranges::minmax(corners, {}, &AcGePoint2d::y);
    const int first = firstCentre(top.y, firstRow_, endRow()),
              end = firstCentre(bottom.y, firstRow_, endRow());
    for (int row = first; row < end; ++row) {
        const double y = row + 0.5;
        double from = std::numeric_limits<double>::max(), to = std::numeric_limits<double>::lowest();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const AcGePoint2d& a = corners[i];
            const AcGePoint2d& b = corners[i + 1 == corners.size() ? 0 : i + 1];
            if ((a.y <= y) == (b.y <= y))
                continue;
            const double x = crossingAt(a, b, y);
            from = std::min(from, x);
            to = std::max(to, x);
        }
        if (from < to)
            paintSpan(row, from, to, paint);
    }
}

void DepthCanvas::fillTriangle(const Vertex& a, const Vertex& b, const Vertex& c, Rgb color) {
    const double doubleArea = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    if (doubleArea == 0)
        return;
    const auto [nearest, farthest] = std::minmax({a.depth, b.depth, c.depth});
    const auto [darkest, brightest] = std::minmax({a.shade, b.shade, c.shade});
    const AcGePoint2d corners[] = {{a.x, a.y}, {b.x, b.y}, {c.x, c.y}};
    fillConvex(corners,
               {through(a, b, c, doubleArea, &Vertex::depth), through(a, b, c, doubleArea, &Vertex::shade),
                nearest, farthest, darkest, brightest, color});
}

void DepthCanvas::drawLine(const Vertex& from, const Vertex& to, double width, Rgb color) {
    const AcGePoint2d a{from.x, from.y}, b{to.x, to.y};
    const double length = a.distanceTo(b);
    const AcGeVector2d along = length > 0 ? (b - a) * (1 / length) : AcGeVector2d{1, 0};
    const AcGeVector2d end = along * (width / 2), side{-end.y, end.x};
    const AcGePoint2d corners[] = {a + (side - end), b + (side + end), b + (end - side),
                                   a + (side + end) * -1};
    const double slope = length > 0 ? (to.depth - from.depth) / length : 0;
    const Gradient depth{from.depth - slope * (along.x * a.x + along.y * a.y), slope * along.x,
                         slope * along.y};
    // Seen along, a line is a dot at its nearer end.
    const auto [farther, nearer] = std::minmax(from.depth, to.depth);
    if (length > 0)
        fillConvex(corners, {depth, {1, 0, 0}, farther, nearer, 1, 1, color});
    else
        fillConvex(corners, {{nearer, 0, 0}, {1, 0, 0}, nearer, nearer, 1, 1, color});
}

void DepthCanvas::fillArea(std::span<const std::vector<AcGePoint2d>> contours, FillRule rule,
                           const Gradient& depth, Rgb color) {
    int lowest = endRow(), highest = firstRow_;
    for (const auto& contour : contours) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            const AcGePoint2d& a = contour[i];
            const AcGePoint2d& b = contour[i + 1 == contour.size() ? 0 : i + 1];
            const int first = firstCentre(std::min(a.y, b.y), firstRow_, endRow());
            const int end = firstCentre(std::max(a.y, b.y), firstRow_, endRow());
            for (int row = first; row < end; ++row)
                crossings_[static_cast<std::size_t>(row - firstRow_)].push_back(
                    {crossingAt(a, b, row + 0.5), a.y < b.y ? 1 : -1});
            lowest = std::min(lowest, first);
            highest = std::max(highest, end);
        }
    }
    constexpr double kAny = std::numeric_limits<double>::max();
    const Paint paint{depth, {1, 0, 0}, -kAny, kAny, 1, 1, color};
    for (int row = lowest; row < highest; ++row) {
        auto& crossings = crossings_[static_cast<std::size_t>(row - firstRow_)];
        std::ranges::sort(crossings, {}, &Crossing::x);
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].winding;
            if (rule == FillRule::NonZero ? winding != 0 : i % 2 == 0)
                paintSpan(row, crossings[i].x, crossings[i + 1].x, paint);
        }
        crossings.clear();
    }
}

Rgb DepthCanvas::mean(int column, int row, int size) const {
    int red = 0, green = 0, blue = 0;
    for (int y = row; y < row + size; ++y) {
        const Rgb* const samples =
            colors_.data() + static_cast<std::size_t>(y - firstRow_) * static_cast<std::size_t>(width_);
        for (int x = column; x < column + size; ++x) {
            red += samples[x].red;
            green += samples[x].green;
            blue += samples[x].blue;
        }
    }
    const int count = size * size;
    const auto rounded = [&](int sum) { return static_cast<std::uint8_t>((sum + count / 2) / count); };
    return {rounded(red), rounded(green), rounded(blue)};
}

}  // namespace drafthost::graphics
