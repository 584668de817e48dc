// What leaders write and read, call by call, and what they do when a call fails.

#include "host/database/group_filer.h"
#include "tests/module/leader_samples.h"
#include "tests/module/value_filer.h"

namespace tessary::testing {

namespace {

using Texts = std::vector<std::string>;

class LeaderFiling : public LeaderTest {
protected:
    // What the entity writes before the leader's own data, which begin behind it.
    static int baseLength(const QNLeader& leader) {
        ValueFiler filer;
        EXPECT_EQ(Acad::eOk, leader.AcDbCurve::dwgOutFields(&filer));
        return filer.calls;
    }
    static FiledValues filed(const QNLeader& leader, AcDb::FilerType type = AcDb::kFileFiler) {
        ValueFiler filer({}, type);
        EXPECT_EQ(Acad::eOk, leader.dwgOutFields(&filer));
        return filer.values;
    }
    static FiledValues ownPart(const QNLeader& leader, AcDb::FilerType type = AcDb::kFileFiler) {
        FiledValues values = filed(leader, type);
        values.erase(values.begin(), values.begin() + baseLength(leader));
        return values;
    }
    // The leader's record with another version.
    static FiledValues versioned(const QNLeader& leader, std::int32_t version) {
        FiledValues values = filed(leader);
        values[static_cast<std::size_t>(baseLength(leader))] = version;
        return values;
    }
    std::string symbolText() const { return shown(FiledValue(FiledId{FiledId::hardPointer, symbol})); }
    static void eraseBlock(AcDbObjectId id) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForWrite);
        ASSERT_EQ(Acad::eOk, block->erase());
    }

    const QNLeader sample{{1, 2, 3}, {4, 5, 6}, {10, 5, 6}, 1.5, symbol, layer};
};

TEST_F(LeaderFiling, writesItsDataInOrder) {
    const Texts wanted = {"int32 2",    "point 1 2 3", "point 4 5 6", "point 10 5 6",
                          "double 1.5", "bool 1",      symbolText()};
    EXPECT_EQ(wanted, shown(ownPart(sample)));
}

TEST_F(LeaderFiling, firstFailingWriteEndsIt) {
    const int base = baseLength(sample);
    for (int call = 0; call < 7; ++call) {
        ValueFiler filer;
        filer.failures[base + call] = Acad::eFilerError;
        EXPECT_EQ(Acad::eFilerError, sample.dwgOutFields(&filer)) << call;
        EXPECT_EQ(base + call + 1, filer.calls);
    }
}

TEST_F(LeaderFiling, failuresOfTheEntitysDataDoNotCount) {
    ValueFiler out;
    out.failures[0] = Acad::eFilerError;
    EXPECT_EQ(Acad::eOk, sample.dwgOutFields(&out));
    EXPECT_EQ(symbolText(), shown(out.values.back()));

    // All that the entity asks for fails; the leader's own values come next.
    ValueFiler empty;
    QNLeader counting;
    EXPECT_NE(Acad::eOk, counting.AcDbCurve::dwgInFields(&empty));
    ValueFiler in(ownPart(sample));
    for (int call = 0; call < empty.calls; ++call) {
        in.failures[call] = Acad::eFilerError;
    }
    QNLeader read;
    EXPECT_EQ(Acad::eOk, read.dwgInFields(&in));
    EXPECT_EQ(symbol, read.blockId());
    EXPECT_EQ(in.values.size(), in.position);
}

TEST_F(LeaderFiling, endsWithTheStatusOfTheFiler) {
    ValueFiler out;
    out.status = Acad::eOutOfMemory;
    EXPECT_EQ(Acad::eOutOfMemory, sample.dwgOutFields(&out));
    for (const std::int32_t version : {1, 2, 0}) {
        ValueFiler in(versioned(sample, version));
        in.status = Acad::eOutOfMemory;
        QNLeader read;
        EXPECT_EQ(Acad::eOutOfMemory, read.dwgInFields(&in)) << version;
    }
}

