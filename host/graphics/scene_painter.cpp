#include "host/graphics/scene_painter.h"

#include <algorithm>
#include <cmath>

#include "host/graphics/depth_canvas.h"

namespace drafthost::graphics {

namespace {

constexpr int kSamples = 3;  // of a pixel's side
// Rows are painted in bands, so that the samples of a large picture need no more memory than this many.
constexpr int kSamplesOfBand = 12'000'000;
constexpr double kAmbient = 0.4, kDiffuse = 0.6;  // light on a surface, together 1
constexpr double kInside = 0.5;                   // share of the light that reaches the inside of a body
// Lines and areas lie this much nearer to the eye than where they are, in pixels: on top of the surface that
// they belong to.
constexpr double kLineBias = 1.2, kAreaBias = 0.6;

class ScenePainter {
public:
    ScenePainter(const Scene& scene, const PictureFrame& frame)
        : scene_(scene), frame_(frame), axes_(scene.towardsEye), perUnit_(frame.scale * kSamples) {
        const AcGeVector3d lamp = axes_.right * -0.45 + axes_.up * 0.7 + axes_.towardsEye;
        lamp_ = lamp / lamp.length();
        project();
    }

    std::vector<Rgb> paint() {
        const int width = frame_.width * kSamples;
        const int bandRows = std::clamp(kSamplesOfBand / width / kSamples, 1, frame_.height);
        std::vector<Rgb> pixels;
        pixels.reserve(static_cast<std::size_t>(frame_.width) * static_cast<std::size_t>(frame_.height));
        for (int row = 0; row < frame_.height; row += bandRows) {
            const int rows = std::min(bandRows, frame_.height - row);
            DepthCanvas canvas(width, row * kSamples, rows * kSamples, kBackground);
            paintBand(canvas);
            for (int y = row; y < row + rows; ++y) {
                for (int x = 0; x < frame_.width; ++x)
                    pixels.push_back(canvas.mean(x * kSamples, y * kSamples, kSamples));
            }
        }
        return pixels;
    }

private:
    using Vertex = DepthCanvas::Vertex;

    // Depths are in samples too, so that they keep their precision in the buffer however large coordinates
    // are.
    Vertex toSamples(const AcGePoint3d& world) const {
        const AcGePoint3d p = axes_.toView(world);
        return {(p.x - frame_.topLeft.x) * perUnit_, (frame_.topLeft.y - p.y) * perUnit_,
                (p.z - depthOrigin_) * perUnit_, 1};
    }

    void project() {
        if (!scene_.surfaces.empty())
            depthOrigin_ = axes_.toView(scene_.surfaces.front().points.front()).z;
        else if (!scene_.linePoints.empty())
            depthOrigin_ = axes_.toView(scene_.linePoints.front()).z;
        for (const SceneSurface& surface : scene_.surfaces) {
            Projected& projected = surfaces_.emplace_back();
            for (const AcGePoint3d& point : surface.points)
                projected.add(toSamples(point));
            for (const AcGeVector3d& normal : surface.normals)
                projected.light.push_back(normal.dotProduct(lamp_));
        }
        for (const AcGePoint3d& point : scene_.linePoints)
            linePoints_.push_back(toSamples(point));
    }

    void paintBand(DepthCanvas& canvas) const {
        for (std::size_t i = 0; i < surfaces_.size(); ++i) {
            if (surfaces_[i].top < canvas.endRow() && surfaces_[i].bottom > canvas.firstRow())
                paintSurface(canvas, scene_.surfaces[i], surfaces_[i]);
        }
        for (const SceneArea& area : scene_.areas)
            paintArea(canvas, area);
        for (const SceneLine& line : scene_.lines)
            paintLine(canvas, line);
    }

    struct Projected {
        std::vector<Vertex> points;
        std::vector<double> light;   // of each normal: cosine of its angle to the lamp
        double top = 0, bottom = 0;  // rows that the surface reaches
        void add(const Vertex& vertex) {
            top = points.empty() ? vertex.y : std::min(top, vertex.y);
            bottom = points.empty() ? vertex.y : std::max(bottom, vertex.y);
            points.push_back(vertex);
        }
    };

