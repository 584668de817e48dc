// Value lists, and drawings as groups: what is written comes back the same.

#include <map>

#include "host/database/class_registry.h"
#include "host/database/loading.h"
#include "host/database/table_states.h"
#include "host/database/unknown_objects.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

TEST(ValueLists, AreBuiltFromPairs) {
    ads_point point = {1, 2, 3};
    ads_name name = {77, 0};
    const List list(acutBuildList(RTLB, RTREAL, 1.5, RTSHORT, -2, RTLONG, 70000, RTSTR, L"text", RT3DPOINT,
                                  point, RTENAME, name, RTT, RTNIL, RTLE, RTNONE));
    const resbuf* node = list.get();
    EXPECT_EQ(node->restype, RTLB);
    EXPECT_EQ((node = node->rbnext)->resval.rreal, 1.5);
    EXPECT_EQ((node = node->rbnext)->resval.rlong, -2);  // sign-extended over the whole slot
    EXPECT_EQ((node = node->rbnext)->resval.rlong, 70000);
    EXPECT_STREQ((node = node->rbnext)->resval.rstring, L"text");
    EXPECT_EQ((node = node->rbnext)->resval.rpoint[2], 3);
    EXPECT_EQ((node = node->rbnext)->resval.rlname[0], 77);
    const std::int64_t before = openCounters().valueNodes;
    EXPECT_EQ(acutBuildList(RTSTR, L"text", 4321, 1, RTNONE), nullptr);
    EXPECT_EQ(openCounters().valueNodes, before);
    EXPECT_EQ(acutRelRb(nullptr), RTNORM);
}

TEST(Statuses, HaveTheirNamesAsTexts) {
    EXPECT_STREQ(acadErrorStatusText(Acad::eWasErased), L"eWasErased");
    EXPECT_STRNE(acadErrorStatusText(static_cast<Acad::ErrorStatus>(9999)), nullptr);
}

// All objects of a drawing, by handle, as a file would hold them.

std::wstring describe(const std::vector<DxfGroup>& groups) {
    std::wstring text;
    for (const DxfGroup& group : groups) {
        text += std::to_wstring(group.code) + L"=";
        if (const auto* const value = std::get_if<std::wstring>(&group.value))
            text += *value;
        if (const auto* const value = std::get_if<double>(&group.value))
            text += std::to_wstring(*value);
        if (const auto* const value = std::get_if<std::int64_t>(&group.value))
            text += std::to_wstring(*value);
        if (const auto* const value = std::get_if<AcGePoint3d>(&group.value))
            text += std::to_wstring(value->x);
        if (const auto* const value = std::get_if<ObjectReference>(&group.value)) {
            text += std::to_wstring(value->id.isNull() ? value->handle.value() : value->id.handle().value());
        }
        text += L"\n";
    }
    return text;
}

std::map<std::uint64_t, std::wstring> snapshot(const AcDbDatabase& database) {
    std::map<std::uint64_t, std::wstring> objects;
    for (const AcDbStub* const stub : database.impl().stubs) {
        if (stub->object && !stub->erased)
            objects[stub->handle.value()] = describe(fileGroups(*stub->object));
    }
    return objects;
}

// What a reader does with a file: references are handles again.
std::vector<DxfGroup> asRead(const AcDbObject& object) {
    std::vector<DxfGroup> groups = fileGroups(object);
    for (DxfGroup& group : groups) {
        auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (reference && !reference->id.isNull())
            *reference = {reference->id.handle(), {}};
    }
    return groups;
}

void copyDrawing(const AcDbDatabase& from, AcDbDatabase& to) {
    const LoadScope scope(to);
    const auto object = [](AcDbObjectId id) -> const AcDbObject& { return *peek<AcDbObject>(id); };
    for (const TableIndex table :
         {TableIndex::Linetype, TableIndex::Layer, TableIndex::TextStyle, TableIndex::RegApp,
          TableIndex::DimStyle, TableIndex::Viewport, TableIndex::View, TableIndex::Ucs, TableIndex::Block}) {
        const AcDbObjectId id = from.impl().table(table);
        EXPECT_EQ(loadTable(to, asRead(object(id))).status, Acad::eOk);
        for (const AcDbObjectId record : peek<AcDbSymbolTable>(id)->recordIds()) {
            const LoadResult result = loadRecord(to, asRead(object(record)));
            EXPECT_EQ(result.status, Acad::eOk) << result.problem;
        }
    }
    for (const AcDbObjectId id : peek<AcDbSymbolTable>(from.blockTableId())->recordIds()) {
        const auto& state = readState<BlockState>(peek<AcDbBlockTableRecord>(id));
        const LoadResult block = loadBlockBegin(to, asRead(object(state.begin)));
        ASSERT_EQ(block.status, Acad::eOk) << block.problem;
        for (const AcDbObjectId entity : state.entities) {
            if (entity.isErased())
                continue;
            const LoadResult result = loadEntity(to, block.id, asRead(object(entity)));
            EXPECT_EQ(result.status, Acad::eOk) << result.problem;
        }
        EXPECT_EQ(loadBlockEnd(to, block.id, asRead(object(state.end))).status, Acad::eOk);
    }
    loadObject(to, asRead(object(from.namedObjectsDictionaryId())));
    for (const AcDbStub* const stub : from.impl().stubs) {
        const bool isObject =
            stub->object && (AcDbDictionary::cast(stub->object) || AcDbUnknownObject::cast(stub->object));
        if (isObject && AcDbObjectId(const_cast<AcDbStub*>(stub)) != from.namedObjectsDictionaryId()) {
            EXPECT_EQ(loadObject(to, asRead(*stub->object)).status, Acad::eOk);
        }
    }
}

using Filing = DrawingTest;

