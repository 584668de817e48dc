// Times unions of the companion module's meshes (bench/solid_union.sh).

#include "bench/solids/union_times.h"
#include "solids/booleans/booleans.h"

namespace {

solids::Mesh meshOf(const bench::Prism& prism) {
    solids::Mesh mesh;
    for (const auto& [x, y, z] : prism.points) {
        mesh.points.emplace_back(x, y, z);
    }
    for (const auto& [a, b, c] : prism.triangles) {
        mesh.triangles.push_back({{a, b, c}, solids::FaceKind::wall});
    }
    return mesh;
}

bool uniteAll(std::vector<solids::Mesh>& bodies) {
    for (std::size_t i = 1; i < bodies.size(); ++i) {
        std::optional<solids::Mesh> united = solids::unite(bodies[0], bodies[i]);
        if (!united) {
            return false;
        }
        bodies[0] = std::move(*united);
    }
    return true;
}

}  // namespace

int main() {
    return bench::printUnionTimes<solids::Mesh>(meshOf, uniteAll);
}
