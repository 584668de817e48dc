#include <algorithm>
#include <cmath>
#include <cwchar>
#include <numbers>

#include "host/geometry/shell.h"
#include "host/graphics/dasher.h"
#include "host/graphics/resolving_draw.h"
#include "host/graphics/scene.h"
#include "host/graphics/surface_normals.h"
#include "host/text/outlines.h"

namespace drafthost::graphics {

namespace {

constexpr double kEdgeDarkness = 0.22;  // of the surface's colour
constexpr float kEdgeWeight = 0.25f;

std::uint8_t scaled(std::uint8_t channel, double factor) {
    return static_cast<std::uint8_t>(std::lround(channel * factor));
}
Rgb edgeColorOf(Rgb color) {
    return {scaled(color.red, kEdgeDarkness), scaled(color.green, kEdgeDarkness),
            scaled(color.blue, kEdgeDarkness)};
}

bool allFinite(const std::vector<AcGePoint3d>& points) {
    return std::ranges::all_of(points, [](const AcGePoint3d& p) { return std::isfinite(p.x + p.y + p.z); });
}

class SceneBuilder final : public ResolvingDraw {
public:
    SceneBuilder(const AcDbDatabase& database, double deviation, const AcGeVector3d& towardsEye)
        : ResolvingDraw(database, deviation, towardsEye) {
        scene_.towardsEye = towardsEye;
    }
    Scene take() { return std::move(scene_); }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                  std::int64_t) override {
        if (count > 0 && !hidden())
            addLine(inWorld(count, points));
        return false;
    }

    bool polygon(std::uint32_t count, const AcGePoint3d* points) override {
        if (fills())
            return polyPolygon(1, &count, points);
        if (count == 0 || hidden())
            return false;
        std::vector<AcGePoint3d> closed = inWorld(count, points);
        closed.push_back(closed.front());
        addLine(std::move(closed));
        return false;
    }

    bool polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                     const AcGePoint3d* points) override {
        if (hidden())
            return false;
        SceneArea area{effectiveColor(), true, {}};
        for (std::uint32_t i = 0; i < contourCount; points += counts[i++])
            area.contours.push_back(inWorld(counts[i], points));
        addArea(std::move(area));
        return false;
    }

    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override {
        if (hidden())
            return false;
        Shell shell = readShell(pointCount, points, faceListSize, faceList, edges, faces);
        transformShell(shell, transform());
        if (transform().det() < 0)  // a reference that mirrors turns the surface inside out
            turnOver(shell);
        const Rgb color = effectiveColor();
        SceneSurface surface = surfaceOf(shell, color);
        if (!surface.triangles.empty() && allFinite(surface.points))
            scene_.surfaces.push_back(std::move(surface));
        for (const ShellEdge& edge : edgesOf(shell)) {
            if (edge.visible) {
                addPoints({shell.points[static_cast<std::size_t>(edge.from)],
                           shell.points[static_cast<std::size_t>(edge.to)]},
                          edgeColorOf(color), kEdgeWeight);
            }
        }
        return false;
    }

    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override {
        return circularArc(center, radius, normal, normal.perpVector(), 2 * std::numbers::pi);
    }

    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& startDirection, double sweep) override {
        if (!(radius > 0) || hidden())
            return false;
        const AcGeVector3d start = startDirection.normal();
        const AcGePoint3d middle = transform() * center;
        const AcGeVector3d along = transform() * (start * radius);
        const AcGeVector3d across = transform() * (normal.normal().crossProduct(start) * radius);
        const int chords = chordCount(std::max(along.length(), across.length()), sweep, deviation());
        std::vector<AcGePoint3d> points;
        for (int i = 0; i <= chords; ++i) {
            const double angle = sweep * i / chords;
            points.push_back(middle + along * std::cos(angle) + across * std::sin(angle));
        }
        addLine(std::move(points));
        return false;
    }

    // A linetype does not apply to text.
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
              const ACHAR* message, int length, const AcGiTextStyle& style) override {
        if (hidden())
            return false;
        const std::size_t count = length < 0 ? std::wcslen(message) : static_cast<std::size_t>(length);
        const AcGePoint3d start = transform() * position;
        const AcGeVector3d along = transform() * direction.normal();
        const AcGeVector3d upward = transform() * normal.normal().crossProduct(direction.normal());
        for (const text::GlyphOutline& glyph : text::layoutRun(style, {message, count}).glyphs) {
            SceneArea area{effectiveColor(), false, {}};
            for (const text::Contour& contour : glyph.contours) {
                std::vector<AcGePoint3d> points;
                for (const AcGePoint2d& p : contour)
                    points.push_back(start + along * p.x + upward * p.y);
                if (glyph.filled)
                    area.contours.push_back(std::move(points));
                else
                    addPoints(points, effectiveColor(), effectiveMillimetres());
            }
            addArea(std::move(area));
        }
        return false;
    }

