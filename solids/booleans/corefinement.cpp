#include "solids/booleans/corefinement.h"

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/corefinement.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/Triangulation_face_base_with_info_2.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>
#include <CGAL/box_intersection_d.h>

#include <algorithm>
#include <array>

namespace solids {

namespace {

namespace processing = CGAL::Polygon_mesh_processing;
// Where surfaces meet is found exactly also with this kernel; only the points that come back are rounded.
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_3;
using Surface = CGAL::Surface_mesh<Point>;
using Face = Surface::Face_index;
using Vertex = Surface::Vertex_index;

// What the operation must not lose about a face.
struct Provenance {
    FaceKind kind = FaceKind::wall;
    bool changed = false;
};
using Provenances = Surface::Property_map<Face, Provenance>;

Point pointOf(const AcGePoint3d& point) {
    return {point.x, point.y, point.z};
}

Provenances provenancesOf(Surface& surface) {
    return surface.add_property_map<Face, Provenance>("f:provenance").first;
}

// False for a mesh that is no closed manifold.
bool build(const Mesh& mesh, Surface& surface, Provenances provenances) {
    const auto count = mesh.points.size();
    surface.reserve(static_cast<Surface::size_type>(count),
                    static_cast<Surface::size_type>(mesh.triangles.size() * 3 / 2),
                    static_cast<Surface::size_type>(mesh.triangles.size()));
    for (const AcGePoint3d& point : mesh.points) {
        surface.add_vertex(pointOf(point));
    }
    for (const Triangle& triangle : mesh.triangles) {
        const auto& [a, b, c] = triangle.corners;
        const Face face = surface.add_face(Vertex(static_cast<Surface::size_type>(a)),
                                           Vertex(static_cast<Surface::size_type>(b)),
                                           Vertex(static_cast<Surface::size_type>(c)));
        if (face == Surface::null_face()) {
            return false;
        }
        provenances[face] = {triangle.kind, false};
    }
    return CGAL::is_closed(surface);
}

// Hands provenances on to the faces that faces are cut into, and to their copies in the other surface.
class KeepProvenance : public processing::Corefinement::Default_visitor<Surface> {
public:
    KeepProvenance(Surface& first, Provenances ofFirst, Surface& second, Provenances ofSecond)
        : first_(&first), second_(&second), ofFirst_(ofFirst), ofSecond_(ofSecond) {}

    void before_subface_creations(Face face, Surface& surface) { cut_ = of(surface)[face]; }
    void after_subface_created(Face face, Surface& surface) { of(surface)[face] = {cut_.kind, true}; }
    void after_face_copy(Face from, const Surface& source, Face to, const Surface& target) {
        of(target)[to] = of(source)[from];
    }

private:
    Provenances& of(const Surface& surface) { return &surface == first_ ? ofFirst_ : ofSecond_; }

