// Object snap in a document: which entities are asked, and for what.

#include <gtest/gtest.h>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/documents/host.h"
#include "host/editor/object_snap.h"

using namespace drafthost;

namespace {

// A line that counts how often it is asked for snap points, and offers a node of its own.
class AskedLine final : public AcDbLine {
public:
    AskedLine(const AcGePoint3d& start, const AcGePoint3d& end, int& asked)
        : AcDbLine(start, end), asked_(asked) {}

protected:
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t, const AcGePoint3d& pickPoint,
                                        const AcGePoint3d& lastPoint, const AcGeMatrix3d&,
                                        AcGePoint3dArray& snapPoints, AcDbIntArray&) const override {
        ++asked_;
        pick = pickPoint;
        last = lastPoint;
        if (mode == AcDb::kOsModeNode)
            snapPoints.append(endPoint());
        return Acad::eOk;
    }
    using AcDbEntity::subGetOsnapPoints;

private:
    int& asked_;

public:
    static inline AcGePoint3d pick, last;
};

class ObjectSnap : public testing::Test {
protected:
    ObjectSnap() {
        std::wstring problem;
        document_ = theHost().documents().open(L"", problem);
    }
    ~ObjectSnap() override { endHost(); }

    void append(AcDbEntity* entity) {
        const EvaluationScope running(*document_);
        const AcDbObjectPointer<AcDbBlockTableRecord> space(document_->database()->modelSpaceId(),
                                                            AcDb::kForWrite);
        ASSERT_EQ(space->appendAcDbEntity(entity), Acad::eOk);
        entity->close();
    }
    std::optional<AcGePoint3d> snapped(const AcGePoint3d& point, const wchar_t* words) {
        const auto modes = editor::snapModes(words);
        EXPECT_TRUE(modes);
        return modes ? editor::snappedPoint(*document_, point, *modes) : std::nullopt;
    }

    Document* document_;
};

// A drawing may hold any number of entities far from where the drafter points.
TEST_F(ObjectSnap, AsksOnlyWhatIsNear) {
    int asked = 0;
    for (int i = 0; i < 400; ++i) {
        const double x = 10.0 * (i % 20), y = 10.0 * (i / 20);
        append(new AskedLine({x, y, 0}, {x + 5, y, 0}, asked));
    }
    const auto found = snapped({104.9, 50.1, 0}, L"nod");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->isEqualTo({105, 50, 0}));
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(snapped({107.5, 54, 0}, L"nod,end"));
    EXPECT_EQ(asked, 1);
}

TEST_F(ObjectSnap, WorldCoordinatesAreAsked) {
    int asked = 0;
    append(new AskedLine({0, 0, 0}, {0, 10, 0}, asked));
    document_->prompts().setLastPoint({1, 2, 3});
    {
        const EvaluationScope running(*document_);
        document_->interpreter().evaluateTopLevel(
            L"(progn (setvar \"CMDECHO\" 0) (command \"_UCS\" \"_3\" '(0 10) '(0 20) '(-5 10)))");
    }
    const AcGePoint3d last = document_->prompts().lastPoint();
    const auto found = snapped({0.01, 0.02, 0}, L"nod");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->isEqualTo({0, 0, 0}, {1e-9, 1e-9}));
    EXPECT_LE(AskedLine::pick.distanceTo({-0.02, 10.01, 0}), 1e-9);
    EXPECT_LE(AskedLine::last.distanceTo({-last.y, 10 + last.x, last.z}), 1e-9);
}

// An entity of a module inside a block is asked in the block's coordinates.
TEST_F(ObjectSnap, EntitiesInsideBlocksAreAskedThere) {
    int asked = 0;
    const AcDbObjectId block = [&] {
        const EvaluationScope running(*document_);
        AcDbBlockTable* table = nullptr;
        EXPECT_EQ(document_->database()->getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        auto* const record = new AcDbBlockTableRecord;
        record->setName(L"ASKED");
        AcDbObjectId id;
        EXPECT_EQ(table->add(id, record), Acad::eOk);
        table->close();
        auto* const line = new AskedLine({0, 0, 0}, {4, 0, 0}, asked);
        EXPECT_EQ(record->appendAcDbEntity(line), Acad::eOk);
        line->close();
        record->close();
        return id;
    }();
    auto* const reference = new AcDbBlockReference({10, 10, 0}, block);
    reference->setScaleFactors({2, 2, 2});
    append(reference);
    const auto node = snapped({18, 10.01, 0}, L"nod");
    ASSERT_TRUE(node);
    EXPECT_TRUE(node->isEqualTo({18, 10, 0}));
    EXPECT_LE(AskedLine::pick.distanceTo({4, 0.005, 0}), 1e-9);
}

TEST(SnapWords, AreKnownByTheirFirstLetters) {
    using editor::snapModes;
    const auto several = snapModes(L"_End, midpoint,CENTRE");
    ASSERT_TRUE(several);
    EXPECT_EQ(several->ofEntities, (std::vector{AcDb::kOsModeEnd, AcDb::kOsModeMid, AcDb::kOsModeCen}));
    EXPECT_TRUE(snapModes(L"inter")->intersections);
    EXPECT_TRUE(snapModes(L"app")->apparentIntersections);
    EXPECT_TRUE(snapModes(L"none")->ofEntities.empty());
    for (const wchar_t* words : {L"", L"e", L"en", L"ends", L"end,", L",end", L"end mid", L"endpoints"})
        EXPECT_FALSE(snapModes(words)) << words;
}

}  // namespace