private:
    std::vector<AcGePoint3d> inWorld(std::uint32_t count, const AcGePoint3d* points) const {
        std::vector<AcGePoint3d> world(points, points + count);
        for (AcGePoint3d& point : world)
            point.transformBy(transform());
        return world;
    }

    // Lines that an entity draws for the view are the outline of its surface.
    void addLine(std::vector<AcGePoint3d> points) {
        if (isDrawingForView())
            return addPoints(points, edgeColorOf(effectiveColor()), kEdgeWeight);
        const std::vector<double> pattern = currentPattern();
        if (pattern.empty())
            return addPoints(points, effectiveColor(), effectiveMillimetres());
        appendDashed(points, pattern);
    }

    void appendDashed(const std::vector<AcGePoint3d>& points, const std::vector<double>& pattern) {
        std::vector<double> distances{0};
        for (std::size_t i = 1; i < points.size(); ++i)
            distances.push_back(distances.back() + points[i - 1].distanceTo(points[i]));
        const auto at = [&](double distance) {
            const auto found = std::ranges::upper_bound(distances, distance);
            const auto i = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(
                found - distances.begin(), 1, static_cast<std::ptrdiff_t>(points.size()) - 1));
            const double length = distances[i] - distances[i - 1];
            const double share = length > 0 ? (distance - distances[i - 1]) / length : 0;
            return points[i - 1] + (points[i] - points[i - 1]) * std::clamp(share, 0.0, 1.0);
        };
        if (points.size() < 2 || !(distances.back() > 0))
            return addPoints(points, effectiveColor(), effectiveMillimetres());
        for (const auto& [from, to] : dashSpans(distances.back(), pattern)) {
            std::vector<AcGePoint3d> dash{at(from)};
            for (std::size_t i = 1; i + 1 < points.size(); ++i) {
                if (distances[i] > from && distances[i] < to)
                    dash.push_back(points[i]);
            }
            if (to > from)
                dash.push_back(at(to));
            addPoints(dash, effectiveColor(), effectiveMillimetres());
        }
    }

    void addPoints(const std::vector<AcGePoint3d>& points, Rgb color, float weight) {
        if (points.empty() || !allFinite(points))
            return;
        scene_.lines.push_back({color, weight, static_cast<std::uint32_t>(scene_.linePoints.size()),
                                static_cast<std::uint32_t>(points.size())});
        scene_.linePoints.insert(scene_.linePoints.end(), points.begin(), points.end());
    }

    void addArea(SceneArea area) {
        std::erase_if(area.contours,
                      [](const auto& contour) { return contour.empty() || !allFinite(contour); });
        if (!area.contours.empty())
            scene_.areas.push_back(std::move(area));
    }

    Scene scene_;
};

}  // namespace

Scene buildScene(const AcDbDatabase& database, const AcGeVector3d& towardsEye) {
    SceneBuilder builder(database, deviationFor(sizeOfDrawing(database)), towardsEye / towardsEye.length());
    builder.drawModelSpace();
    return builder.take();
}

}  // namespace drafthost::graphics
