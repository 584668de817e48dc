#include "host/geometry/shell.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>

namespace drafthost {

namespace {

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

// One side of a face.
struct Side {
    std::int32_t from, to;  // the smaller first
    std::int32_t face;
    bool forward;  // the face runs along it from the smaller to the larger number
    bool visible;
    bool operator<(const Side& other) const {
        if (from != other.from)
            return from < other.from;
        return to != other.to ? to < other.to : face < other.face;
    }
    bool sameEdge(const Side& other) const { return from == other.from && to == other.to; }
};

std::vector<Side> sortedSides(const Shell& shell, bool hiddenFacesToo) {
    std::vector<Side> sides;
    sides.reserve(shell.corners.size());
    for (std::size_t i = 0; i < shell.faces.size(); ++i) {
        const Shell::Face& face = shell.faces[i];
        if (!face.shown && !hiddenFacesToo)
            continue;
        const auto corners = shell.cornersOf(face);
        for (std::size_t j = 0; j < corners.size(); ++j) {
            const std::int32_t a = corners[j], b = corners[j + 1 == corners.size() ? 0 : j + 1];
            if (a != b)
                sides.push_back({std::min(a, b), std::max(a, b), static_cast<std::int32_t>(i), a < b,
                                 shell.cornerVisible[face.first + j] != 0});
        }
    }
    std::sort(sides.begin(), sides.end());
    return sides;
}

// Edges strung together to lines, each edge in one of them.
class EdgeChains {
public:
    EdgeChains(const Shell& shell, std::vector<ShellEdge> edges)
        : shell_(shell), edges_(std::move(edges)), isDrawn_(edges_.size()), first_(shell.points.size() + 1) {
        // The numbers of the edges at each point, in one list.
        for (const ShellEdge& edge : edges_) {
            ++first_[static_cast<std::size_t>(edge.from) + 1];
            ++first_[static_cast<std::size_t>(edge.to) + 1];
        }
        std::partial_sum(first_.begin(), first_.end(), first_.begin());
        atPoint_.resize(2 * edges_.size());
        std::vector<std::size_t> next = first_;
        for (std::size_t i = 0; i < edges_.size(); ++i) {
            atPoint_[next[static_cast<std::size_t>(edges_[i].from)]++] = i;
            atPoint_[next[static_cast<std::size_t>(edges_[i].to)]++] = i;
        }
    }

    void draw(AcGiWorldGeometry& geometry) {
        // Lines with ends first; what is left then are closed ones.
        for (const bool closed : {false, true}) {
            for (std::size_t i = 0; i < edges_.size(); ++i) {
                for (const std::int32_t point : {edges_[i].from, edges_[i].to}) {
                    if (!isDrawn_[i] && (closed || countAt(point) != 2))
                        drawFrom(geometry, i, point);
                }
            }
        }
    }

private:
    std::size_t countAt(std::int32_t point) const {
        return first_[static_cast<std::size_t>(point) + 1] - first_[static_cast<std::size_t>(point)];
    }

    void drawFrom(AcGiWorldGeometry& geometry, std::size_t edge, std::int32_t point) {
        line_.assign(1, shell_.points[static_cast<std::size_t>(point)]);
        while (!isDrawn_[edge]) {
            isDrawn_[edge] = 1;
            point = edges_[edge].from == point ? edges_[edge].to : edges_[edge].from;
            line_.push_back(shell_.points[static_cast<std::size_t>(point)]);
            if (countAt(point) != 2)
                break;
            const std::size_t* const both = atPoint_.data() + first_[static_cast<std::size_t>(point)];
            edge = both[0] == edge ? both[1] : both[0];
        }
        geometry.polyline(static_cast<std::uint32_t>(line_.size()), line_.data());
    }

