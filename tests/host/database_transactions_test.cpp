// Transactions: what an abort takes back, nesting, and what stays open.

#include "host/database/change_log.h"
#include "host/database/database_impl.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

class Transactions : public DrawingTest {
protected:
    AcDbTransactionManager& manager() { return *db().transactionManager(); }

    AcDbLine* lineForWrite(AcDbObjectId id) {
        AcDbObject* object = nullptr;
        EXPECT_EQ(manager().getObject(object, id, AcDb::kForWrite), Acad::eOk);
        return AcDbLine::cast(object);
    }
    static double startOf(AcDbObjectId id) {
        return AcDbObjectPointer<AcDbLine>(id, AcDb::kForRead)->startPoint().x;
    }
};

TEST_F(Transactions, WithoutAStartThereIsNothingToEnd) {
    EXPECT_EQ(manager().endTransaction(), Acad::eNoActiveTransactions);
    EXPECT_EQ(manager().abortTransaction(), Acad::eNoActiveTransactions);
    AcDbObject* object = nullptr;
    EXPECT_EQ(manager().getObject(object, db().layerZero(), AcDb::kForRead), Acad::eNoActiveTransactions);
}

TEST_F(Transactions, AbortRestoresEverythingAndLeavesTheDrawingUnmodified) {
    ASSERT_EQ(acdbRegApp(L"TAG"), RTNORM);
    const AcDbObjectId kept = addLine(1);
    const AcDbObjectId erased = addLine(2);
    AcDbObjectPointer<AcDbLine>(erased, AcDb::kForWrite)->erase();
    db().impl().modifications = 0;

    manager().startTransaction();
    AcDbLine* const line = lineForWrite(kept);
    line->setStartPoint({9, 9, 9});
    line->setColorIndex(1);
    const List data(acutBuildList(1001, L"TAG", 1070, 3, RTNONE));
    ASSERT_EQ(line->setXData(data.get()), Acad::eOk);
    line->erase();
    AcDbObjectPointer<AcDbLine>(erased, AcDb::kForWrite, true)->erase(false);
    const AcDbObjectId added = addLine(3);
    ads_name addedName;
    acdbGetAdsName(addedName, added);
    const AcDbObjectId layer = addLayer(L"NEW");
    db().setClayer(layer);
    EXPECT_EQ(modelSpaceCount(), 2);
    EXPECT_NE(db().impl().modifications, 0u);
    EXPECT_EQ(manager().abortTransaction(), Acad::eOk);

    EXPECT_EQ(db().impl().modifications, 0u);
    EXPECT_EQ(modelSpaceCount(), 1);
    EXPECT_EQ(startOf(kept), 1);
    EXPECT_EQ(List(AcDbObjectPointer<AcDbLine>(kept, AcDb::kForRead)->xData()), nullptr);
    EXPECT_TRUE(erased.isErased());
    EXPECT_FALSE(added.isValid());
    AcDbObjectId found;
    EXPECT_EQ(acdbGetObjectId(found, addedName), Acad::eInvalidAdsName);
    EXPECT_EQ(db().clayer(), db().layerZero());
    EXPECT_FALSE(AcDbObjectPointer<AcDbLayerTable>(db().layerTableId(), AcDb::kForRead)->has(L"NEW"));
    addLayer(L"NEW");  // the name is free
}

TEST_F(Transactions, ObjectsOpenedNormallyAreRestoredToo) {
    const AcDbObjectId id = addLine(1);
    manager().startTransaction();
    AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite)->setStartPoint({5, 0, 0});
    EXPECT_EQ(startOf(id), 5);
    manager().abortTransaction();
    EXPECT_EQ(startOf(id), 1);
}

TEST_F(Transactions, OuterAbortTakesBackWhatTheInnerOneKept) {
    const AcDbObjectId id = addLine(1);
    manager().startTransaction();
    lineForWrite(id)->setStartPoint({2, 0, 0});
    manager().startTransaction();
    EXPECT_EQ(manager().numActiveTransactions(), 2);
    lineForWrite(id)->setStartPoint({3, 0, 0});
    const AcDbObjectId added = addLine(4);
    manager().endTransaction();
    EXPECT_TRUE(added.isValid());
    manager().abortTransaction();
    EXPECT_EQ(startOf(id), 1);
    EXPECT_FALSE(added.isValid());
}

TEST_F(Transactions, InnerAbortGoesBackToTheInnerStart) {
    const AcDbObjectId id = addLine(1);
    manager().startTransaction();
    lineForWrite(id)->setStartPoint({2, 0, 0});
    manager().startTransaction();
    lineForWrite(id)->setStartPoint({3, 0, 0});
    manager().abortTransaction();
    EXPECT_EQ(lineForWrite(id)->startPoint().x, 2);
    manager().endTransaction();
    EXPECT_EQ(startOf(id), 2);
}

TEST_F(Transactions, ResidentObjectsAreClosedAtTheEndAndNotBefore) {
    const AcDbObjectId id = addLine();
    manager().startTransaction();
    AcDbObject* object = nullptr;
    ASSERT_EQ(manager().getObject(object, id, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(object->isTransactionResident());
    EXPECT_EQ(object->close(), Acad::eInvalidOpenState);
    ASSERT_EQ(manager().getObject(object, id, AcDb::kForWrite), Acad::eOk);  // turns into writing
    EXPECT_TRUE(object->isWriteEnabled());
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(id, AcDb::kForRead).openStatus(), Acad::eWasOpenForWrite);
    manager().endTransaction();
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite).openStatus(), Acad::eOk);
}

TEST_F(Transactions, EntityStillOpenWhenItsCreationIsAbortedCanBeClosed) {
    manager().startTransaction();
    auto* const line = new AcDbLine;
    AcDbObjectPointer<AcDbBlockTableRecord> space(db().modelSpaceId(), AcDb::kForWrite);
    ASSERT_EQ(space->appendAcDbEntity(line), Acad::eOk);
    space.close();
    manager().abortTransaction();
    EXPECT_EQ(line->setStartPoint({1, 1, 1}), Acad::eNotOpenForWrite);
    EXPECT_EQ(line->close(), Acad::eOk);
}

TEST_F(Transactions, LogTakesStepsBackAndDoesThemAgain) {
    const AcDbObjectId changed = addLine(1);
    ChangeLog log;
    db().impl().logs.push_back(&log);
    AcDbObjectPointer<AcDbLine>(changed, AcDb::kForWrite)->setStartPoint({2, 0, 0});
    const AcDbObjectId added = addLine(3);
    db().impl().logs.clear();
    ChangeLog redo = log.revert(db(), ChangeLog::Removal::AsErased);
    EXPECT_EQ(startOf(changed), 1);
    EXPECT_TRUE(added.isErased());
    EXPECT_TRUE(added.isValid());
    EXPECT_EQ(modelSpaceCount(), 1);
    redo.revert(db(), ChangeLog::Removal::AsErased);
    EXPECT_EQ(startOf(changed), 2);
    EXPECT_EQ(modelSpaceCount(), 2);
}

}  // namespace
