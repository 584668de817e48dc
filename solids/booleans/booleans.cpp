#include "solids/booleans/booleans.h"

namespace solids {

std::optional<Mesh> unite(const Mesh&, const Mesh&) {
    return std::nullopt;
}

std::optional<Mesh> subtract(const Mesh&, const Mesh&) {
    return std::nullopt;
}

std::optional<Mesh> cutByPlane(const Mesh&, const AcGePoint3d&, const AcGeVector3d&, FaceKind) {
    return std::nullopt;
}

bool isFreeOfSelfIntersection(const Mesh& mesh) {
    return isClosed(mesh);
}

}  // namespace solids