TEST_F(LeaderFiling, onlyUndoKeepsAnErasedBlock) {
    const AcDbObjectId fleeting = addSymbol(L"Fleeting");
    const QNLeader leader({}, {1, 0, 0}, {2, 0, 0}, 1, fleeting, layer);
    eraseBlock(fleeting);
    for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kCopyFiler, AcDb::kDeepCloneFiler,
                                       AcDb::kWblockCloneFiler, AcDb::kIdFiler}) {
        EXPECT_EQ("bool 0", shown(ownPart(leader, type).back())) << type;
    }
    const FiledValues undo = ownPart(leader, AcDb::kUndoFiler);
    ASSERT_EQ(7u, undo.size());
    EXPECT_EQ("bool 1", shown(undo[5]));
    EXPECT_EQ(fleeting, std::get<FiledId>(undo[6]).id);
}

TEST_F(LeaderFiling, noBlockIsWrittenAsNone) {
    const QNLeader without({}, {1, 0, 0}, {2, 0, 0}, 1, AcDbObjectId::kNull, layer);
    EXPECT_EQ(6u, ownPart(without).size());
    EXPECT_EQ("bool 0", shown(ownPart(without, AcDb::kUndoFiler).back()));
    ValueFiler filer(filed(without));
    QNLeader read({}, {}, {}, 1, symbol, layer);
    EXPECT_EQ(Acad::eOk, read.dwgInFields(&filer));
    EXPECT_TRUE(read.blockId().isNull());
    EXPECT_TRUE(read.blockReference().blockTableRecord().isNull());
}

TEST_F(LeaderFiling, readsAllMembersBack) {
    ValueFiler filer(filed(sample));
    QNLeader read;
    EXPECT_EQ(Acad::eOk, read.dwgInFields(&filer));
    EXPECT_EQ(filer.values.size(), filer.position);
    ValueFiler base(filer.values);
    QNLeader entity;
    EXPECT_EQ(Acad::eOk, entity.AcDbCurve::dwgInFields(&base));
    EXPECT_EQ(base.typeQuestions + 1, filer.typeQuestions);
    expectNear(pointsOf(sample), pointsOf(read));
    EXPECT_EQ(1.5, read.offset());
    EXPECT_EQ(symbol, read.blockId());
    EXPECT_EQ(layer, read.layerId());
    EXPECT_EQ(layer, read.blockReference().layerId());
    expectPlacedSymbol(read);
    EXPECT_EQ(shown(filed(sample)), shown(filed(read)));
}

// The scale of the document counts for version 1; here there is none.
TEST_F(LeaderFiling, versionOneLeavesTheSymbolWithoutALayer) {
    ValueFiler filer(versioned(sample, 1));
    QNLeader read;
    EXPECT_EQ(Acad::eOk, read.dwgInFields(&filer));
    EXPECT_EQ(layer, read.layerId());
    EXPECT_TRUE(read.blockReference().layerId().isNull());
    EXPECT_EQ(1.5, read.offset());
    expectPlacedSymbol(read);
    EXPECT_EQ(Acad::eOk, read.setLayer(layer));
    EXPECT_EQ(layer, read.blockReference().layerId());
}

TEST_F(LeaderFiling, laterVersionsAreForProxies) {
    for (const std::int32_t version : {3, 1000}) {
        ValueFiler filer(versioned(sample, version));
        QNLeader read({7, 7, 7}, {8, 8, 8}, {9, 9, 9}, 4, symbol, layer);
        EXPECT_EQ(Acad::eMakeMeProxy, read.dwgInFields(&filer));
        EXPECT_EQ(baseLength(sample) + 1, filer.calls);
        expectNear({9, 9, 9}, read.endPoint());
    }
}

TEST_F(LeaderFiling, versionsBelowOneReadNothingMore) {
    for (const std::int32_t version : {0, -1, -2}) {
        ValueFiler filer(versioned(sample, version));
        QNLeader read({7, 7, 7}, {8, 8, 8}, {9, 9, 9}, 4, symbol, layer);
        EXPECT_EQ(Acad::eOk, read.dwgInFields(&filer)) << version;
        EXPECT_EQ(baseLength(sample) + 1, filer.calls);
        expectNear({9, 9, 9}, read.endPoint());
        EXPECT_EQ(4, read.offset());
    }
}

