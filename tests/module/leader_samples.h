#pragma once

// Drawings with leaders for tests: the class is registered and a drawing without a document there.

#include "host/database/database_impl.h"
#include "module/drawing/model_space.h"
#include "module/leader/leader_class.h"
#include "module/leader/leader_entity.h"

#include <gtest/gtest.h>

#include <memory>
#include <numbers>
#include <random>
#include <vector>

namespace tessary::testing {

class LeaderTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        registerLeaderClass();
        acrxBuildClassHierarchy();
    }
    static void TearDownTestSuite() { removeLeaderClass(); }

    template <class Table, class Record>
    AcDbObjectId addRecord(const ACHAR* name, Record* record) {
        AcDbObjectId id;
        Table* table = nullptr;
        EXPECT_EQ(Acad::eOk, record->setName(name));
        EXPECT_EQ(Acad::eOk, database.getSymbolTable(table, AcDb::kForWrite));
        EXPECT_EQ(Acad::eOk, table->add(id, record));
        table->close();
        record->close();
        return id;
    }
    AcDbObjectId addLayer(const ACHAR* name, bool isFrozen = false) {
        auto* const record = new AcDbLayerTableRecord;
        record->setIsFrozen(isFrozen);
        return addRecord<AcDbLayerTable>(name, record);
    }
    // Such layers come from files only.
    AcDbObjectId addHiddenLayer(const ACHAR* name) {
        database.impl().loading = true;
        const AcDbObjectId id = addLayer(name);
        database.impl().loading = false;
        return id;
    }
    AcDbObjectId append(AcDbEntity* entity, AcDbObjectId block) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(Acad::eOk, record->appendAcDbEntity(id, entity));
        entity->close();
        return id;
    }
    // A circle of radius 1 and an arrow beyond it.
    AcDbObjectId addSymbol(const ACHAR* name) {
        const AcDbObjectId block = addRecord<AcDbBlockTable>(name, new AcDbBlockTableRecord);
        append(new AcDbCircle({}, AcGeVector3d::kZAxis, 1), block);
        append(new AcDbLine({0, 0, 0}, {3, 0.5, 0}), block);
        return block;
    }

    AcDbDatabase database{true, true};
    const AcDbObjectId layer = addLayer(L"Leaders");
    const AcDbObjectId symbol = addSymbol(L"Tag");
};

// Leaders and motions, the same ones for the same seed.
class RandomLeaders {
public:
    explicit RandomLeaders(unsigned seed) : random_(seed) {}
    double number(double from, double to) { return std::uniform_real_distribution(from, to)(random_); }
    AcGePoint3d point() { return {number(-50, 50), number(-50, 50), number(-50, 50)}; }
    AcGeVector3d direction() { return AcGeVector3d(number(-1, 1), number(-1, 1), number(0.1, 1)).normal(); }
    std::unique_ptr<QNLeader> leader(AcDbObjectId symbol, AcDbObjectId layer) {
        return std::make_unique<QNLeader>(point(), point(), point(), number(0.1, 30), symbol, layer);
    }
    // Turns about the axis through any point, and shifts.
    AcGeMatrix3d motion(const AcGeVector3d& axis) {
        return AcGeMatrix3d::translation(point().asVector()) *
               AcGeMatrix3d::rotation(number(0, 2 * std::numbers::pi), axis, point());
    }

private:
    std::mt19937 random_;
};

inline std::vector<AcGePoint3d> pointsOf(const QNLeader& leader) {
    return {leader.startPoint(), leader.middlePoint(), leader.endPoint()};
}

inline void expectNear(const AcGePoint3d& wanted, const AcGePoint3d& point, double tolerance = 1e-9) {
    EXPECT_LE(wanted.distanceTo(point), tolerance)
        << "(" << point.x << " " << point.y << " " << point.z << ") instead of (" << wanted.x << " "
        << wanted.y << " " << wanted.z << ")";
}

inline void expectNear(const std::vector<AcGePoint3d>& wanted, const std::vector<AcGePoint3d>& points) {
    ASSERT_EQ(wanted.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        expectNear(wanted[i], points[i]);
    }
}

// What every change must keep: the symbol is the leader's block, at its end, turned and scaled as it says.
inline void expectPlacedSymbol(const QNLeader& leader) {
    const AcDbBlockReference& placed = leader.blockReference();
    const AcGeVector3d along = leader.endPoint() - leader.middlePoint();
    EXPECT_EQ(leader.blockId(), placed.blockTableRecord());
    expectNear(leader.endPoint(), placed.position());
    EXPECT_NEAR(along.convert2d().angle(), placed.rotation(), 1e-9);
    EXPECT_EQ(leader.offset(), placed.scaleFactors().x);
    EXPECT_EQ(leader.offset(), placed.scaleFactors().y);
    EXPECT_EQ(leader.offset(), placed.scaleFactors().z);
    EXPECT_EQ(1, placed.normal().z);
}

}  // namespace tessary::testing
