// Copies within a drawing, and block references that shrink to nothing.

#include "host/api/text_entities.h"
#include "host/database/class_registry.h"
#include "host/database/deep_clone.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "host/graphics/display_builder.h"
#include "tests/host/database_drawing.h"
#include "tests/host/database_dump.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

class DeepClone : public DrawingTest {
protected:
    // The copy, closed.
    AcDbObjectId cloned(AcDbObjectId id) {
        AcDbEntity* copy = nullptr;
        {
            const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            EXPECT_EQ(deepClone(*entity, copy), Acad::eOk);
        }
        const AcDbObjectId made = copy->objectId();
        copy->close();
        return made;
    }
    AcDbObjectId addAttribute(AcDbObjectId reference, const wchar_t* tag, const wchar_t* text) {
        AcDbObjectId id;
        auto* const attribute = new AcDbAttribute;
        AcDbObjectPointer<AcDbBlockReference> insert(reference, AcDb::kForWrite);
        EXPECT_EQ(insert->appendAttribute(id, attribute), Acad::eOk);
        attribute->setTag(tag);
        attribute->setTextString(text);
        attribute->close();
        return id;
    }
    AcDbObjectId addDictionary(AcDbObjectId owner) {
        auto dictionary = std::make_unique<AcDbDictionary>();
        AcDbObjectId id;
        EXPECT_EQ(db().impl().add(dictionary.get(), owner, AcDbHandle(), id), Acad::eOk);
        AcDbObjectId inner;
        auto* const entry = new AcDbDictionary;
        EXPECT_EQ(dictionary->setAt(L"DATA", entry, inner), Acad::eOk);
        entry->close();
        dictionary.release()->close();
        ObjectImp::of(owner.stub()->object).state->extensionDictionary = id;
        return id;
    }
    static const BlockReferenceState& stateOf(AcDbObjectId id) {
        return readState<BlockReferenceState>(peek<AcDbBlockReference>(id));
    }
    // A block with a line and a circle, and a reference to it at (10, 20) with these factors.
    AcDbObjectId scaled(const AcGeVector3d& factors) {
        const AcDbObjectId block = addBlock(L"Shown");
        append(new AcDbLine({1, 1, 0}, {4, 5, 0}), block);
        append(new AcDbCircle({2, 2, 0}, {0, 0, 1}, 1.5), block);
        append(new AcDbText({0, 0, 0}, L"text", db().textstyle(), 2, 0), block);
        auto* const reference = new AcDbBlockReference({10, 20, 0}, block);
        EXPECT_EQ(reference->setScaleFactors(factors), Acad::eOk);
        return append(reference);
    }
};

}  // namespace

TEST_F(DeepClone, ReferenceKeepsAttributesAndDictionary) {
    const AcDbObjectId reference = append(new AcDbBlockReference({5, 6, 0}, addBlock(L"Tagged")));
    const AcDbObjectId first = addAttribute(reference, L"A", L"one");
    const AcDbObjectId erased = addAttribute(reference, L"B", L"two");
    addAttribute(reference, L"C", L"three");
    AcDbObjectPointer<AcDbEntity>(erased, AcDb::kForWrite)->erase();
    const AcDbObjectId dictionary = addDictionary(first);
    // A handle in extended data that names a part of the original names the same part of the copy.
    ObjectImp::of(reference.stub()->object).state->xdata = {
        {1001, std::wstring(L"ACAD")},
        {1005, ObjectReference{first.handle(), {}}},
        {1005, ObjectReference{db().modelSpaceId().handle(), {}}}};
    ObjectImp::of(reference.stub()->object).state->reactors = {dictionary, db().namedObjectsDictionaryId()};

    const AcDbObjectId copy = cloned(reference);
    const BlockReferenceState& state = stateOf(copy);
    ASSERT_EQ(state.attributes.size(), 2u);
    EXPECT_EQ(state.owner, db().modelSpaceId());
    EXPECT_EQ(state.block, stateOf(reference).block);
    const auto* const attribute = peek<AcDbAttribute>(state.attributes[0]);
    ASSERT_TRUE(attribute);
    EXPECT_NE(attribute->objectId(), first);
    EXPECT_EQ(attribute->ownerId(), copy);
    EXPECT_STREQ(attribute->textString(), L"one");
    EXPECT_STREQ(peek<AcDbAttribute>(state.attributes[1])->textString(), L"three");
    EXPECT_TRUE(state.sequenceEnd.isValid());
    EXPECT_NE(state.sequenceEnd, stateOf(reference).sequenceEnd);
    const auto* const copied = peek<AcDbDictionary>(attribute->extensionDictionary());
    ASSERT_TRUE(copied);
    EXPECT_NE(copied->objectId(), dictionary);
    EXPECT_EQ(copied->numEntries(), 1);
    EXPECT_EQ(std::get<ObjectReference>(state.xdata[1].value).handle, attribute->handle());
    EXPECT_EQ(std::get<ObjectReference>(state.xdata[2].value).handle, db().modelSpaceId().handle());
    EXPECT_EQ(state.reactors, std::vector<AcDbObjectId>{copied->objectId()});
    EXPECT_EQ(modelSpaceCount(), 2);
    // The original is as it was, and the drawing reads back whole.
    EXPECT_EQ(stateOf(reference).attributes.size(), 3u);
    AcDbDatabase again(false, true);
    EXPECT_TRUE(
        exchange::readDxfBytes(again, exchange::dxfBytes(db()), L"copied.dxf").audit.findings().empty());
}