    const Shell& shell_;
    std::vector<ShellEdge> edges_;
    std::vector<std::uint8_t> isDrawn_;
    std::vector<std::size_t> first_, atPoint_;
    std::vector<AcGePoint3d> line_;
};

}  // namespace

Shell readShell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
                const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) {
    const bool* const edgeShown = edges ? edges->visibility : nullptr;
    const bool* const faceShown = faces ? faces->visibility : nullptr;
    Shell shell;
    shell.points.assign(points, points + pointCount);
    shell.corners.reserve(faceListSize);
    shell.cornerVisible.reserve(faceListSize);
    std::size_t edge = 0, number = 0;
    for (std::uint32_t at = 0; at < faceListSize; ++number) {
        const auto count = static_cast<std::uint32_t>(std::max(faceList[at++], 0));
        if (count > faceListSize - at)
            break;
        const std::span corners(faceList + at, count);
        const bool usable = count >= 3 && std::ranges::all_of(corners, [&](std::int32_t corner) {
                                return corner >= 0 && static_cast<std::uint32_t>(corner) < pointCount &&
                                       isFinite(points[corner]);
                            });
        if (usable) {
            shell.faces.push_back(
                {static_cast<std::uint32_t>(shell.corners.size()), count, !faceShown || faceShown[number]});
            shell.corners.insert(shell.corners.end(), corners.begin(), corners.end());
            for (std::uint32_t i = 0; i < count; ++i)
                shell.cornerVisible.push_back(!edgeShown || edgeShown[edge + i]);
        }
        edge += count;
        at += count;
    }
    return shell;
}

void drawShell(AcGiWorldGeometry& geometry, const Shell& shell) {
    std::vector<std::int32_t> faceList;
    faceList.reserve(shell.corners.size() + shell.faces.size());
    const auto edgeShown = std::make_unique<bool[]>(shell.corners.size());
    const auto faceShown = std::make_unique<bool[]>(shell.faces.size());
    std::size_t edge = 0;
    for (std::size_t i = 0; i < shell.faces.size(); ++i) {
        const Shell::Face& face = shell.faces[i];
        const auto corners = shell.cornersOf(face);
        faceList.push_back(static_cast<std::int32_t>(face.count));
        faceList.insert(faceList.end(), corners.begin(), corners.end());
        faceShown[i] = face.shown;
        for (std::uint32_t j = 0; j < face.count; ++j)
            edgeShown[edge++] = shell.cornerVisible[face.first + j] != 0;
    }
    const AcGiEdgeData edges{edgeShown.get()};
    const AcGiFaceData faces{faceShown.get()};
    geometry.shell(static_cast<std::uint32_t>(shell.points.size()), shell.points.data(),
                   static_cast<std::uint32_t>(faceList.size()), faceList.data(), &edges, &faces);
}

void transformShell(Shell& shell, const AcGeMatrix3d& matrix) {
    for (AcGePoint3d& point : shell.points)
        point.transformBy(matrix);
}

void turnOver(Shell& shell) {
    for (const Shell::Face& face : shell.faces) {
        const auto corners = shell.corners.begin() + face.first;
        const auto visible = shell.cornerVisible.begin() + face.first;
        std::reverse(corners, corners + face.count);
        std::reverse(visible, visible + face.count - 1);  // the last edge stays the last one
    }
}

std::vector<ShellEdge> edgesOf(const Shell& shell) {
    const std::vector<Side> sides = sortedSides(shell, false);
    std::vector<ShellEdge> edges;
    edges.reserve(sides.size() / 2 + 1);
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const Side& side = sides[i];
        if (i == 0 || !side.sameEdge(sides[i - 1])) {
            edges.push_back({side.from, side.to, side.face, -1, side.visible});
            continue;
        }
        ShellEdge& edge = edges.back();
        edge.visible |= side.visible;
        if (edge.otherFace < 0)
            edge.otherFace = side.face;
    }
    return edges;
}

AcGeVector3d doubleAreaOf(const Shell& shell, const Shell::Face& face) {
    const auto corners = shell.cornersOf(face);
    const AcGePoint3d& origin = shell.points[static_cast<std::size_t>(corners[0])];
    AcGeVector3d sum;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
        sum += (shell.points[static_cast<std::size_t>(corners[i])] - origin)
                   .crossProduct(shell.points[static_cast<std::size_t>(corners[i + 1])] - origin);
    }
    return sum;
}

void drawEdges(AcGiWorldGeometry& geometry, const Shell& shell) {
    std::vector<ShellEdge> edges = edgesOf(shell);
    std::erase_if(edges, [](const ShellEdge& edge) { return !edge.visible; });
    EdgeChains(shell, std::move(edges)).draw(geometry);
}

