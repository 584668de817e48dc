#pragma once

// Solids in drawings for tests: the class is registered and a drawing without a document there.

#include "host/api/database.h"
#include "host/database/group_filer.h"
#include "host/database/memory_filer.h"
#include "solids/entity/solid_class.h"
#include "solids/entity/solid_entity.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace entity_samples {

using solids::SolidEntity;
using SolidPointer = std::unique_ptr<SolidEntity>;

inline constexpr AcGeVector3d kAlongX[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
inline constexpr AcGeVector3d kAlongY[] = {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};
inline constexpr AcGeVector3d kAlongZ[] = {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}};

inline SolidPointer newSolid() {
    return SolidPointer(static_cast<SolidEntity*>(qn_hvacSolid::create()));
}

// A straight body with the same section at both ends.
inline bool addStraight(qn_hvacSolid& solid, const AcGePoint3d& from, const AcGePoint3d& to, bool rectangular,
                        double width, double height, const AcGeVector3d* frame = kAlongX, int flags = 0) {
    return solid.addTransition(from, rectangular, width, height, to, rectangular, width, height, frame, frame,
                               flags);
}

// From (0 0 0) along x, 10 long, 4 wide and 2 high.
inline SolidPointer box(int flags = 0) {
    SolidPointer solid = newSolid();
    EXPECT_TRUE(addStraight(*solid, {0, 0, 0}, {10, 0, 0}, true, 4, 2, kAlongX, flags));
    return solid;
}
// From (0 0 0) along x, 10 long, 4 in diameter.
inline SolidPointer pipe(int flags = 0) {
    SolidPointer solid = newSolid();
    EXPECT_TRUE(addStraight(*solid, {0, 0, 0}, {10, 0, 0}, false, 4, 4, kAlongX, flags));
    return solid;
}
// The box with another one through its side, in two bodies: 80 + 18 - 4 in volume, centre lines drawn.
inline SolidPointer crossing() {
    SolidPointer solid = box(kHvacCenterline | kHvacOpenEnd);
    EXPECT_TRUE(addStraight(*solid, {5, 0, 0}, {5, 11, 0}, true, 2, 1, kAlongY, kHvacOpenEnd));
    return solid;
}

inline double volumeOf(const SolidEntity& solid) {
    AcDbSolidMeasures measures;
    return solid.getSolidMeasures(measures) == Acad::eOk ? measures.volume : -1;
}

// Everything that filing keeps is the same, to the last bit.
inline void expectSame(const SolidEntity& wanted, const SolidEntity& found) {
    const solids::Part &a = wanted.joined(), &b = found.joined();
    EXPECT_STREQ(wanted.kindText(), found.kindText());
    EXPECT_EQ(a.flags, b.flags);
    EXPECT_EQ(a.mayOverlap, b.mayOverlap);
    ASSERT_EQ(a.mesh.points.size(), b.mesh.points.size());
    ASSERT_EQ(a.mesh.triangles.size(), b.mesh.triangles.size());
    ASSERT_EQ(a.centerLines.size(), b.centerLines.size());
    const auto isSame = [](const AcGePoint3d& p, const AcGePoint3d& q) {
        return p.x == q.x && p.y == q.y && p.z == q.z;
    };
    EXPECT_TRUE(std::ranges::equal(a.mesh.points, b.mesh.points, isSame));
    EXPECT_TRUE(std::ranges::equal(a.mesh.triangles, b.mesh.triangles,
                                   [](const solids::Triangle& s, const solids::Triangle& t) {
                                       return s.corners == t.corners && s.kind == t.kind;
                                   }));
    for (std::size_t i = 0; i < a.centerLines.size(); ++i) {
        EXPECT_EQ(a.centerLines[i].isShown, b.centerLines[i].isShown);
        EXPECT_TRUE(std::ranges::equal(a.centerLines[i].points, b.centerLines[i].points, isSame));
    }
}

inline drafthost::DwgRecord filed(const SolidEntity& solid) {
    drafthost::MemoryFiler filer(nullptr, AcDb::kCopyFiler);
    EXPECT_EQ(Acad::eOk, solid.dwgOut(&filer));
    return filer.record();
}

class SolidTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(solids::registerSolidClass()); }
    static void TearDownTestSuite() { solids::removeSolidClass(); }

    AcDbObjectId append(AcDbEntity* entity) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(database.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(Acad::eOk, record->appendAcDbEntity(id, entity));
        entity->close();
        return id;
    }

    AcDbDatabase database{true, true};
};

// The solid of that id, open for the pointer's life.
using OpenSolid = AcDbObjectPointer<qn_hvacSolid>;
inline SolidEntity& entityOf(const OpenSolid& solid) {
    return static_cast<SolidEntity&>(*solid);
}

}  // namespace entity_samples
