// Objects in a drawing: opening, erasing, names, locks, extended data, copies.

#include "host/database/database_impl.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

using OpenModes = DrawingTest;

struct OpenCase {
    AcDb::OpenMode first, second;
    Acad::ErrorStatus expected;
};

TEST_F(OpenModes, SecondOpenFollowsTheMatrix) {
    const AcDbObjectId id = addLine();
    const OpenCase cases[] = {
        {AcDb::kForRead, AcDb::kForRead, Acad::eOk},
        {AcDb::kForRead, AcDb::kForWrite, Acad::eWasOpenForRead},
        {AcDb::kForRead, AcDb::kForNotify, Acad::eOk},
        {AcDb::kForWrite, AcDb::kForRead, Acad::eWasOpenForWrite},
        {AcDb::kForWrite, AcDb::kForWrite, Acad::eWasOpenForWrite},
        {AcDb::kForWrite, AcDb::kForNotify, Acad::eOk},
        {AcDb::kForNotify, AcDb::kForRead, Acad::eWasOpenForNotify},
        {AcDb::kForNotify, AcDb::kForWrite, Acad::eWasOpenForNotify},
        {AcDb::kForNotify, AcDb::kForNotify, Acad::eWasOpenForNotify},
    };
    for (const OpenCase& test : cases) {
        const AcDbObjectPointer<AcDbLine> first(id, test.first);
        ASSERT_EQ(first.openStatus(), Acad::eOk);
        const AcDbObjectPointer<AcDbLine> second(id, test.second);
        EXPECT_EQ(second.openStatus(), test.expected) << test.first << " then " << test.second;
    }
}

TEST_F(OpenModes, ChangesNeedWriteAndUpgradingNeedsToBeAlone) {
    const AcDbObjectId id = addLine();
    AcDbObjectPointer<AcDbLine> reader(id, AcDb::kForRead);
    EXPECT_EQ(reader->setStartPoint({5, 5, 0}), Acad::eNotOpenForWrite);
    EXPECT_EQ(reader->erase(), Acad::eNotOpenForWrite);
    {
        const AcDbObjectPointer<AcDbLine> other(id, AcDb::kForRead);
        EXPECT_EQ(reader->upgradeOpen(), Acad::eWasOpenForRead);
    }
    EXPECT_EQ(reader->upgradeOpen(), Acad::eOk);
    EXPECT_FALSE(reader->isModified());
    EXPECT_EQ(reader->setStartPoint({5, 5, 0}), Acad::eOk);
    EXPECT_TRUE(reader->isModified());
    EXPECT_EQ(reader->downgradeOpen(), Acad::eOk);
    EXPECT_FALSE(reader->isWriteEnabled());
    EXPECT_EQ(reader->startPoint().x, 5);
}

TEST_F(OpenModes, ClosingTwiceIsRefused) {
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, addLine(), AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(line->close(), Acad::eOk);
    EXPECT_EQ(line->close(), Acad::eInvalidOpenState);
    AcDbLine outside;
    EXPECT_EQ(outside.close(), Acad::eNotInDatabase);
}

TEST_F(OpenModes, WrongClassIsClosedAgain) {
    AcDbCircle* circle = nullptr;
    EXPECT_EQ(acdbOpenObject(circle, addLine(), AcDb::kForWrite), Acad::eNotThatKindOfClass);
    EXPECT_EQ(circle, nullptr);  // the fixture finds an object left open
}

using Erasing = DrawingTest;

TEST_F(Erasing, ErasedObjectsOpenOnlyOnRequestAndComeBack) {
    const AcDbObjectId id = addLine();
    AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite)->erase();
    EXPECT_TRUE(id.isErased());
    EXPECT_TRUE(id.isValid());
    EXPECT_EQ(modelSpaceCount(), 0);
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
    EXPECT_EQ(line.openStatus(), Acad::eWasErased);
    ASSERT_EQ(line.open(id, AcDb::kForWrite, true), Acad::eOk);
    EXPECT_EQ(line->erase(), Acad::eWasErased);
    EXPECT_EQ(line->erase(false), Acad::eOk);
    EXPECT_EQ(modelSpaceCount(), 1);
}

TEST_F(Erasing, StandardCurrentAndUsedRecordsStay) {
    const AcDbObjectId layer = addLayer(L"WALLS");
    const AcDbObjectId line = addLine();
    ASSERT_EQ(AcDbObjectPointer<AcDbLine>(line, AcDb::kForWrite)->setLayer(L"walls"), Acad::eOk);
    const auto erase = [](AcDbObjectId id) {
        return AcDbObjectPointer<AcDbObject>(id, AcDb::kForWrite)->erase();
    };
    EXPECT_EQ(erase(layer), Acad::eCannotBeErased);
    EXPECT_EQ(erase(db().layerZero()), Acad::eCannotBeErased);
    EXPECT_EQ(erase(db().modelSpaceId()), Acad::eCannotBeErased);
    EXPECT_EQ(erase(db().namedObjectsDictionaryId()), Acad::eCannotBeErased);
    ASSERT_EQ(erase(line), Acad::eOk);
    EXPECT_EQ(erase(layer), Acad::eOk);
    // Its name is free again, and then it cannot come back.
    addLayer(L"Walls");
    EXPECT_EQ(AcDbObjectPointer<AcDbObject>(layer, AcDb::kForWrite, true)->erase(false), Acad::eDuplicateKey);
}

