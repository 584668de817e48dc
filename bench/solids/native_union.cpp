// The baseline of bench/solid_union.sh: the same unions by CGAL alone, built natively.

#include "bench/solids/union_times.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/corefinement.h>
#include <CGAL/Surface_mesh.h>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Surface = CGAL::Surface_mesh<Kernel::Point_3>;

Surface surfaceOf(const bench::Prism& prism) {
    Surface surface;
    for (const auto& [x, y, z] : prism.points) {
        surface.add_vertex({x, y, z});
    }
    const auto vertex = [](int i) { return Surface::Vertex_index(static_cast<Surface::size_type>(i)); };
    for (const auto& [a, b, c] : prism.triangles) {
        surface.add_face(vertex(a), vertex(b), vertex(c));
    }
    return surface;
}

bool uniteAll(std::vector<Surface>& bodies) {
    for (std::size_t i = 1; i < bodies.size(); ++i) {
        if (!CGAL::Polygon_mesh_processing::corefine_and_compute_union(
                bodies[0], bodies[i], bodies[0], CGAL::parameters::throw_on_self_intersection(true))) {
            return false;
        }
    }
    return true;
}

}  // namespace

int main() {
    return bench::printUnionTimes<Surface>(surfaceOf, uniteAll);
}
