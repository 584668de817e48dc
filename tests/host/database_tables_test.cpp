// Symbol tables, blocks and their references, dictionaries.

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;

namespace {

using Tables = DrawingTest;

TEST_F(Tables, NamesAreCheckedAndComparedWithoutCase) {
    addLayer(L"Wände");
    AcDbObjectPointer<AcDbLayerTable> layers(db().layerTableId(), AcDb::kForWrite);
    EXPECT_TRUE(layers->has(L"WÄNDE"));
    AcDbLayerTableRecord record;
    AcDbObjectId id;
    for (const wchar_t* name : {L"", L"a/b", L"a|b", L"*x", L" a", L"a\n", L"a`"}) {
        const Acad::ErrorStatus set = record.setName(name);
        EXPECT_EQ(set == Acad::eOk ? layers->add(id, &record) : set, Acad::eInvalidKey) << name;
    }
    ASSERT_EQ(record.setName(L"wÄnde"), Acad::eOk);
    EXPECT_EQ(layers->add(id, &record), Acad::eDuplicateKey);
    AcDbTextStyleTableRecord style;
    style.setName(L"fine");
    EXPECT_EQ(layers->add(id, &style), Acad::eWrongObjectType);
}

TEST_F(Tables, RenamedRecordIsFoundUnderItsNewNameOnly) {
    const AcDbObjectId id = addLayer(L"OLD");
    addLayer(L"OTHER");
    {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
        EXPECT_EQ(layer->setName(L"other"), Acad::eDuplicateKey);
        EXPECT_EQ(layer->setName(L"old"), Acad::eOk);  // only its case
        EXPECT_EQ(layer->setName(L"NEW"), Acad::eOk);
    }
    AcDbObjectPointer<AcDbLayerTable> layers(db().layerTableId(), AcDb::kForRead);
    EXPECT_FALSE(layers->has(L"OLD"));
    AcDbObjectId found;
    EXPECT_EQ(layers->getAt(L"new", found), Acad::eOk);
    EXPECT_EQ(found, id);
    EXPECT_EQ(AcDbObjectPointer<AcDbLayerTableRecord>(db().layerZero(), AcDb::kForWrite)->setName(L"X"),
              Acad::eInvalidKey);
}

TEST_F(Tables, FontOfAStyleLivesInExtendedData) {
    const AcDbObjectId id = addRecord<AcDbTextStyleTable, AcDbTextStyleTableRecord>(L"Title");
    AcDbObjectPointer<AcDbTextStyleTableRecord> style(id, AcDb::kForWrite);
    ASSERT_EQ(style->setFont(L"Liberation Serif", true, false), Acad::eOk);
    EXPECT_STREQ(style->typeface(), L"Liberation Serif");
    EXPECT_TRUE(style->isBold());
    EXPECT_FALSE(style->isItalic());
    const List data(style->xData(L"ACAD"));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->rbnext->rbnext->resval.rlong, 0x2000000);
    const List other(acutBuildList(1001, L"ACAD", RTNONE));
    style->setXData(other.get());
    EXPECT_STREQ(style->typeface(), L"");
}

TEST(NamePatterns, MatchAsFiltersDo) {
    EXPECT_TRUE(matchesPattern(L"WALL-12", L"wall*"));
    EXPECT_TRUE(matchesPattern(L"WALL-12", L"door,*-##"));
    EXPECT_TRUE(matchesPattern(L"B7", L"[ABC]#"));
    EXPECT_FALSE(matchesPattern(L"D7", L"[A-C]#"));
    EXPECT_TRUE(matchesPattern(L"D7", L"[~A-C]#"));
    EXPECT_TRUE(matchesPattern(L"DOOR", L"~wall*"));
    EXPECT_TRUE(matchesPattern(L"A*B", L"A`*B"));
    EXPECT_FALSE(matchesPattern(L"AXB", L"A`*B"));
    EXPECT_TRUE(matchesPattern(L"", L"*"));
    EXPECT_FALSE(matchesPattern(L"A", L""));
    EXPECT_FALSE(matchesPattern(std::wstring(5000, L'a'), std::wstring(L"*a*a*a*a*a*a*b")));
}

