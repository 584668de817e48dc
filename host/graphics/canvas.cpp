#include "host/graphics/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace drafthost::graphics {

namespace {
constexpr int kSubRows = 5;
constexpr double kRoundJoinWidth = 2.0;

std::uint8_t blend(std::uint8_t below, std::uint8_t above, float cover) {
    return static_cast<std::uint8_t>(std::lround(below + (above - below) * cover));
}
}  // namespace

Canvas::Canvas(int width, int height, Rgb background)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width) * height, background),
      cover_(static_cast<std::size_t>(width), 0.0f) {}

void Canvas::addEdge(const AcGePoint2d& from, const AcGePoint2d& to) {
    if (from.y == to.y || !std::isfinite(from.x + from.y + to.x + to.y))
        return;
    const bool down = from.y < to.y;
    const AcGePoint2d& top = down ? from : to;
    const AcGePoint2d& bottom = down ? to : from;
    if (bottom.y <= 0 || top.y >= height_)
        return;
    edges_.push_back({top.x, top.y, bottom.y, (bottom.x - top.x) / (bottom.y - top.y), down ? 1 : -1});
}

void Canvas::fill(std::span<const std::vector<AcGePoint2d>> contours, FillRule rule, Rgb color) {
    edges_.clear();
    for (const auto& contour : contours) {
        for (std::size_t i = 0; i < contour.size(); ++i)
            addEdge(contour[i], contour[(i + 1) % contour.size()]);
    }
    paintEdges(rule, color);
}

void Canvas::addQuad(const AcGePoint2d& a, const AcGePoint2d& b, double halfWidth) {
    AcGeVector2d along = b - a;
    const double length = along.length();
    along = length > 0 ? along * (halfWidth / length) : AcGeVector2d{halfWidth, 0};
    const AcGeVector2d across{-along.y, along.x};
    const AcGePoint2d corners[] = {a + (across - along), b + (across + along), b + (along - across),
                                   a + (along + across) * -1.0};
    for (int i = 0; i < 4; ++i)
        addEdge(corners[i], corners[(i + 1) % 4]);
}

void Canvas::addDisc(const AcGePoint2d& center, double radius) {
    constexpr int kSides = 12;
    AcGePoint2d last = center + AcGeVector2d{radius, 0};
    for (int i = 1; i <= kSides; ++i) {
        // Clockwise on screen like the quads, so that their windings add up.
        const double angle = -2.0 * std::numbers::pi * i / kSides;
        const AcGePoint2d next = center + AcGeVector2d{radius * std::cos(angle), radius * std::sin(angle)};
        addEdge(last, next);
        last = next;
    }
}

void Canvas::stroke(std::span<const AcGePoint2d> points, double lineWidth, Rgb color) {
    edges_.clear();
    if (points.empty())
        return;
    const double half = lineWidth / 2;
    if (points.size() == 1)
        addQuad(points[0], points[0], half);
    for (std::size_t i = 1; i < points.size(); ++i)
        addQuad(points[i - 1], points[i], half);
    if (lineWidth > kRoundJoinWidth) {
        for (std::size_t i = 1; i + 1 < points.size(); ++i)
            addDisc(points[i], half);
    }
    paintEdges(FillRule::NonZero, color);
}

void Canvas::paintEdges(FillRule rule, Rgb color) {
    if (edges_.empty())
        return;
    std::sort(edges_.begin(), edges_.end(), [](const Edge& a, const Edge& b) { return a.topY < b.topY; });
    double bottom = 0;
    for (const Edge& edge : edges_)
        bottom = std::max(bottom, edge.bottomY);
    const int firstRow = std::max(0, static_cast<int>(std::floor(edges_.front().topY)));
    const int lastRow =
        std::min(height_ - 1, static_cast<int>(std::floor(std::min(bottom, double(height_)))));
    active_.clear();
    std::size_t next = 0;
    for (int row = firstRow; row <= lastRow; ++row) {
        while (next < edges_.size() && edges_[next].topY < row + 1)
            active_.push_back(next++);
        std::erase_if(active_, [&](std::size_t i) { return edges_[i].bottomY <= row; });
        coverFrom_ = width_;
        coverTo_ = -1;
        for (int sub = 0; sub < kSubRows; ++sub)
            coverRow(row + (sub + 0.5) / kSubRows, rule);
        if (coverTo_ >= coverFrom_)
            blendRow(row, color);
    }
}

void Canvas::coverRow(double y, FillRule rule) {
    crossings_.clear();
    for (const std::size_t i : active_) {
        const Edge& edge = edges_[i];
        if (edge.topY <= y && y < edge.bottomY) {
            crossings_.emplace_back(edge.topX + (y - edge.topY) * edge.slope, edge.winding);
        }
    }
    std::sort(crossings_.begin(), crossings_.end());
    int winding = 0;
    for (std::size_t i = 0; i + 1 < crossings_.size(); ++i) {
        winding += crossings_[i].second;
        const bool inside = rule == FillRule::NonZero ? winding != 0 : i % 2 == 0;
        if (inside)
            coverSpan(crossings_[i].first, crossings_[i + 1].first);
    }
}

void Canvas::coverSpan(double from, double to) {
    from = std::clamp(from, 0.0, double(width_));
    to = std::clamp(to, 0.0, double(width_));
    if (!(to > from))
        return;
    constexpr float kPart = 1.0f / kSubRows;
    const int first = static_cast<int>(from);
    const int last = std::min(static_cast<int>(to), width_ - 1);
    coverFrom_ = std::min(coverFrom_, first);
    coverTo_ = std::max(coverTo_, last);
    for (int x = first; x <= last; ++x) {
        const double part = std::min(to, x + 1.0) - std::max(from, double(x));
        cover_[static_cast<std::size_t>(x)] += static_cast<float>(part) * kPart;
    }
}

void Canvas::blendRow(int row, Rgb color) {
    Rgb* pixels = pixels_.data() + static_cast<std::size_t>(row) * width_;
    for (int x = coverFrom_; x <= coverTo_; ++x) {
        float& cover = cover_[static_cast<std::size_t>(x)];
        if (cover > 0) {
            const float part = std::min(cover, 1.0f);
            pixels[x] = {blend(pixels[x].red, color.red, part), blend(pixels[x].green, color.green, part),
                         blend(pixels[x].blue, color.blue, part)};
            cover = 0;
        }
    }
}

}  // namespace drafthost::graphics
