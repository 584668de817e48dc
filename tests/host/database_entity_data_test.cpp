// Entities as LISP programs see them: entget, entmake, entmod, entdel, entnext and the table functions.

#include "host/database/entity_data.h"
#include "host/database/handles.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

class EntityData : public DrawingTest {
protected:
    struct Name {
        ads_name words = {0, 0};
        bool operator==(const Name& other) const { return ads_name_equal(words, other.words); }
    };

    static Name nameOf(AcDbObjectId id) {
        Name name;
        acdbGetAdsName(name.words, id);
        return name;
    }
    // Takes the list.
    static int make(resbuf* list) { return acdbEntMake(List(list).get()); }
    static Name makeX(resbuf* list) {
        Name name;
        EXPECT_EQ(acdbEntMakeX(List(list).get(), name.words), RTNORM) << "made nothing";
        return name;
    }
    static std::vector<short> codes(const resbuf* list) {
        std::vector<short> result;
        for (; list; list = list->rbnext)
            result.push_back(list->restype);
        return result;
    }
    static const resbuf* find(const List& list, short code) {
        const resbuf* node = list.get();
        while (node && node->restype != code)
            node = node->rbnext;
        return node;
    }
    static double real(const List& list, short code) {
        const resbuf* const node = find(list, code);
        return node ? node->resval.rreal : -1;
    }
    static std::wstring text(const List& list, short code) {
        const resbuf* const node = find(list, code);
        return node ? node->resval.rstring : L"<none>";
    }
    static List get(const Name& name) { return List(acdbEntGet(name.words)); }
    static Name next(const Name& after) {
        Name result;
        acdbEntNext(after.words, result.words);
        return result;
    }
    ads_point a_ = {1, 2, 3}, b_ = {4, 5, 6}, o_ = {0, 0, 0};

    int makeLine() { return make(acutBuildList(RTDXF0, L"LINE", 10, a_, 11, b_, RTNONE)); }
    int makeDoorBlock() {
        EXPECT_EQ(make(acutBuildList(RTDXF0, L"BLOCK", 2, L"DOOR", 70, 0, 10, o_, RTNONE)), RTNORM);
        EXPECT_EQ(makeLine(), RTNORM);
        return make(acutBuildList(RTDXF0, L"ENDBLK", RTNONE));
    }
    bool hasBlock(const wchar_t* name) {
        return AcDbObjectPointer<AcDbBlockTable>(db().blockTableId(), AcDb::kForRead)->has(name);
    }
    bool hasLayer(const wchar_t* name) {
        return AcDbObjectPointer<AcDbLayerTable>(db().layerTableId(), AcDb::kForRead)->has(name);
    }
};

TEST_F(EntityData, ListHasTheOrderProgramsKnow) {
    const AcDbObjectId id = addLine(2);
    const List list = get(nameOf(id));
    EXPECT_EQ(codes(list.get()), (std::vector<short>{-1, 0, 330, 5, 100, 67, 410, 8, 100, 10, 11, 210}));
    EXPECT_EQ(list->resval.rlname[0], nameOf(id).words[0]);
    EXPECT_EQ(text(list, 0), L"LINE");
    EXPECT_EQ(text(list, 5), handleText(id.handle()));
    EXPECT_EQ(text(list, 410), L"Model");
    EXPECT_EQ(text(list, 8), L"0");
    EXPECT_EQ(find(list, 330)->resval.rlname[0], nameOf(db().modelSpaceId()).words[0]);
}

TEST_F(EntityData, MadeEntitiesComeBackAsTheyWereGiven) {
    const Name circle = makeX(acutBuildList(RTDXF0, L"CIRCLE", 8, L"PIPES", 62, 5, 10, a_, 40, 2.5, RTNONE));
    const List list = get(circle);
    EXPECT_EQ(text(list, 8), L"PIPES");
    EXPECT_TRUE(hasLayer(L"PIPES"));
    EXPECT_EQ(find(list, 62)->resval.rint, 5);
    EXPECT_EQ(real(list, 40), 2.5);
    const Name arc = makeX(acutBuildList(RTDXF0, L"ARC", 10, a_, 40, 1.0, 50, 0.5, 51, 1.5, RTNONE));
    EXPECT_NEAR(real(get(arc), 51), 1.5, 1e-12);  // radians
    // The list that entget gave makes an equal entity.
    EXPECT_EQ(make(acdbEntGet(circle.words)), RTNORM);
    Name last;
    ASSERT_EQ(acdbEntLast(last.words), RTNORM);
    EXPECT_FALSE(last == circle);
    EXPECT_EQ(real(get(last), 40), 2.5);
}