void drawSilhouette(AcGiWorldGeometry& geometry, const Shell& shell, const AcGeVector3d& towardsEye) {
    constexpr double kEdgeOn = 1e-9;  // of the face's area: a face seen edge-on is turned to neither side
    std::vector<int> turned(shell.faces.size());
    for (std::size_t i = 0; i < turned.size(); ++i) {
        const AcGeVector3d normal = doubleAreaOf(shell, shell.faces[i]);
        const double towards = normal.dotProduct(towardsEye), least = kEdgeOn * normal.length();
        turned[i] = towards > least ? 1 : towards < -least ? -1 : 0;
    }
    const auto isTowards = [&](std::int32_t face) { return turned[static_cast<std::size_t>(face)] > 0; };
    std::vector<ShellEdge> edges = edgesOf(shell);
    std::erase_if(edges, [&](const ShellEdge& edge) {
        return edge.visible || edge.otherFace < 0 || isTowards(edge.face) == isTowards(edge.otherFace);
    });
    EdgeChains(shell, std::move(edges)).draw(geometry);
}

Shell welded(const Shell& shell) {
    std::vector<std::int32_t> order(shell.points.size());
    std::iota(order.begin(), order.end(), 0);
    const auto place = [&](std::int32_t i) {
        const AcGePoint3d& p = shell.points[static_cast<std::size_t>(i)];
        return std::array<double, 3>{p.x + 0.0, p.y + 0.0, p.z + 0.0};
    };
    // Points that no face names may be no numbers; they must not spoil the order.
    std::vector<std::uint8_t> used(shell.points.size());
    for (const std::int32_t corner : shell.corners)
        used[static_cast<std::size_t>(corner)] = 1;
    std::erase_if(order, [&](std::int32_t i) { return !used[static_cast<std::size_t>(i)]; });
    std::sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
        const auto placeA = place(a), placeB = place(b);
        return placeA != placeB ? placeA < placeB : a < b;
    });
    std::vector<std::int32_t> first(shell.points.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool isNew = i == 0 || place(order[i]) != place(order[i - 1]);
        first[static_cast<std::size_t>(order[i])] =
            isNew ? order[i] : first[static_cast<std::size_t>(order[i - 1])];
    }
    // Points keep their order; those that are no longer used go.
    std::vector<std::int32_t> number(shell.points.size(), -1);
    Shell result;
    for (std::size_t i = 0; i < shell.points.size(); ++i) {
        if (used[i] && first[i] == static_cast<std::int32_t>(i)) {
            number[i] = static_cast<std::int32_t>(result.points.size());
            result.points.push_back(shell.points[i]);
        }
    }
    for (const Shell::Face& face : shell.faces) {
        const auto start = static_cast<std::uint32_t>(result.corners.size());
        for (std::uint32_t j = 0; j < face.count; ++j) {
            const auto corner = static_cast<std::size_t>(shell.corners[face.first + j]);
            const std::int32_t point = number[static_cast<std::size_t>(first[corner])];
            if (result.corners.size() > start && result.corners.back() == point)
                continue;
            result.corners.push_back(point);
            result.cornerVisible.push_back(shell.cornerVisible[face.first + j]);
        }
        while (result.corners.size() > start + 1 && result.corners.back() == result.corners[start]) {
            result.corners.pop_back();
            result.cornerVisible.pop_back();
        }
        const auto count = static_cast<std::uint32_t>(result.corners.size()) - start;
        if (count >= 3) {
            result.faces.push_back({start, count, face.shown});
        } else {
            result.corners.resize(start);
            result.cornerVisible.resize(start);
        }
    }
    return result;
}

bool isClosed(const Shell& shell) {
    const std::vector<Side> sides = sortedSides(shell, true);
    int balance = 0;
    for (std::size_t i = 0; i < sides.size(); ++i) {
        balance += sides[i].forward ? 1 : -1;
        if (i + 1 == sides.size() || !sides[i].sameEdge(sides[i + 1])) {
            if (balance != 0)
                return false;
            balance = 0;
        }
    }
    return !sides.empty();
}

double volumeOf(const Shell& shell) {
    if (shell.faces.empty())
        return 0;
    const AcGePoint3d origin = shell.points[static_cast<std::size_t>(shell.corners[0])];
    double sum = 0;
    for (const Shell::Face& face : shell.faces) {
        const auto corners = shell.cornersOf(face);
        const auto at = [&](std::size_t i) {
            return shell.points[static_cast<std::size_t>(corners[i])] - origin;
        };
        for (std::size_t i = 1; i + 1 < corners.size(); ++i)
            sum += at(0).dotProduct(at(i).crossProduct(at(i + 1)));
    }
    return sum / 6;
}

double areaOf(const Shell& shell) {
    double sum = 0;
    for (const Shell::Face& face : shell.faces)
        sum += doubleAreaOf(shell, face).length() / 2;
    return sum;
}

}  // namespace drafthost