    Surface* first_;
    Surface* second_;
    Provenances ofFirst_, ofSecond_;
    Provenance cut_;
};

Corefined meshOf(const Surface& surface, const Provenances& provenances) {
    Corefined result;
    std::vector<std::int32_t> number(surface.num_vertices() + surface.number_of_removed_vertices(), -1);
    result.mesh.triangles.reserve(surface.number_of_faces());
    result.changed.reserve(surface.number_of_faces());
    for (const Face face : surface.faces()) {
        Triangle triangle;
        triangle.kind = provenances[face].kind;
        int corner = 0;
        for (const Vertex vertex : surface.vertices_around_face(surface.halfedge(face))) {
            std::int32_t& index = number[vertex];
            if (index < 0) {
                index = static_cast<std::int32_t>(result.mesh.points.size());
                const Point& point = surface.point(vertex);
                result.mesh.points.emplace_back(point.x(), point.y(), point.z());
            }
            triangle.corners[static_cast<std::size_t>(corner++)] = index;
        }
        result.mesh.triangles.push_back(triangle);
        result.changed.push_back(provenances[face].changed);
    }
    return result;
}

using TriangleBox = CGAL::Box_intersection_d::Box_with_info_d<double, 3, const Triangle*>;

// The corners of a triangle, those that it shares with another one first, in its own order of rotation.
struct Corners {
    std::array<Point, 3> points;
    Kernel::Triangle_3 whole() const { return {points[0], points[1], points[2]}; }
    // Opposite the first corner.
    Kernel::Segment_3 opposite() const { return {points[1], points[2]}; }
};

Corners cornersFrom(const Mesh& mesh, const Triangle& triangle, int start) {
    return {{pointOf(mesh.corner(triangle, start % 3)), pointOf(mesh.corner(triangle, (start + 1) % 3)),
             pointOf(mesh.corner(triangle, (start + 2) % 3))}};
}

bool has(const Triangle& triangle, std::int32_t corner) {
    return std::find(triangle.corners.begin(), triangle.corners.end(), corner) != triangle.corners.end();
}

// The corner of the triangle that the other one has too, or has not; one must exist.
int cornerThatIs(bool shared, const Triangle& triangle, const Triangle& other) {
    return static_cast<int>(std::find_if(triangle.corners.begin(), triangle.corners.end(),
                                         [&](std::int32_t corner) { return has(other, corner) == shared; }) -
                            triangle.corners.begin());
}

// Neighbours along an edge only cross when one lies on the other.
bool foldedOver(const Mesh& mesh, const Triangle& one, const Triangle& other) {
    const int apex = cornerThatIs(false, one, other);
    const auto [top, edgeStart, edgeEnd] = cornersFrom(mesh, one, apex).points;
    const Point otherTop = pointOf(mesh.corner(other, cornerThatIs(false, other, one)));
    return CGAL::coplanar(top, edgeStart, edgeEnd, otherTop) &&
           CGAL::coplanar_orientation(edgeStart, edgeEnd, top, otherTop) == CGAL::POSITIVE;
}

bool cross(const Mesh& mesh, const Triangle& one, const Triangle& other) {
    const auto shared = std::count_if(one.corners.begin(), one.corners.end(),
                                      [&](std::int32_t corner) { return has(other, corner); });
    if (shared == 3) {
        return true;
    }
    if (shared == 2) {
        return foldedOver(mesh, one, other);
    }
    if (shared == 0) {
        return CGAL::do_intersect(cornersFrom(mesh, one, 0).whole(), cornersFrom(mesh, other, 0).whole());
    }
    const Corners first = cornersFrom(mesh, one, cornerThatIs(true, one, other));
    const Corners second = cornersFrom(mesh, other, cornerThatIs(true, other, one));
    return CGAL::do_intersect(first.whole(), second.opposite()) ||
           CGAL::do_intersect(second.whole(), first.opposite());
}

struct FoundCrossing {};

bool boxesCross(const Mesh& mesh, std::vector<TriangleBox>& suspected, std::vector<TriangleBox>& rest) {
    const auto examine = [&](const TriangleBox& one, const TriangleBox& other) {
        if (cross(mesh, *one.info(), *other.info())) {
            throw FoundCrossing();
        }
    };
    try {
        CGAL::box_self_intersection_d(suspected.begin(), suspected.end(), examine);
        CGAL::box_intersection_d(suspected.begin(), suspected.end(), rest.begin(), rest.end(), examine);
    } catch (const FoundCrossing&) {
        return true;
    }
    return false;
}

// Parts that touch have a point each where they do.
bool pointsCoincide(const Mesh& mesh) {
    std::vector<std::array<double, 3>> points;
    points.reserve(mesh.points.size());
    for (const AcGePoint3d& point : mesh.points) {
        points.push_back({point.x, point.y, point.z});
    }
    std::sort(points.begin(), points.end());
    return std::adjacent_find(points.begin(), points.end()) != points.end();
}

bool isDegenerate(const Mesh& mesh, const Triangle& triangle) {
    const auto [a, b, c] = cornersFrom(mesh, triangle, 0).points;
    return CGAL::collinear(a, b, c);
}

using NumberedVertex = CGAL::Triangulation_vertex_base_with_info_2<std::int32_t, Kernel>;
// Marked faces are those whose side of the outlines is known.
enum class Side { unknown, outside, inside };
using SidedFace =
    CGAL::Triangulation_face_base_with_info_2<Side, Kernel,
                                              CGAL::Constrained_triangulation_face_base_2<Kernel>>;
using Triangulation = CGAL::Constrained_Delaunay_triangulation_2<
    Kernel, CGAL::Triangulation_data_structure_2<NumberedVertex, SidedFace>,
    CGAL::No_constraint_intersection_tag>;

// From the unbounded side inwards: each outline that is crossed changes the side.
void findSides(Triangulation& triangulation) {
    for (const auto face : triangulation.all_face_handles()) {
        face->info() = Side::unknown;
    }
    std::vector<Triangulation::Face_handle> reached{triangulation.infinite_face()};
    reached.back()->info() = Side::outside;
    while (!reached.empty()) {
        const auto face = reached.back();
        reached.pop_back();
        for (int i = 0; i < 3; ++i) {
            const auto neighbor = face->neighbor(i);
            if (neighbor->info() == Side::unknown) {
                const bool changes = face->is_constrained(i);
                neighbor->info() = (face->info() == Side::inside) != changes ? Side::inside : Side::outside;
                reached.push_back(neighbor);
            }
        }
    }
}

bool triangulate(const std::vector<AcGePoint2d>& points,
                 const std::vector<std::array<std::int32_t, 2>>& edges, Triangulation& triangulation) {
    std::vector<Triangulation::Vertex_handle> vertices;
    for (const AcGePoint2d& point : points) {
        vertices.push_back(triangulation.insert({point.x, point.y}));
        vertices.back()->info() = static_cast<std::int32_t>(vertices.size()) - 1;
    }
    if (triangulation.number_of_vertices() != points.size()) {
        return false;
    }
    for (const auto& [from, to] : edges) {
        triangulation.insert_constraint(vertices[static_cast<std::size_t>(from)],
                                        vertices[static_cast<std::size_t>(to)]);
    }
    return triangulation.dimension() == 2;
}

std::optional<Corefined> combineSurfaces(const Mesh& first, const Mesh& second, Combination combination) {
    Surface one, other;
    Provenances ofOne = provenancesOf(one), ofOther = provenancesOf(other);
    if (!build(first, one, ofOne) || !build(second, other, ofOther)) {
        return std::nullopt;
    }
    KeepProvenance visitor(one, ofOne, other, ofOther);
    const auto checked = CGAL::parameters::throw_on_self_intersection(true).visitor(visitor);
    const bool done = combination == Combination::unite
                          ? processing::corefine_and_compute_union(one, other, one, checked)
                          : processing::corefine_and_compute_difference(one, other, one, checked);
    return done ? std::optional(meshOf(one, ofOne)) : std::nullopt;
}

}  // namespace

// CGAL reports surfaces that cross themselves, and states that it cannot go on from, by exceptions.
std::optional<Corefined> corefine(const Mesh& first, const Mesh& second, Combination combination) {
    try {
        return combineSurfaces(first, second, combination);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::optional<std::vector<std::array<std::int32_t, 3>>>
fillOutlines(const std::vector<AcGePoint2d>& points, const std::vector<std::array<std::int32_t, 2>>& edges) {
    Triangulation triangulation;
    try {
        if (!triangulate(points, edges, triangulation)) {
            return std::nullopt;
        }
    } catch (const std::exception&) {
        return std::nullopt;
    }
    findSides(triangulation);
    std::vector<std::array<std::int32_t, 3>> triangles;
    for (const auto face : triangulation.finite_face_handles()) {
        if (face->info() == Side::inside) {
            triangles.push_back({face->vertex(0)->info(), face->vertex(1)->info(), face->vertex(2)->info()});
        }
    }
    return triangles;
}

bool crossesItself(const Mesh& mesh, const std::vector<bool>* suspected) {
    if (pointsCoincide(mesh)) {
        return true;
    }
    std::vector<TriangleBox> suspects, rest;
    for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
        const Triangle& triangle = mesh.triangles[i];
        const bool isSuspect = !suspected || (*suspected)[i];
        if (isSuspect && isDegenerate(mesh, triangle)) {
            return true;
        }
        (isSuspect ? suspects : rest).emplace_back(cornersFrom(mesh, triangle, 0).whole().bbox(), &triangle);
    }
    return boxesCross(mesh, suspects, rest);
}

}  // namespace solids