TEST_F(EntityData, RefusedListsLeaveNothingBehind) {
    const auto refused = [&](resbuf* list) {
        lastEntityProblem() = {};
        const int result = make(list);
        EXPECT_FALSE(lastEntityProblem().text.empty());
        return result == RTERROR;
    };
    EXPECT_TRUE(refused(acutBuildList(10, a_, 11, b_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"NONSENSE", 10, a_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"LINE", 8, L"GHOST", 10, a_, RTNONE)));
    EXPECT_TRUE(
        refused(acutBuildList(RTDXF0, L"LINE", 8, L"GHOST", 6, L"NOLINETYPE", 10, a_, 11, b_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"LINE", 8, L"a/b", 10, a_, 11, b_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"LINE", 62, 300, 10, a_, 11, b_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"INSERT", 2, L"NOBLOCK", 10, a_, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"ATTRIB", 1, L"x", 2, L"T", 10, a_, 40, 1.0, RTNONE)));
    EXPECT_TRUE(refused(acutBuildList(RTDXF0, L"LINE", 10, a_, 11, b_, 1001, L"NOAPP", 1070, 1, RTNONE)));
    EXPECT_EQ(modelSpaceCount(), 0);
    EXPECT_FALSE(hasLayer(L"GHOST"));
}

TEST_F(EntityData, BlocksAreDefinedReplacedAndNamed) {
    ASSERT_EQ(makeDoorBlock(), RTNORM);
    EXPECT_EQ(modelSpaceCount(), 0);
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"INSERT", 2, L"door", 10, a_, 41, 2.0, RTNONE)), RTNORM);
    // A definition that would contain itself is refused as a whole.
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"BLOCK", 2, L"DOOR", 70, 0, 10, o_, RTNONE)), RTNORM);
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"INSERT", 2, L"DOOR", 10, a_, RTNONE)), RTNORM);
    EXPECT_EQ(make(acutBuildList(RTDXF0, L"ENDBLK", RTNONE)), RTERROR);
    Name block;
    ASSERT_EQ(acdbTblObjName(L"BLOCK", L"Door", block.words), RTNORM);
    EXPECT_EQ(text(get(next(block)), 0), L"LINE");
    ASSERT_EQ(makeDoorBlock(), RTNORM);
    const Name only = next(block);
    EXPECT_EQ(next(only), Name());
    for (const wchar_t* expected : {L"*U1", L"*U2"}) {
        make(acutBuildList(RTDXF0, L"BLOCK", 2, L"*U", 70, 1, 10, o_, RTNONE));
        makeLine();
        EXPECT_EQ(make(acutBuildList(RTDXF0, L"ENDBLK", RTNONE)), RTNORM);
        EXPECT_TRUE(hasBlock(expected));
    }
    EXPECT_EQ(make(acutBuildList(RTDXF0, L"ENDBLK", RTNONE)), RTERROR);
    EXPECT_EQ(make(acutBuildList(RTDXF0, L"BLOCK", 2, L"*Model_Space", 70, 0, 10, o_, RTNONE)), RTERROR);
}