TEST_F(DeepClone, CopyThatIsGivenUpLeavesNothing) {
    const AcDbObjectId reference = append(new AcDbBlockReference({5, 6, 0}, addBlock(L"Tagged")));
    addAttribute(reference, L"A", L"one");
    addDictionary(reference);
    const std::wstring before = Dump::ofBlock(db().modelSpaceId());
    db().transactionManager()->startTransaction();
    const AcDbObjectId copy = cloned(reference);
    EXPECT_EQ(modelSpaceCount(), 2);
    db().transactionManager()->abortTransaction();
    EXPECT_FALSE(copy.isValid());
    EXPECT_EQ(Dump::ofBlock(db().modelSpaceId()), before);
}

TEST_F(DeepClone, ReferenceAtZeroScaleIsItsPosition) {
    const AcDbObjectId id = scaled({0, 0, 0});
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
    AcDbExtents extents;
    ASSERT_EQ(reference->getGeomExtents(extents), Acad::eOk);
    EXPECT_TRUE(extents.minPoint().isEqualTo({10, 20, 0}));
    EXPECT_TRUE(extents.maxPoint().isEqualTo({10, 20, 0}));
    AcDbEntityArray parts;
    EXPECT_EQ(reference->explode(parts), Acad::eDegenerateGeometry);
    EXPECT_EQ(parts.length(), 0);
    AcGePoint3dArray points;
    const AcDbLine through({0, 20, 0}, {20, 20, 0});
    EXPECT_EQ(reference->intersectWith(&through, AcDb::kOnBothOperands, points), Acad::eOk);
    EXPECT_EQ(points.length(), 0);
    graphics::DisplayBuilder builder(db(), 1e-5);
    builder.draw(reference.object());
    EXPECT_FALSE(builder.take().bounds().valid);
}

// Flat drawings of some writers.
TEST_F(DeepClone, ReferenceOfNoHeightIsShownAndExploded) {
    const AcDbObjectId id = scaled({2, 2, 0});
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
    AcDbExtents extents, ofParts;
    ASSERT_EQ(reference->getGeomExtents(extents), Acad::eOk);
    AcDbEntityArray parts;
    ASSERT_EQ(reference->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 3);
    for (AcDbEntity* const part : parts) {
        part->getGeomExtents(ofParts);
        delete part;
    }
    EXPECT_TRUE(extents.minPoint().isEqualTo(ofParts.minPoint()));
    EXPECT_TRUE(extents.maxPoint().isEqualTo(ofParts.maxPoint()));
    graphics::DisplayBuilder builder(db(), 1e-5);
    builder.draw(reference.object());
    const graphics::Bounds ink = builder.take().bounds();
    EXPECT_GE(ink.maxX, 10 + 2 * 3.5 - 1e-3) << "the circle";
    EXPECT_LE(ink.maxX, extents.maxPoint().x);
}

TEST_F(DeepClone, ZeroFactorsMoveCopyNestAndAreFiled) {
    const AcDbObjectId id = scaled({0, 2, 0});
    const AcDbObjectId outer = addBlock(L"Outer");
    auto* const nested = new AcDbBlockReference({1, 0, 0}, stateOf(id).block);
    EXPECT_EQ(nested->setScaleFactors({0, 0, 0}), Acad::eOk);
    append(nested, outer);
    const AcDbObjectId shown = append(new AcDbBlockReference({100, 0, 0}, outer));
    {
        const AcDbObjectPointer<AcDbBlockReference> reference(shown, AcDb::kForRead);
        AcDbEntityArray parts;
        ASSERT_EQ(reference->explode(parts), Acad::eOk);
        ASSERT_EQ(parts.length(), 1);
        const std::unique_ptr<AcDbEntity> part(parts[0]);
        EXPECT_TRUE(AcDbBlockReference::cast(part.get())->position().isEqualTo({101, 0, 0}));
        EXPECT_TRUE(AcDbBlockReference::cast(part.get())->scaleFactors().isZeroLength());
    }
    const AcDbObjectId copy = cloned(id);
    {
        const AcDbObjectPointer<AcDbBlockReference> moved(copy, AcDb::kForWrite);
        EXPECT_EQ(moved->transformBy(AcGeMatrix3d::scaling(3, {0, 0, 0})), Acad::eOk);
        EXPECT_TRUE(moved->scaleFactors().isEqualTo({0, 6, 0}));
        EXPECT_TRUE(moved->position().isEqualTo({30, 60, 0}));
        EXPECT_EQ(moved->setScaleFactors({1, std::nan(""), 1}), Acad::eInvalidInput);
    }
    AcDbDatabase again(false, true);
    const auto read = exchange::readDxfBytes(again, exchange::dxfBytes(db()), L"zero.dxf");
    ASSERT_EQ(read.status, Acad::eOk);
    EXPECT_TRUE(read.audit.findings().empty());
    EXPECT_EQ(Dump::ofBlock(again.modelSpaceId()), Dump::ofBlock(db().modelSpaceId()));
    AcDbObjectId kept;
    ASSERT_EQ(again.getAcDbObjectId(kept, id.handle()), Acad::eOk);
    EXPECT_EQ(stateOf(kept).scaleX, 0);
    EXPECT_EQ(stateOf(kept).scaleY, 2);
}