    static void paintSurface(DepthCanvas& canvas, const SceneSurface& surface, const Projected& projected) {
        for (const auto& triangle : surface.triangles) {
            Vertex corners[3];
            for (std::size_t i = 0; i < 3; ++i)
                corners[i] = projected.points[triangle[i].point];
            const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
            if (bottom <= canvas.firstRow() || top >= canvas.endRow())
                continue;
            // Rows run downwards: what turns counter-clockwise towards the eye turns clockwise there.
            const double turn = (corners[1].x - corners[0].x) * (corners[2].y - corners[0].y) -
                                (corners[1].y - corners[0].y) * (corners[2].x - corners[0].x);
            const bool isOutside = turn < 0;
            for (std::size_t i = 0; i < 3; ++i) {
                const double light = projected.light[triangle[i].normal];
                const double lit = kAmbient + kDiffuse * std::max(isOutside ? light : -light, 0.0);
                corners[i].shade = isOutside || !surface.enclosesBody ? lit : lit * kInside;
            }
            canvas.fillTriangle(corners[0], corners[1], corners[2], surface.color);
        }
    }

    void paintLine(DepthCanvas& canvas, const SceneLine& line) const {
        const double width = strokePixels(line.weight) * kSamples;
        const std::uint32_t segments = std::max(line.count - 1, 1u);
        for (std::uint32_t i = 0; i < segments; ++i) {
            Vertex from = linePoints_[line.first + i];
            Vertex to = linePoints_[line.first + std::min(i + 1, line.count - 1)];
            if (std::max(from.y, to.y) + width < canvas.firstRow() ||
                std::min(from.y, to.y) - width > canvas.endRow())
                continue;
            from.depth += kLineBias * kSamples;
            to.depth += kLineBias * kSamples;
            canvas.drawLine(from, to, width, line.color);
        }
    }

    // An area seen edge-on has no inside to be painted.
    void paintArea(DepthCanvas& canvas, const SceneArea& area) const {
        std::vector<std::vector<AcGePoint2d>> contours;
        AcGeVector3d normal;  // in samples, x to the right and y downwards
        const Vertex origin = toSamples(area.contours.front().front());
        double top = origin.y, bottom = origin.y, widest = 0;
        for (const auto& contour : area.contours) {
            std::vector<AcGePoint2d>& flat = contours.emplace_back();
            AcGeVector3d sum, last;
            for (const AcGePoint3d& point : contour) {
                const Vertex v = toSamples(point);
                const AcGeVector3d next{v.x - origin.x, v.y - origin.y, v.depth - origin.depth};
                sum += last.crossProduct(next);
                last = next;
                flat.push_back({v.x, v.y});
                top = std::min(top, v.y);
                bottom = std::max(bottom, v.y);
            }
            sum += last.crossProduct(toVector(contour.front(), origin));
            // The contour that encloses most says best in which plane all of them lie.
            if (sum.length() > widest) {
                widest = sum.length();
                normal = sum;
            }
        }
        constexpr double kEdgeOn = 1e-6;
        if (bottom < canvas.firstRow() || top > canvas.endRow() || !(std::fabs(normal.z) > kEdgeOn * widest))
            return;
        const double alongX = -normal.x / normal.z, alongY = -normal.y / normal.z;
        const Gradient depth{origin.depth + kAreaBias * kSamples - alongX * origin.x - alongY * origin.y,
                             alongX, alongY};
        canvas.fillArea(contours, area.evenOdd ? FillRule::EvenOdd : FillRule::NonZero, depth, area.color);
    }

    AcGeVector3d toVector(const AcGePoint3d& point, const Vertex& origin) const {
        const Vertex v = toSamples(point);
        return {v.x - origin.x, v.y - origin.y, v.depth - origin.depth};
    }

    const Scene& scene_;
    const PictureFrame& frame_;
    ViewAxes axes_;
    double perUnit_;  // samples for a drawing unit
    double depthOrigin_ = 0;
    AcGeVector3d lamp_;
    std::vector<Projected> surfaces_;
    std::vector<Vertex> linePoints_;
};

}  // namespace

std::vector<Rgb> paintScene(const Scene& scene, const PictureFrame& frame) {
    return ScenePainter(scene, frame).paint();
}

}  // namespace drafthost::graphics