using Locks = DrawingTest;

TEST_F(Locks, LockedLayerRefusesWriting) {
    const AcDbObjectId layer = addLayer(L"FIXED");
    const AcDbObjectId line = addLine();
    AcDbObjectPointer<AcDbLine>(line, AcDb::kForWrite)->setLayer(layer);
    AcDbObjectPointer<AcDbLayerTableRecord>(layer, AcDb::kForWrite)->setIsLocked(true);
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(line, AcDb::kForWrite).openStatus(), Acad::eOnLockedLayer);
    AcDbObjectPointer<AcDbLine> reader(line, AcDb::kForRead);
    EXPECT_EQ(reader->upgradeOpen(), Acad::eOnLockedLayer);
}

TEST_F(Locks, DocumentLockIsAskedForExceptBySideDatabases) {
    struct Refuse {
        bool (*previous)(const AcDbDatabase*) = std::exchange(writeAllowed,
                                                              [](const AcDbDatabase*) { return false; });
        ~Refuse() { writeAllowed = previous; }
    };
    const AcDbDatabase ofDocument(true, false);
    const Refuse refuse;
    EXPECT_EQ(AcDbObjectPointer<AcDbObject>(ofDocument.layerZero(), AcDb::kForWrite).openStatus(),
              Acad::eLockViolation);
    EXPECT_EQ(AcDbObjectPointer<AcDbObject>(ofDocument.layerZero(), AcDb::kForRead).openStatus(), Acad::eOk);
    EXPECT_EQ(AcDbObjectPointer<AcDbObject>(db().layerZero(), AcDb::kForWrite).openStatus(), Acad::eOk);
}

using Names = DrawingTest;

TEST_F(Names, StaleAndForgedNamesAreRefused) {
    AcDbObjectId id;
    ads_name name;
    ASSERT_EQ(acdbGetAdsName(name, addLine()), Acad::eOk);
    EXPECT_EQ(name[1], 0);
    EXPECT_EQ(acdbGetObjectId(id, name), Acad::eOk);
    for (const std::int64_t word :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1}, name[0] + 1, name[0] + (1 << 30)}) {
        const ads_name forged = {word, 0};
        EXPECT_EQ(acdbGetObjectId(id, forged), Acad::eInvalidAdsName) << word;
    }
    const ads_name secondWord = {name[0], 1};
    EXPECT_EQ(acdbGetObjectId(id, secondWord), Acad::eInvalidAdsName);
}

TEST_F(Names, IdsOutliveTheirDatabaseAndNamesAreNeverUsedAgain) {
    auto other = std::make_unique<AcDbDatabase>(true, true);
    const AcDbObjectId id = other->layerZero();
    ads_name name;
    ASSERT_EQ(acdbGetAdsName(name, id), Acad::eOk);
    AcDbObject* leftOpen = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(leftOpen, id, AcDb::kForRead), Acad::eOk);
    other.reset();  // closes it
    EXPECT_FALSE(id.isValid());
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(id.database(), nullptr);
    EXPECT_EQ(acdbOpenAcDbObject(leftOpen, id, AcDb::kForRead), Acad::eNoDatabase);
    const AcDbDatabase next(true, true);
    AcDbObjectId found;
    EXPECT_EQ(acdbGetObjectId(found, name), Acad::eInvalidAdsName);
    ads_name fresh;
    acdbGetAdsName(fresh, next.layerZero());
    EXPECT_NE(fresh[0], name[0]);
}

TEST_F(Names, HandlesAreUniqueAndFindTheirObject) {
    const AcDbObjectId id = addLine();
    AcDbObjectId found;
    EXPECT_EQ(db().getAcDbObjectId(found, id.handle()), Acad::eOk);
    EXPECT_EQ(found, id);
    EXPECT_EQ(db().getAcDbObjectId(found, AcDbHandle(0xABCDEF)), Acad::eUnknownHandle);
    auto line = std::make_unique<AcDbLine>();
    EXPECT_EQ(db().impl().add(line.get(), AcDbObjectId(), id.handle(), found), Acad::eHandleExists);
    ASSERT_EQ(db().impl().add(line.get(), AcDbObjectId(), AcDbHandle(0x1000), found), Acad::eOk);
    line.release()->close();
    EXPECT_GT(addLine().handle().value(), 0x1000u);
}

