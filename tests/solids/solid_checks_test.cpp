#include "solid_checks.h"

#include <utility>

using solids::FaceKind;
using solids::Mesh;

// The checks that all tests of solids rest on must see faults themselves.

namespace {

Mesh tetrahedron(const AcGeVector3d& offset = {}, double size = 1) {
    Mesh mesh;
    for (const AcGeVector3d& corner : {AcGeVector3d(0, 0, 0), {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}) {
        mesh.points.push_back(AcGePoint3d() + offset + corner * size);
    }
    mesh.triangles = {{{0, 2, 1}, FaceKind::wall},
                      {{0, 1, 3}, FaceKind::wall},
                      {{0, 3, 2}, FaceKind::wall},
                      {{1, 2, 3}, FaceKind::wall}};
    return mesh;
}

Mesh together(Mesh mesh, const Mesh& other) {
    const auto count = static_cast<std::int32_t>(mesh.points.size());
    mesh.points.insert(mesh.points.end(), other.points.begin(), other.points.end());
    for (solids::Triangle triangle : other.triangles) {
        for (std::int32_t& corner : triangle.corners) {
            corner += count;
        }
        mesh.triangles.push_back(triangle);
    }
    return mesh;
}

}  // namespace

TEST(SolidChecks, SeeFaultsOfTheSurface) {
    expectSolid(tetrahedron(), 1.0 / 6);
    EXPECT_FALSE(isSolid(Mesh{}));
    Mesh open = tetrahedron();
    open.triangles.pop_back();
    EXPECT_FALSE(isSolid(open));
    Mesh turned = tetrahedron();
    std::swap(turned.triangles[1].corners[1], turned.triangles[1].corners[2]);
    EXPECT_FALSE(isSolid(turned));
    Mesh insideOut = tetrahedron();
    for (solids::Triangle& triangle : insideOut.triangles) {
        std::swap(triangle.corners[1], triangle.corners[2]);
    }
    EXPECT_FALSE(isSolid(insideOut));
    Mesh missing = tetrahedron();
    missing.triangles[0].corners[0] = 4;
    EXPECT_FALSE(isSolid(missing));
}

TEST(SolidChecks, SeeTrianglesThatMeet) {
    EXPECT_TRUE(isSolid(together(tetrahedron(), tetrahedron({2, 0, 0}))));
    // One inside the other does not cross it.
    EXPECT_TRUE(isSolid(together(tetrahedron(), tetrahedron({0.1, 0.1, 0.1}, 0.5))));
    EXPECT_FALSE(isSolid(together(tetrahedron(), tetrahedron({0.2, 0.2, 0.2}))));
    // Touching in a point, along an edge, and on a face.
    EXPECT_FALSE(isSolid(together(tetrahedron(), tetrahedron({1, 0, 0}))));
    EXPECT_FALSE(isSolid(together(tetrahedron(), tetrahedron({-0.5, -0.5, 1}))));
    EXPECT_FALSE(isSolid(together(tetrahedron(), tetrahedron({0.2, 0.2, 0}, 0.25))));
    EXPECT_FALSE(isSolid(together(tetrahedron(), tetrahedron())));
    // A body whose tip is pulled through its own base, and one folded flat onto it.
    const auto withRidge = [](double height) {
        Mesh mesh = tetrahedron({}, 4);
        mesh.points.push_back({1, 1, height});
        mesh.triangles.erase(mesh.triangles.begin());
        for (const auto& [from, to] : {std::pair(0, 2), {2, 1}, {1, 0}}) {
            mesh.triangles.push_back({{from, to, 4}, FaceKind::wall});
        }
        return mesh;
    };
    EXPECT_TRUE(isSolid(withRidge(-3)));
    EXPECT_TRUE(isSolid(withRidge(1)));
    EXPECT_FALSE(isSolid(withRidge(2.5)));
    EXPECT_FALSE(isSolid(withRidge(2)));
}