class Blocks : public DrawingTest {
protected:
    AcDbObjectId insert(AcDbObjectId block, AcDbObjectId owner = AcDbObjectId()) {
        return append(new AcDbBlockReference({10, 20, 0}, block), owner);
    }
    static AcDbExtents extentsOf(AcDbObjectId id) {
        AcDbExtents extents;
        AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->getGeomExtents(extents);
        return extents;
    }
};

TEST_F(Blocks, CannotContainThemselves) {
    const AcDbObjectId outer = addBlock(L"OUTER"), inner = addBlock(L"INNER");
    insert(inner, outer);
    AcDbObjectPointer<AcDbBlockTableRecord> record(inner, AcDb::kForWrite);
    AcDbBlockReference toOuter({}, outer), toSelf({}, inner), toSpace({}, db().modelSpaceId());
    EXPECT_EQ(record->appendAcDbEntity(&toOuter), Acad::eSelfReference);
    EXPECT_EQ(record->appendAcDbEntity(&toSelf), Acad::eSelfReference);
    EXPECT_EQ(record->appendAcDbEntity(&toSpace), Acad::eSelfReference);
    EXPECT_TRUE(toOuter.objectId().isNull());
    record.close();
    const AcDbObjectId leaf = addBlock(L"LEAF");
    const AcDbObjectId reference = insert(leaf, inner);
    AcDbObjectPointer<AcDbBlockReference> open(reference, AcDb::kForWrite);
    EXPECT_EQ(open->setBlockTableRecord(outer), Acad::eSelfReference);
    EXPECT_EQ(open->blockTableRecord(), leaf);
}

TEST_F(Blocks, CircleInADamagedDrawingEndsMeasuring) {
    const AcDbObjectId block = addBlock(L"LOOP");
    append(new AcDbLine({0, 0, 0}, {1, 1, 0}), block);
    db().impl().loading = true;
    insert(block, block);
    db().impl().loading = false;
    const AcDbExtents extents = extentsOf(insert(block));
    EXPECT_TRUE(extents.isValid());
    EXPECT_NEAR(extents.maxPoint().x, 11, 1e-9);
}

TEST_F(Blocks, ReferencedDefinitionCannotBeErased) {
    const AcDbObjectId block = addBlock(L"DOOR");
    const AcDbObjectId inside = append(new AcDbLine, block);
    const AcDbObjectId reference = insert(block);
    const auto erase = [&](AcDbObjectId id, bool erasing) {
        return AcDbObjectPointer<AcDbObject>(id, AcDb::kForWrite, true)->erase(erasing);
    };
    EXPECT_EQ(erase(block, true), Acad::eCannotBeErased);
    ASSERT_EQ(erase(reference, true), Acad::eOk);
    ASSERT_EQ(erase(block, true), Acad::eOk);
    EXPECT_TRUE(inside.isErased());
    EXPECT_NE(erase(reference, false), Acad::eOk);
    ASSERT_EQ(erase(block, false), Acad::eOk);
    EXPECT_FALSE(inside.isErased());
    EXPECT_EQ(erase(reference, false), Acad::eOk);
}

TEST_F(Blocks, AttributesGoWithTheirReference) {
    const AcDbObjectId reference = insert(addBlock(L"TAGGED"));
    AcDbObjectPointer<AcDbBlockReference> open(reference, AcDb::kForWrite);
    auto* const attribute = new AcDbAttribute;
    attribute->setTag(L"NO");
    attribute->setPosition({10, 20, 0});
    AcDbObjectId id;
    ASSERT_EQ(open->appendAttribute(id, attribute), Acad::eOk);
    attribute->close();
    EXPECT_EQ(open->attributeIds().length(), 1);
    const AcDbObjectId layer = addLayer(L"TAGS");
    ASSERT_EQ(open->setLayer(layer, true, false), Acad::eOk);
    EXPECT_EQ(layerOf(id), L"TAGS");
    ASSERT_EQ(open->transformBy(AcGeMatrix3d::translation({5, 0, 0})), Acad::eOk);
    EXPECT_NEAR(AcDbObjectPointer<AcDbAttribute>(id, AcDb::kForRead)->position().x, 15, 1e-9);
    open->erase();
    EXPECT_TRUE(id.isErased());
    open->erase(false);
    EXPECT_FALSE(id.isErased());
}