using ExtendedData = DrawingTest;

TEST_F(ExtendedData, IsCheckedReplacedPerApplicationAndRemoved) {
    const AcDbObjectId id = addLine();
    ASSERT_EQ(acdbRegApp(L"FIRST"), RTNORM);
    ASSERT_EQ(acdbRegApp(L"SECOND"), RTNORM);
    EXPECT_EQ(acdbRegApp(L"first"), RTERROR);
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    const auto set = [&](resbuf* list) {
        const List owned(list);
        return line->setXData(list);
    };
    EXPECT_EQ(set(acutBuildList(1001, L"NOBODY", 1070, 1, RTNONE)), Acad::eRegappIdNotFound);
    EXPECT_EQ(set(acutBuildList(1070, 1, RTNONE)), Acad::eInvalidXdata);
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", 1002, L"{", RTNONE)), Acad::eInvalidXdata);
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", 40, 1.0, RTNONE)), Acad::eInvalidXdata);
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", 1000, std::wstring(256, L'x').c_str(), RTNONE)),
              Acad::eInvalidXdata);
    ads_point point = {1, 2, 3};
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", 1070, -5, 1001, L"SECOND", 1010, point, RTNONE)), Acad::eOk);
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", 1071, 70000, RTNONE)), Acad::eOk);
    const List first(line->xData(L"First"));
    ASSERT_TRUE(first && first->rbnext && !first->rbnext->rbnext);
    EXPECT_EQ(first->rbnext->resval.rlong, 70000);
    EXPECT_EQ(set(acutBuildList(1001, L"FIRST", RTNONE)), Acad::eOk);
    EXPECT_EQ(line->xData(L"FIRST"), nullptr);
    const List rest(line->xData());
    ASSERT_TRUE(rest);
    EXPECT_STREQ(rest->resval.rstring, L"SECOND");
    EXPECT_EQ(rest->rbnext->resval.rpoint[2], 3);
}

TEST_F(ExtendedData, SizeIsLimitedPerObject) {
    ASSERT_EQ(acdbRegApp(L"BIG"), RTNORM);
    AcDbObjectPointer<AcDbLine> line(addLine(), AcDb::kForWrite);
    const List list(acutBuildList(1001, L"BIG", RTNONE));
    resbuf* last = list.get();
    const std::wstring text(250, L'x');
    for (int i = 0; i < 32; ++i)
        last = last->rbnext = acutBuildList(1000, text.c_str(), RTNONE);
    EXPECT_EQ(line->setXData(list.get()), Acad::eOk);
    last->rbnext = acutBuildList(1000, text.c_str(), RTNONE);
    EXPECT_EQ(line->setXData(list.get()), Acad::eXdataSizeExceeded);
}

using Copies = DrawingTest;

TEST_F(Copies, AreOutsideTheDatabaseAndKeepTheirContents) {
    ASSERT_EQ(acdbRegApp(L"TAG"), RTNORM);
    const AcDbObjectId id = addLine(7);
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    const List data(acutBuildList(1001, L"TAG", 1070, 3, RTNONE));
    line->setXData(data.get());
    const std::unique_ptr<AcDbObject> copy(line->clone());
    ASSERT_TRUE(AcDbLine::cast(copy.get()));
    EXPECT_TRUE(copy->objectId().isNull());
    EXPECT_TRUE(copy->ownerId().isNull());
    EXPECT_EQ(AcDbLine::cast(copy.get())->startPoint().x, 7);
    EXPECT_TRUE(List(copy->xData(L"TAG")));
    EXPECT_EQ(AcDbObjectPointer<AcDbObject>(db().layerTableId(), AcDb::kForRead)->clone(), nullptr);
}

TEST_F(Copies, AppendedToAnotherDrawingTakeItsRecords) {
    addLayer(L"SHARED");
    addLayer(L"ONLY_HERE");
    AcDbDatabase other(true, true);
    acdbHostApplicationServices()->setWorkingDatabase(&other);
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(other.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* const layer = new AcDbLayerTableRecord;
    layer->setName(L"shared");
    AcDbObjectId layerId;
    ASSERT_EQ(layers->add(layerId, layer), Acad::eOk);
    layer->close();
    layers->close();
    acdbHostApplicationServices()->setWorkingDatabase(&db());
    for (const auto& [name, expected] : {std::pair{L"SHARED", L"shared"}, std::pair{L"ONLY_HERE", L"0"}}) {
        auto* const line = new AcDbLine;
        ASSERT_EQ(line->setLayer(name), Acad::eOk);
        AcDbObjectPointer<AcDbBlockTableRecord> space(other.modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        ASSERT_EQ(space->appendAcDbEntity(id, line), Acad::eOk);
        line->close();
        EXPECT_EQ(layerOf(id), expected);
    }
}

}  // namespace