namespace {

class CopiedTags : public TagTest {
protected:
    static Acad::ErrorStatus clone(AcDbObjectId id, AcDbObjectId& made) {
        AcDbEntity* copy = nullptr;
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        const Acad::ErrorStatus status = deepClone(*entity, copy);
        if (status != Acad::eOk)
            return status;
        made = copy->objectId();
        return copy->close();
    }
};

}  // namespace

TEST_F(CopiedTags, KeepWhatTheirClassFiles) {
    const AcDbObjectId id = addTag(L"kept");
    AcDbObjectPointer<Tag>(id, AcDb::kForWrite)->bytes = {7};
    ObjectImp::of(id.stub()->object).state->xdata = {{1001, std::wstring(L"ACAD")},
                                                     {1005, ObjectReference{id.handle(), {}}}};
    AcDbObjectId copy;
    ASSERT_EQ(clone(id, copy), Acad::eOk);
    const AcDbObjectPointer<Tag> tag(copy, AcDb::kForRead);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->text, L"kept");
    EXPECT_EQ(tag->bytes, std::vector<std::uint8_t>{7});
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_EQ(tag->ownerId(), db().modelSpaceId());
    EXPECT_EQ(std::get<ObjectReference>(ObjectImp::of(tag.object()).state->xdata[1].value).handle,
              tag->handle());
}

TEST_F(CopiedTags, ProxiesNeedTheLeaveOfTheirClass) {
    const AcDbObjectId refused = addTag(L"refused");
    unload();
    AcDbObjectId copy;
    EXPECT_EQ(clone(refused, copy), Acad::eProxyRefused);
    EXPECT_EQ(modelSpaceCount(), 1);
    load(kProxyCloningAllowed);
    AcDbObjectPointer<Tag>(refused, AcDb::kForWrite)->bytes = {4, 5};
    unload();
    ASSERT_EQ(clone(refused, copy), Acad::eOk);
    load();
    const AcDbObjectPointer<Tag> tag(copy, AcDb::kForRead);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->bytes, (std::vector<std::uint8_t>{4, 5}));
    EXPECT_EQ(tag->symbol, symbol());
}

// The block that only a record of the class names comes along, whether the class is here or not.
TEST_F(CopiedTags, GoToOtherDrawingsWithWhatTheyName) {
    for (const bool away : {false, true}) {
        AcDbDatabase target(true, true);
        AcDbObjectId elsewhere;
        const AcDbObjectId id = addTag(L"kept");
        append(new AcDbLine({0, 0, 0}, {1, 0, 0}), symbol());
        AcDbBlockTable* blocks = nullptr;
        ASSERT_EQ(target.getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
        auto* const other = new AcDbBlockTableRecord;  // so that ids and handles differ
        other->setName(L"Other");
        ASSERT_EQ(blocks->add(elsewhere, other), Acad::eOk);
        blocks->close();
        other->close();
        if (away)
            unload();
        AcDbObjectId block;
        ASSERT_EQ(target.insert(block, L"Tags", &db()), Acad::eOk);
        if (away)
            load();
        const AcDbObjectId symbolThere = findRecord(&target, TableIndex::Block, L"SYMBOL");
        ASSERT_FALSE(symbolThere.isNull());
        EXPECT_EQ(AcDbObjectPointer<AcDbBlockTableRecord>(symbolThere, AcDb::kForRead)->entityIds().length(),
                  away ? 2 : 1);
        const auto& entities = readState<BlockState>(peek<AcDbBlockTableRecord>(block)).entities;
        const AcDbObjectPointer<Tag> tag(entities.back(), AcDb::kForRead);
        ASSERT_TRUE(tag) << "away: " << away;
        EXPECT_EQ(tag->text, L"kept");
        EXPECT_EQ(tag->symbol, symbolThere);
        EXPECT_EQ(tag->ownerId(), block);
        EXPECT_EQ(recordName(tag->layerId()), L"0");
        EXPECT_EQ(tag->layerId().database(), &target);
        EXPECT_EQ(textOf(id), L"kept");
    }
}