TEST_F(EntityData, InsertWithAttributesIsOneSequence) {
    makeDoorBlock();
    const auto begin = [&] {
        return make(acutBuildList(RTDXF0, L"INSERT", 66, 1, 2, L"DOOR", 10, a_, RTNONE));
    };
    const auto attribute = [&](const wchar_t* tag) {
        return make(acutBuildList(RTDXF0, L"ATTRIB", 10, a_, 40, 1.0, 1, L"7", 2, tag, 70, 0, RTNONE));
    };
    ASSERT_EQ(begin(), RTNORM);
    EXPECT_EQ(makeLine(), RTERROR);  // gives the insertion up
    EXPECT_EQ(modelSpaceCount(), 0);
    ASSERT_EQ(begin(), RTNORM);
    ASSERT_EQ(attribute(L"NO"), RTNORM);
    ASSERT_EQ(attribute(L"KIND"), RTNORM);
    EXPECT_EQ(modelSpaceCount(), 0);
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"SEQEND", RTNONE)), RTNORM);
    const Name line = nameOf(addLine());
    Name step = next(Name());
    const Name insert = step;
    for (const wchar_t* type : {L"INSERT", L"ATTRIB", L"ATTRIB", L"SEQEND"}) {
        const List list = get(step);
        EXPECT_EQ(text(list, 0), type);
        if (step == next(Name())) {
            EXPECT_EQ(find(list, -2), nullptr);
        } else if (text(list, 0) == L"SEQEND") {
            EXPECT_EQ(find(list, -2)->resval.rlname[0], insert.words[0]);
        }
        step = next(step);
    }
    EXPECT_EQ(step, line);
    EXPECT_EQ(find(get(insert), 66)->resval.rint, 1);
    EXPECT_EQ(acdbEntDel(next(insert).words), RTERROR);  // an attribute alone
}

TEST_F(EntityData, ModChangesWhatIsGivenAndNothingElse) {
    const Name name = makeX(acutBuildList(RTDXF0, L"CIRCLE", 62, 1, 10, a_, 40, 2.5, RTNONE));
    const auto modify = [&](resbuf* change) {
        const List list(acutBuildList(-1, name.words, RTNONE));
        list->rbnext = change;
        return acdbEntMod(list.get());
    };
    EXPECT_EQ(modify(acutBuildList(40, 7.0, 8, L"MOVED", RTNONE)), RTNORM);
    EXPECT_EQ(real(get(name), 40), 7.0);
    EXPECT_EQ(text(get(name), 8), L"MOVED");
    EXPECT_EQ(find(get(name), 62)->resval.rint, 1);
    EXPECT_EQ(find(get(name), 10)->resval.rpoint[0], 1);
    EXPECT_EQ(modify(acutBuildList(RTDXF0, L"LINE", 40, 7.0, RTNONE)), RTERROR);
    EXPECT_EQ(modify(acutBuildList(40, -7.0, RTNONE)), RTERROR);
    EXPECT_EQ(real(get(name), 40), 7.0);
    AcDbObjectPointer<AcDbLayerTable> layers(db().layerTableId(), AcDb::kForRead);
    AcDbLayerTableRecord* layer = nullptr;
    ASSERT_EQ(layers->getAt(L"MOVED", layer, AcDb::kForWrite), Acad::eOk);
    layer->setIsLocked(true);
    layer->close();
    EXPECT_EQ(modify(acutBuildList(40, 8.0, RTNONE)), RTERROR);
    EXPECT_EQ(lastEntityProblem().number, kErrnoOnLockedLayer);
    EXPECT_EQ(acdbEntDel(name.words), RTERROR);
}

TEST_F(EntityData, ModReplacesVerticesTogether) {
    const Name name = makeX(acutBuildList(RTDXF0, L"LWPOLYLINE", 100, L"AcDbEntity", 100, L"AcDbPolyline", 90,
                                          3, 70, 0, 10, a_, 42, 0.5, 10, b_, 10, o_, RTNONE));
    const List list(acutBuildList(-1, name.words, 90, 2, 10, o_, 10, a_, RTNONE));
    ASSERT_EQ(acdbEntMod(list.get()), RTNORM);
    AcDbObjectId id;
    acdbGetObjectId(id, name.words);
    EXPECT_EQ(AcDbObjectPointer<AcDbPolyline>(id, AcDb::kForRead)->numVerts(), 2u);
}