TEST_F(Filing, DrawingReadBackIsTheSameAndComplete) {
    ASSERT_EQ(acdbRegApp(L"TAG"), RTNORM);
    const AcDbObjectId block = addBlock(L"DOOR");
    append(new AcDbCircle({1, 1, 0}, {0, 0, 1}, 2), block);
    append(new AcDbBlockReference({3, 4, 0}, block));
    AcDbObjectPointer<AcDbLine> line(addLine(), AcDb::kForWrite);
    const List data(acutBuildList(1001, L"TAG", 1040, 2.5, RTNONE));
    line->setXData(data.get());
    line->setLinetype(L"ByBlock");
    line->setTrueColor(0x102030);
    line.close();
    AcDbDatabase copy(false, true);
    copy.impl().settings.header = db().impl().settings.header;
    copyDrawing(db(), copy);
    EXPECT_EQ(finishLoading(copy), std::vector<std::wstring>());  // nothing was missing
    EXPECT_EQ(snapshot(copy), snapshot(db()));
    EXPECT_EQ(copy.impl().modifications, 0u);
    EXPECT_EQ(copy.clayer(), copy.layerZero());
    AcDbObjectPointer<AcDbBlockTableRecord> space(copy.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    auto* const next = new AcDbLine;
    ASSERT_EQ(space->appendAcDbEntity(id, next), Acad::eOk);  // its handle is free
    next->close();
}

TEST_F(Filing, EmptyFileBecomesADrawing) {
    AcDbDatabase empty(false, true);
    const auto findings = finishLoading(empty);
    EXPECT_FALSE(findings.empty());
    const AcDbDatabase fresh(true, true);
    EXPECT_EQ(snapshot(empty), snapshot(fresh));
}

TEST_F(Filing, MissingPartsTakeFreeHandles) {
    AcDbDatabase old(false, true);
    {
        const LoadScope scope(old);
        // A line with the handle that layer "0" usually has, on a layer no table lists, in a file without
        // tables.
        const LoadResult line = loadEntity(old, AcDbObjectId(),
                                           {{0, std::wstring(L"LINE")},
                                            {5, ObjectReference{AcDbHandle(0x10), {}}},
                                            {8, std::wstring(L"LOST")},
                                            {10, AcGePoint3d(1, 2, 3)},
                                            {11, AcGePoint3d(4, 5, 6)}});
        ASSERT_EQ(line.status, Acad::eOk) << line.problem;
        EXPECT_EQ(line.id.handle(), AcDbHandle(0x10));
    }
    finishLoading(old);
    AcDbObjectId id;
    ASSERT_EQ(old.getAcDbObjectId(id, AcDbHandle(0x10)), Acad::eOk);
    EXPECT_EQ(layerOf(id), L"LOST");
    EXPECT_TRUE(old.layerZero().isValid());
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(id, AcDb::kForRead)->endPoint().z, 6);
}

TEST_F(Filing, UnknownObjectsKeepGroupsReferencesAndProperties) {
    const LoadScope scope(db());
    const std::vector<DxfGroup> groups{{0, std::wstring(L"STRANGE")},
                                       {5, ObjectReference{AcDbHandle(0x777), {}}},
                                       {330, ObjectReference{db().modelSpaceId().handle(), {}}},
                                       {100, std::wstring(L"AcDbEntity")},
                                       {8, std::wstring(L"ODD")},
                                       {347, ObjectReference{AcDbHandle(0x888), {}}},
                                       {100, std::wstring(L"AcDbStrange")},
                                       {70, std::int64_t{3}},
                                       {70, std::int64_t{4}},
                                       {340, ObjectReference{AcDbHandle(0x999), {}}},
                                       {310, std::vector<std::uint8_t>{1, 2}},
                                       {1001, std::wstring(L"APP")},
                                       {1070, std::int64_t{1}}};
    const LoadResult result = loadEntity(db(), AcDbObjectId(), groups);
    ASSERT_EQ(result.status, Acad::eOk) << result.problem;
    EXPECT_EQ(describe(asRead(*peek<AcDbObject>(result.id))), describe(groups));
    EXPECT_EQ(layerOf(result.id), L"ODD");
    ASSERT_EQ(AcDbObjectPointer<AcDbEntity>(result.id, AcDb::kForWrite)->setColorIndex(2), Acad::eOk);
    EXPECT_EQ(peek<AcDbEntity>(result.id)->colorIndex(), 2);
}

TEST_F(Filing, BadGroupsNameTheProblem) {
    const LoadScope scope(db());
    const LoadResult result = loadEntity(db(), AcDbObjectId(),
                                         {{0, std::wstring(L"LINE")},
                                          {100, std::wstring(L"AcDbEntity")},
                                          {8, std::wstring(L"0")},
                                          {100, std::wstring(L"AcDbLine")},
                                          {10, std::wstring(L"no point")}});
    EXPECT_NE(result.status, Acad::eOk);
    EXPECT_EQ(result.problem, L"group 10: point expected");
    EXPECT_EQ(modelSpaceCount(), 0);
}

TEST_F(Filing, ManyEntitiesAreMadeAndWalkedInLinearTime) {
    constexpr int kCount = 100'000;
    AcDbObjectPointer<AcDbBlockTableRecord> space(db().modelSpaceId(), AcDb::kForWrite);
    for (int i = 0; i < kCount; ++i) {
        auto* const line = new AcDbLine;
        ASSERT_EQ(space->appendAcDbEntity(line), Acad::eOk);
        line->close();
    }
    space.close();
    ads_name name = {0, 0};
    int walked = 0;
    while (acdbEntNext(name, name) == RTNORM)
        ++walked;
    EXPECT_EQ(walked, kCount);
}

}  // namespace