TEST_F(Blocks, TransformsKeepTheShapeOfWhatTheyShow) {
    const AcDbObjectId block = addBlock(L"L");
    append(new AcDbLine({1, 2, 0}, {3, 5, 0}), block);
    AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForWrite)->setOrigin({1, 1, 0});
    AcDbObjectPointer<AcDbBlockReference> reference(insert(block), AcDb::kForWrite);
    reference->setScaleFactors({2, 2, 2});
    reference->setRotation(0.3);
    const AcGeMatrix3d steps[] = {
        AcGeMatrix3d::rotation(0.7, {0, 0, 1}, {3, 4, 0}),
        AcGeMatrix3d::mirroring({1, 0, 0}, {1, 2, 0}),
        AcGeMatrix3d::rotation(1.1, {1, 0, 0}),
        AcGeMatrix3d::scaling(1.5, {1, 1, 1}),
    };
    for (const AcGeMatrix3d& step : steps) {
        const AcGeMatrix3d expected = step * reference->blockTransform();
        ASSERT_EQ(reference->transformBy(step), Acad::eOk);
        AcGeTol loose;
        loose.equalPoint = loose.equalVector = 1e-9;
        EXPECT_TRUE(reference->blockTransform().isEqualTo(expected, loose));
    }
    AcGeMatrix3d skewed;
    skewed.entry[0][1] = 0.5;
    EXPECT_EQ(reference->transformBy(skewed), Acad::eNonUniformScale);
}

TEST_F(Blocks, ExplodedPartsLieWhereTheReferenceShowedThem) {
    const AcDbObjectId block = addBlock(L"PART");
    append(new AcDbLine({0, 0, 0}, {1, 0, 0}), block);
    AcDbObjectPointer<AcDbLine>(append(new AcDbLine({0, 0, 0}, {0, 1, 0}), block), AcDb::kForWrite)
        ->setColorIndex(0);
    AcDbObjectPointer<AcDbBlockReference> reference(insert(block), AcDb::kForWrite);
    reference->setColorIndex(3);
    reference->setScaleFactors({2, 1, 1});
    AcDbEntityArray parts;
    ASSERT_EQ(reference->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 2);
    EXPECT_NEAR(AcDbLine::cast(parts[0])->endPoint().x, 12, 1e-12);
    EXPECT_EQ(parts[0]->colorIndex(), 256);
    EXPECT_EQ(parts[1]->colorIndex(), 3);
    for (AcDbEntity* part : parts)
        delete part;
}

using Dictionaries = DrawingTest;

TEST_F(Dictionaries, KeepReplaceAndRemoveEntries) {
    AcDbDictionary* root = nullptr;
    ASSERT_EQ(db().getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
    const int before = root->numEntries();
    const auto put = [&](const wchar_t* name) {
        auto* const entry = new AcDbDictionary;
        AcDbObjectId id;
        EXPECT_EQ(root->setAt(name, entry, id), Acad::eOk);
        entry->close();
        return id;
    };
    const AcDbObjectId first = put(L"MINE");
    const AcDbObjectId second = put(L"mine");
    EXPECT_TRUE(first.isErased());
    EXPECT_EQ(root->numEntries(), before + 1);
    AcDbObjectId found;
    EXPECT_EQ(root->getAt(L"Mine", found), Acad::eOk);
    EXPECT_EQ(found, second);
    EXPECT_EQ(root->remove(L"MINE"), Acad::eOk);
    EXPECT_TRUE(second.isErased());
    EXPECT_EQ(root->getAt(L"MINE", found), Acad::eKeyNotFound);
    const ACHAR* name = nullptr;
    EXPECT_EQ(root->entryAt(before, name, found), Acad::eInvalidIndex);
    root->close();
}

}  // namespace