TEST_F(EntityData, ModAndGetCarryExtendedData) {
    acdbRegApp(L"MINE");
    acdbRegApp(L"YOURS");
    const Name name = nameOf(addLine());
    const List change(
        acutBuildList(-1, name.words, -3, 1001, L"MINE", 1070, 4, 1001, L"YOURS", 1000, L"x", RTNONE));
    ASSERT_EQ(acdbEntMod(change.get()), RTNORM);
    const List all(acutBuildList(RTSTR, L"m*", RTNONE));
    const List list(acdbEntGetX(name.words, all.get()));
    const resbuf* const data = find(list, -3);
    ASSERT_TRUE(data);
    EXPECT_EQ(codes(data), (std::vector<short>{-3, 1001, 1070}));
    EXPECT_EQ(codes(get(name).get()).back(), 210);
}

TEST_F(EntityData, DelTogglesAndNextSkipsErased) {
    const Name first = nameOf(addLine(1)), second = nameOf(addLine(2)), third = nameOf(addLine(3));
    EXPECT_EQ(acdbEntDel(second.words), RTNORM);
    EXPECT_EQ(get(second), nullptr);
    EXPECT_EQ(next(first), third);
    EXPECT_EQ(next(second), third);
    EXPECT_EQ(acdbEntDel(second.words), RTNORM);
    EXPECT_EQ(next(first), second);
    EXPECT_EQ(next(third), Name());
    Name found;
    const List list = get(second);
    EXPECT_EQ(acdbHandEnt(find(list, 5)->resval.rstring, found.words), RTNORM);
    EXPECT_EQ(found, second);
    EXPECT_EQ(acdbHandEnt(L"zz", found.words), RTERROR);
    const ads_name forged = {12345, 0};
    EXPECT_EQ(acdbEntGet(forged), nullptr);
    EXPECT_EQ(acdbEntDel(forged), RTERROR);
}

TEST_F(EntityData, TableListsAreShortAndSteppedThrough) {
    const List layer(acdbTblSearch(L"LAYER", L"0", false));
    EXPECT_EQ(codes(layer.get()), (std::vector<short>{0, 2, 70, 62, 6}));
    makeDoorBlock();
    const List block(acdbTblSearch(L"BLOCK", L"door", false));
    EXPECT_EQ(codes(block.get()), (std::vector<short>{0, 2, 70, 10, -2}));
    const List first(acdbTblNext(L"BLOCK", true));
    EXPECT_EQ(text(first, 2), L"DOOR");  // not model space
    EXPECT_EQ(acdbTblNext(L"BLOCK", false), nullptr);
    EXPECT_EQ(acdbTblNext(L"BLOCK", false), nullptr);
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"LAYER", 2, L"NEW", 70, 0, 62, -3, 6, L"Continuous", RTNONE)),
              RTNORM);
    EXPECT_EQ(make(acutBuildList(RTDXF0, L"LAYER", 2, L"new", 70, 0, 62, 3, RTNONE)), RTERROR);
    const List made(acdbTblSearch(L"LAYER", L"NEW", false));
    EXPECT_EQ(find(made, 62)->resval.rint, -3);  // off
    EXPECT_EQ(acdbTblSearch(L"NOTABLE", L"x", false), nullptr);
}

TEST_F(EntityData, EntitiesOfUnknownClassesKeepTheirGroups) {
    const Name point = makeX(acutBuildList(RTDXF0, L"POINT", 10, a_, 8, L"SURVEY", RTNONE));
    const List list = get(point);
    EXPECT_EQ(text(list, 8), L"SURVEY");
    EXPECT_EQ(find(list, 10)->resval.rpoint[1], 2);
    make(acutBuildList(RTDXF0, L"POLYLINE", 66, 1, 70, 8, 10, o_, RTNONE));
    make(acutBuildList(RTDXF0, L"VERTEX", 10, a_, 70, 32, RTNONE));
    ASSERT_EQ(make(acutBuildList(RTDXF0, L"SEQEND", RTNONE)), RTNORM);
    EXPECT_EQ(text(get(next(next(point))), 0), L"VERTEX");
}

}  // namespace
