// Leaders that the host copies, takes back, puts into other drawings and keeps while their class is away.

#include "tests/module/leader_samples.h"
#include "tests/module/value_filer.h"

#include <string>

namespace tessary::testing {

namespace {

class LeaderCopies : public LeaderTest {
protected:
    AcDbObjectId addLeader() {
        return append(new QNLeader({1, 2, 3}, {4, 5, 6}, {10, 5, 6}, 1.5, symbol, layer),
                      database.modelSpaceId());
    }
    static void expectSample(const QNLeader& leader, AcDbObjectId block) {
        expectNear({{1, 2, 3}, {4, 5, 6}, {10, 5, 6}}, pointsOf(leader));
        EXPECT_EQ(1.5, leader.offset());
        EXPECT_EQ(block, leader.blockId());
        EXPECT_EQ(leader.layerId(), leader.blockReference().layerId());
        expectPlacedSymbol(leader);
    }
    void expectSampleAt(AcDbObjectId id) {
        const AcDbObjectPointer<QNLeader> leader(id, AcDb::kForRead);
        ASSERT_TRUE(leader);
        expectSample(*leader, symbol);
        EXPECT_EQ(layer, leader->layerId());
    }
};

TEST_F(LeaderCopies, cloneHasEverything) {
    const AcDbObjectPointer<QNLeader> leader(addLeader(), AcDb::kForRead);
    const std::unique_ptr<AcDbObject> copy(leader->clone());
    ASSERT_NE(nullptr, QNLeader::cast(copy.get()));
    EXPECT_TRUE(copy->objectId().isNull());
    expectSample(*QNLeader::cast(copy.get()), symbol);
    EXPECT_EQ(layer, QNLeader::cast(copy.get())->layerId());
}

TEST_F(LeaderCopies, everyChangeIsTakenBackByTheTransaction) {
    const AcDbObjectId other = addSymbol(L"Other");
    const AcDbObjectId id = addLeader();
    AcDbIntArray all;
    for (int i = 0; i < 3; ++i) {
        all.append(i);
    }
    const std::function<void(QNLeader&)> changes[] = {
        [](QNLeader& leader) {
            leader.setPoints({}, {1, 1, 1}, {2, 2, 2});
        },
        [](QNLeader& leader) { leader.setOffset(40); },
        [&](QNLeader& leader) { leader.setLayer(database.layerZero()); },
        [&](QNLeader& leader) {
            leader.moveGripPointsAt(all, {1, 1, 1});
        },
        [&](QNLeader& leader) {
            leader.moveStretchPointsAt(all, {1, 1, 1});
        },
        [](QNLeader& leader) { leader.transformBy(AcGeMatrix3d::scaling(3)); },
        [&](QNLeader& leader) {
            const QNLeader another({}, {1, 0, 0}, {2, 0, 0}, 7, other, database.layerZero());
            ValueFiler filer;
            another.dwgOutFields(&filer);
            leader.dwgInFields(&filer);
        },
        [](QNLeader& leader) { leader.erase(); },
    };
    for (const auto& change : changes) {
        AcDbTransactionManager& manager = *database.transactionManager();
        ASSERT_EQ(Acad::eOk, manager.startTransaction());
        AcDbObject* object = nullptr;
        ASSERT_EQ(Acad::eOk, manager.getObject(object, id, AcDb::kForWrite));
        change(*QNLeader::cast(object));
        ASSERT_EQ(Acad::eOk, manager.abortTransaction());
        expectSampleAt(id);
    }
}

TEST_F(LeaderCopies, proxiesKeepEverythingUntilTheClassIsBack) {
    const AcDbObjectId id = addLeader();
    removeLeaderClass();
    {
        const AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForRead);
        ASSERT_TRUE(proxy);
        EXPECT_NE(nullptr, proxy.object());
        EXPECT_EQ(nullptr, acrxFindClass(L"QNLeader"));
        EXPECT_EQ(layer, proxy->layerId());
    }
    registerLeaderClass();
    acrxBuildClassHierarchy();
    expectSampleAt(id);
}

TEST_F(LeaderCopies, insertedDrawingsBringLeadersWithTheirSymbols) {
    addLeader();
    AcDbDatabase target(true, true);
    AcDbObjectId definition;
    ASSERT_EQ(Acad::eOk, target.insert(definition, L"Part", &database));
    const AcDbObjectPointer<AcDbBlockTableRecord> block(definition, AcDb::kForRead);
    ASSERT_EQ(1, block->entityIds().length());
    const AcDbObjectPointer<QNLeader> leader(block->entityIds()[0], AcDb::kForRead);
    ASSERT_TRUE(leader);
    const AcDbObjectId brought = leader->blockId();
    ASSERT_EQ(&target, brought.database());
    expectSample(*leader, brought);
    const AcDbObjectPointer<AcDbBlockTableRecord> symbolBlock(brought, AcDb::kForRead);
    EXPECT_STREQ(L"Tag", symbolBlock->name());
    const AcDbObjectPointer<AcDbLayerTableRecord> itsLayer(leader->layerId(), AcDb::kForRead);
    EXPECT_EQ(&target, leader->layerId().database());
    EXPECT_STREQ(L"Leaders", itsLayer->name());
}

}  // namespace

}  // namespace tessary::testing