TEST_F(LeaderFiling, firstFailingReadEndsIt) {
    const int base = baseLength(sample);
    for (const std::int32_t version : {1, 2}) {
        for (int call = 0; call < 7; ++call) {
            ValueFiler filer(versioned(sample, version));
            filer.failures[base + call] = Acad::eFilerError;
            QNLeader read;
            EXPECT_EQ(Acad::eFilerError, read.dwgInFields(&filer)) << call;
            EXPECT_EQ(base + call + 1, filer.calls);
        }
    }
}

TEST_F(LeaderFiling, blockThatDidNotComeAlongIsNoFailure) {
    const int base = baseLength(sample);
    for (const std::int32_t version : {1, 2}) {
        ValueFiler filer(versioned(sample, version));
        filer.failures[base + 6] = Acad::eUnknownHandle;
        QNLeader read({}, {}, {}, 1, symbol, layer);
        EXPECT_EQ(Acad::eOk, read.dwgInFields(&filer));
        EXPECT_TRUE(read.blockId().isNull());
        expectPlacedSymbol(read);
        expectNear({10, 5, 6}, read.endPoint());

        // Of the flag before it, the same status is one.
        ValueFiler flagFiler(versioned(sample, version));
        flagFiler.failures[base + 5] = Acad::eUnknownHandle;
        EXPECT_EQ(Acad::eUnknownHandle, read.dwgInFields(&flagFiler));
    }
}

// Reads groups as the host does, failing where the test says. The filer's own status is the test's too.
class FailingGroups : public drafthost::GroupFiler {
public:
    FailingGroups(std::vector<drafthost::DxfGroup> given, int failAt)
        : GroupFiler(nullptr, std::move(given)), failAt_(failAt) {}
    Acad::ErrorStatus readResBuf(resbuf* node) override {
        return reads_++ == failAt_ ? Acad::eFilerError : GroupFiler::readResBuf(node);
    }
    Acad::ErrorStatus filerStatus() const override { return status; }
    Acad::ErrorStatus status = Acad::eOk;

private:
    int failAt_;
    int reads_ = 0;
};

class LeaderGroups : public LeaderFiling {
protected:
    using Groups = std::vector<drafthost::DxfGroup>;

    static drafthost::DxfGroup point(short code, double x, double y, double z) {
        return {code, AcGePoint3d(x, y, z)};
    }
    static drafthost::DxfGroup marker(const wchar_t* name) { return {100, std::wstring(name)}; }
    static Groups withMarkers(Groups own) {
        Groups groups = {marker(L"AcDbEntity"), marker(L"QNLeader")};
        groups.insert(groups.end(), own.begin(), own.end());
        return groups;
    }
    static Acad::ErrorStatus readInto(QNLeader& leader, Groups groups) {
        FailingGroups filer(std::move(groups), -1);
        return leader.dxfInFields(&filer);
    }
    const Groups usual = {point(10, 1, 2, 3), point(11, 4, 5, 6), point(12, 10, 5, 6), {40, 1.5}};
};

TEST_F(LeaderGroups, writesPointsAndOffsetButNoBlock) {
    drafthost::GroupFiler filer(&database);
    ASSERT_EQ(Acad::eOk, sample.dxfOutFields(&filer));
    const auto& groups = filer.groups();
    ASSERT_GE(groups.size(), 5u);
    const auto own = groups.end() - 5;
    EXPECT_EQ(100, own[0].code);
    EXPECT_EQ(L"QNLeader", std::get<std::wstring>(own[0].value));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(10 + i, own[1 + i].code);
        expectNear(pointsOf(sample)[static_cast<std::size_t>(i)], std::get<AcGePoint3d>(own[1 + i].value), 0);
    }
    EXPECT_EQ(40, own[4].code);
    EXPECT_EQ(1.5, std::get<double>(own[4].value));
}

TEST_F(LeaderGroups, anyOrderGivesTheSameLeader) {
    Groups own = usual;
    std::reverse(own.begin(), own.end());
    QNLeader leader;
    EXPECT_EQ(Acad::eOk, readInto(leader, withMarkers(own)));
    expectNear(pointsOf(sample), pointsOf(leader));
    EXPECT_EQ(1.5, leader.offset());
    EXPECT_TRUE(leader.blockId().isNull());
    expectPlacedSymbol(leader);
}

TEST_F(LeaderGroups, laterGroupsOverwriteAndOthersAreIgnored) {
    Groups own = usual;
    own.insert(own.begin() + 1, {{1, std::wstring(L"text")}, {70, std::int64_t{5}}, {41, 9.0}});
    own.push_back({40, 3.0});
    own.push_back(point(10, -1, -1, -1));
    QNLeader leader;
    EXPECT_EQ(Acad::eOk, readInto(leader, withMarkers(own)));
    expectNear({-1, -1, -1}, leader.startPoint());
    expectNear({4, 5, 6}, leader.middlePoint());
    EXPECT_EQ(3.0, leader.offset());
    expectPlacedSymbol(leader);
}

TEST_F(LeaderGroups, needsItsMarkerAndTheEntitys) {
    Groups unmarked = {marker(L"AcDbEntity")};
    unmarked.insert(unmarked.end(), usual.begin(), usual.end());
    Groups others = unmarked;
    others.insert(others.begin() + 1, marker(L"AcDbLine"));
    for (const Groups& groups : {unmarked, others, usual}) {
        QNLeader leader;
        EXPECT_EQ(Acad::eBadDxfSequence, readInto(leader, groups));
        expectNear(AcGePoint3d(), leader.endPoint());
    }
    QNLeader leader;
    Groups wrongLayer = withMarkers(usual);
    wrongLayer.insert(wrongLayer.begin() + 1, {48, std::wstring(L"no scale")});
    EXPECT_EQ(Acad::eInvalidInput, readInto(leader, wrongLayer));
}

TEST_F(LeaderGroups, endsWithTheStatusOfTheFilerWhateverEndedTheReading) {
    QNLeader leader;
    FailingGroups failing(withMarkers(usual), 2);
    EXPECT_EQ(Acad::eOk, leader.dxfInFields(&failing));
    expectNear({4, 5, 6}, leader.middlePoint());
    expectNear(AcGePoint3d(), leader.endPoint());
    expectPlacedSymbol(leader);

    FailingGroups broken(withMarkers(usual), -1);
    broken.status = Acad::eOutOfMemory;
    EXPECT_EQ(Acad::eOutOfMemory, leader.dxfInFields(&broken));
    expectNear({10, 5, 6}, leader.endPoint());
    EXPECT_EQ(Acad::eOutOfMemory, leader.dxfOutFields(&broken));
}

// A leader that is in a drawing and not open for write refuses every change.
TEST_F(LeaderFiling, leadersThatAreNotOpenForWriteStayAsTheyAre) {
    const AcDbObjectId id =
        append(new QNLeader({1, 2, 3}, {4, 5, 6}, {10, 5, 6}, 1.5, symbol, layer), database.modelSpaceId());
    const AcDbObjectPointer<QNLeader> leader(id, AcDb::kForRead);
    ASSERT_TRUE(leader);
    const Texts before = shown(filed(*leader));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->setPoints({}, {}, {}));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->setOffset(3));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->setLayer(database.layerZero()));
    EXPECT_FALSE(leader->setBlock(L"Tag"));
    AcDbIntArray indices;
    indices.append(0);
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->moveStretchPointsAt(indices, {1, 1, 1}));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->moveGripPointsAt(indices, {1, 1, 1}));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->transformBy(AcGeMatrix3d::translation({1, 1, 1})));
    ValueFiler values(filed(sample));
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->dwgInFields(&values));
    EXPECT_EQ(0, values.calls);
    drafthost::GroupFiler groups(&database, std::vector<drafthost::DxfGroup>());
    EXPECT_EQ(Acad::eNotOpenForWrite, leader->dxfInFields(&groups));
    EXPECT_EQ(before, shown(filed(*leader)));
    EXPECT_EQ(layer, leader->blockReference().layerId());
}

}  // namespace

}  // namespace tessary::testing
