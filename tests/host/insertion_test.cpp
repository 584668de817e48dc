// Drawings inserted as block definitions: what comes along is what stood in the source, whatever it is made
// of, and nothing changes when it cannot come.

#include <cmath>
#include <random>

#include "host/api/text_entities.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/unknown_objects.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "tests/host/database_drawing.h"
#include "tests/host/database_dump.h"

using namespace drafthost;

namespace {

std::string section(const std::string& name, const std::string& content) {
    return "0\nSECTION\n2\n" + name + "\n" + content + "0\nENDSEC\n";
}
std::string table(const std::string& name, const std::string& records) {
    return "0\nTABLE\n2\n" + name + "\n100\nAcDbSymbolTable\n70\n9\n" + records + "0\nENDTAB\n";
}
std::string record(const std::string& type, const std::string& subclass, const std::string& handle,
                   const std::string& rest) {
    return "0\n" + type + "\n" + (type == "DIMSTYLE" ? "105\n" : "5\n") + handle +
           "\n100\nAcDbSymbolTableRecord\n100\n" + subclass + "\n" + rest;
}
std::string line(const std::string& common, const std::string& layer = "0") {
    return "0\nLINE\n" + common + "100\nAcDbEntity\n8\n" + layer +
           "\n100\nAcDbLine\n10\n1\n20\n2\n11\n3\n21\n4\n";
}

// A drawing with one of everything that refers to something.
std::string richDrawing() {
    const std::string tables =
        table("LTYPE",
              record("LTYPE", "AcDbLinetypeTableRecord", "A1",
                     "2\nDASHES\n70\n0\n3\nshort\n72\n65\n73\n2\n40\n3\n49\n2\n74\n0\n49\n-1\n74\n0\n")) +
        table("LAYER",
              record("LAYER", "AcDbLayerTableRecord", "A2", "2\nDucts\n70\n0\n62\n3\n6\nDASHES\n") +
                  record("LAYER", "AcDbLayerTableRecord", "A3", "2\nSite|Walls\n70\n48\n62\n4\n6\nDASHES\n") +
                  record("LAYER", "AcDbLayerTableRecord", "A4", "2\nUnused\n70\n0\n62\n4\n6\nDASHES\n")) +
        table("STYLE", record("STYLE", "AcDbTextStyleTableRecord", "A5",
                              "2\nNotes\n70\n0\n40\n0\n41\n0.8\n50\n0\n71\n0\n42\n2\n3\ntxt\n4\n\n")) +
        table("APPID", record("APPID", "AcDbRegAppTableRecord", "A6", "2\nQUARNEL\n70\n0\n")) +
        table("DIMSTYLE",
              record("DIMSTYLE", "AcDbDimStyleTableRecord", "A7", "2\nSmall\n70\n0\n41\n0.5\n340\nA5\n"));
    const std::string blocks =
        "0\nBLOCK\n5\nB1\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nInner\n70\n2\n10\n0."
        "5\n20\n0\n30\n0\n3\nInner\n1\n\n" +
        line("5\nB2\n", "Ducts") +
        "0\nATTDEF\n5\nB3\n100\nAcDbEntity\n8\nDucts\n100\nAcDbText\n10\n0\n20\n0\n40\n1\n1\nnone\n7\nNotes\n"
        "100\nAcDbAttributeDefinition\n3\nNumber?\n2\nNUMBER\n70\n0\n"
        "0\nENDBLK\n5\nB4\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n"
        "0\nBLOCK\n5\nB5\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\nOuter\n70\n0\n10\n0\n20\n0\n30\n0\n3"
        "\nOuter\n1\n\n"
        "0\nINSERT\n5\nB6\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\nInner\n10\n7\n20\n8\n"
        "0\nENDBLK\n5\nB7\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n"
        "0\nBLOCK\n5\nB8\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\n*"
        "D1\n70\n1\n10\n0\n20\n0\n30\n0\n3\n*D1\n1\n\n" +
        line("5\nB9\n") + "0\nENDBLK\n5\nBA\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n";
    const std::string entities =
        line(
            "5\nC1\n102\n{ACAD_XDICTIONARY\n360\nD2\n102\n}\n102\n{ACAD_REACTORS\n330\nC3\n330\nD6\n102\n}\n",
            "Ducts") +
        "1001\nQUARNEL\n1003\nUnused\n1005\nC3\n1005\nE77\n1040\n2.5\n" + line("5\nC2\n", "Site|Walls") +
        "0\nINSERT\n5\nC3\n100\nAcDbEntity\n8\nDucts\n66\n1\n100\nAcDbBlockReference\n66\n1\n2\nOuter\n10\n1"
        "\n20\n1\n"
        "0\nATTRIB\n5\nC4\n100\nAcDbEntity\n8\nDucts\n100\nAcDbText\n10\n1\n20\n1\n40\n1\n1\n17\n7\nNotes\n"
        "100\nAcDbAttribute\n2\nNUMBER\n70\n0\n0\nSEQEND\n5\nC5\n100\nAcDbEntity\n8\nDucts\n"
        "0\nDIMENSION\n5\nC6\n100\nAcDbEntity\n8\n0\n100\nAcDbDimension\n2\n*"
        "D1\n10\n1\n20\n2\n30\n0\n70\n32\n3\nSmall\n"
        "100\nAcDbAlignedDimension\n13\n0\n23\n0\n33\n0\n"
        "0\nMLINE\n5\nC7\n100\nAcDbEntity\n8\n0\n100\nAcDbMline\n2\nWALL\n340\nD5\n40\n1\n"
        "0\nHATCH\n5\nC8\n100\nAcDbEntity\n8\n0\n100\nAcDbHatch\n2\nSOLID\n330\nC1\n330\nD6\n"
        "0\nTEXT\n5\nC9\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0\n20\n0\n40\n2\n1\nhello\n7\nNotes\n100\n"
        "AcDbText\n"
        "0\nLINE\n5\nCA\n100\nAcDbEntity\n67\n1\n8\nUnused\n100\nAcDbLine\n10\n1\n20\n2\n11\n3\n21\n4\n";
    const std::string objects =
        "0\nDICTIONARY\n5\nD1\n330\n0\n100\nAcDbDictionary\n281\n1\n3\nACAD_GROUP\n350\nD6\n3\nACAD_"
        "MLINESTYLE\n350\nD4\n"
        "0\nDICTIONARY\n5\nD2\n330\nC1\n100\nAcDbDictionary\n280\n1\n281\n1\n3\nNOTE\n360\nD3\n"
        "0\nXRECORD\n5\nD3\n330\nD2\n100\nAcDbXrecord\n280\n1\n1\nkept\n330\nC3\n340\nC1\n"
        "0\nDICTIONARY\n5\nD4\n330\nD1\n100\nAcDbDictionary\n281\n1\n3\nWALL\n350\nD5\n"
        "0\nMLINESTYLE\n5\nD5\n330\nD4\n100\nAcDbMlineStyle\n2\nWALL\n70\n0\n3\nwall\n"
        "0\nDICTIONARY\n5\nD6\n330\nD1\n100\nAcDbDictionary\n281\n1\n";
    return section("HEADER", "9\n$ACADVER\n1\nAC1015\n9\n$INSBASE\n10\n10\n20\n20\n30\n5\n") +
           section("TABLES", tables) + section("BLOCKS", blocks) + section("ENTITIES", entities) +
           section("OBJECTS", objects) + "0\nEOF\n";
}

struct Source : AcDbDatabase {
    explicit Source(const std::string& dxf) : AcDbDatabase(false, true) {
        const auto read = exchange::readDxfBytes(*this, dxf, L"source.dxf");
        EXPECT_EQ(read.status, Acad::eOk) << std::string(read.message.begin(), read.message.end());
    }
    Source() : AcDbDatabase(true, true) {}
};

AcDbObjectId appendTo(AcDbDatabase& database, AcDbEntity* entity, AcDbObjectId block = AcDbObjectId()) {
    AcDbObjectId id;
    AcDbObjectPointer<AcDbBlockTableRecord> owner(block.isNull() ? database.modelSpaceId() : block,
                                                  AcDb::kForWrite);
    EXPECT_EQ(owner->appendAcDbEntity(id, entity), Acad::eOk);
    entity->close();
    return id;
}

AcDbObjectId addBlockTo(AcDbDatabase& database, const wchar_t* name) {
    AcDbBlockTable* blocks = nullptr;
    EXPECT_EQ(database.getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
    auto* const block = new AcDbBlockTableRecord;
    EXPECT_EQ(block->setName(name), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(blocks->add(id, block), Acad::eOk);
    blocks->close();
    block->close();
    return id;
}

void addLayerTo(AcDbDatabase& database, const wchar_t* name, std::uint16_t color) {
    AcDbLayerTable* layers = nullptr;
    EXPECT_EQ(database.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    auto* const layer = new AcDbLayerTableRecord;
    EXPECT_EQ(layer->setName(name), Acad::eOk);
    EXPECT_EQ(layer->setColorIndex(color), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(layers->add(id, layer), Acad::eOk);
    layers->close();
    layer->close();
}

// What an entity says of itself, without its place in its drawing.
std::wstring groupsOf(const AcDbEntity& entity) {
    std::wostringstream text;
    for (const DxfGroup& group : fileGroups(entity)) {
        if (group.code == 5 || group.code == 66 || group.code == 330)
            continue;
        // A turned reference has factors that differ from 1 in the last place.
        const auto* const factor = std::get_if<double>(&group.value);
        if (group.code >= 41 && group.code <= 43 && factor && std::abs(*factor - 1) < 1e-12)
            continue;
        text << group.code << L' ';
        if (const auto* const number = std::get_if<double>(&group.value))
            text << std::round(*number * 1e6) / 1e6;
        else if (const auto* const point = std::get_if<AcGePoint3d>(&group.value))
            text << point->x << L',' << point->y << L',' << point->z;
        else if (const auto* const name = std::get_if<std::wstring>(&group.value))
            text << (name->starts_with(L'*') ? L"*" : *name);
        text << L'\n';
    }
    return text.str();
}

class Insertion : public DrawingTest {
protected:
    AcDbObjectId inserted(const wchar_t* name, AcDbDatabase& source,
                          AcDb::DuplicateRecordCloning clashes = AcDb::kDrcIgnore) {
        AcDbObjectId id;
        EXPECT_EQ(db().insert(id, name, &source, true, clashes), Acad::eOk);
        return id;
    }
    AcDbObjectId named(TableIndex table, const wchar_t* name) { return findRecord(&db(), table, name); }
    int layerColor(const wchar_t* name) {
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(named(TableIndex::Layer, name), AcDb::kForRead);
        return layer ? layer->colorIndex() : -1;
    }
    static int count(AcDbObjectId block) {
        return AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForRead)->entityIds().length();
    }
    void expectRefused(Acad::ErrorStatus wanted, const wchar_t* name, AcDbDatabase* source,
                       AcDb::DuplicateRecordCloning clashes = AcDb::kDrcIgnore) {
        const std::string before = exchange::dxfBytes(db());
        AcDbObjectId id = db().modelSpaceId();
        EXPECT_EQ(db().insert(id, name, source, true, clashes), wanted);
        EXPECT_TRUE(id.isNull());
        EXPECT_EQ(exchange::dxfBytes(db()), before) << "the drawing has changed";
    }
};

}  // namespace

TEST_F(Insertion, EverythingThatTheEntitiesNeedComesAlong) {
    Source source(richDrawing());
    const std::string sourceBefore = exchange::dxfBytes(source);
    // Handles and anonymous names of the target must not be taken for the source's.
    addBlock(L"*D1");
    for (int i = 0; i < 300; ++i)
        addLine(i);
    const std::wstring wanted = Dump::ofBlock(source.modelSpaceId());
    const AcDbObjectId block = inserted(L"Unit", source);
    std::wstring found = Dump::ofBlock(block);

    // What differs: the base point, a name that only external references may have, and what stayed behind.
    const auto replace = [](std::wstring text, const std::wstring& from, const std::wstring& to) {
        for (std::size_t at = 0; (at = text.find(from, at)) != std::wstring::npos; at += to.size())
            text.replace(at, from.size(), to);
        return text;
    };
    std::wstring expected = replace(wanted, L"(root) from 0,0,0", L"(root) from 10,20,5");
    expected = replace(expected, L"Site|Walls", L"Site$0$Walls");
    // The group that holds the first line is not inserted, nor what it points at.
    EXPECT_NE(expected.find(L"330 #"), std::wstring::npos);
    const auto lines = [](const std::wstring& text, const wchar_t* start) {
        std::vector<std::wstring> all;
        std::wistringstream stream(text);
        for (std::wstring each; std::getline(stream, each);) {
            if (each.starts_with(start))
                all.push_back(each);
        }
        return all;
    };
    for (const wchar_t* const code : {L"0 ", L"2 ", L"1 ", L"3 ", L"6 ", L"7 ", L"8 ", L"10 ", L"340 ",
                                      L"360 ", L"1001 ", L"1003 ", L"1040 ", L"BLOCK"}) {
        const bool labels = std::wstring_view(code) == L"340 " || std::wstring_view(code) == L"360 ";
        if (!labels) {
            EXPECT_EQ(lines(found, code), lines(expected, code));
        }
        EXPECT_EQ(lines(found, code).size(), lines(expected, code).size());
    }
    // The line's handles in extended data: the insert came along, E77 never existed.
    const AcArray<AcDbObjectId> ids =
        AcDbObjectPointer<AcDbBlockTableRecord>(block, AcDb::kForRead)->entityIds();
    ASSERT_EQ(ids.length(), 7);
    const ObjectState& first = *ObjectImp::of(ids[0].stub()->object).state;
    ASSERT_EQ(first.xdata.size(), 5u);
    EXPECT_EQ(std::get<ObjectReference>(first.xdata[2].value).handle, ids[2].handle());
    EXPECT_TRUE(std::get<ObjectReference>(first.xdata[3].value).handle.isNull());
    // Reactors: the insert, not the group. The dictionary is the line's own, and its record points at copies.
    EXPECT_EQ(first.reactors, std::vector<AcDbObjectId>{ids[2]});
    const auto* const dictionary = peek<AcDbDictionary>(first.extensionDictionary);
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->ownerId(), ids[0]);
    AcDbObjectId note;
    ASSERT_EQ(dictionary->getAt(L"NOTE", note), Acad::eOk);
    const std::vector<DxfGroup> groups = fileGroups(*note.stub()->object);
    EXPECT_EQ(std::get<ObjectReference>(groups.end()[-2].value).id, ids[2]);
    EXPECT_EQ(std::get<ObjectReference>(groups.end()[-1].value).id, ids[0]);
    // The hatch keeps the boundary that came along.
    const std::vector<DxfGroup> hatch = fileGroups(*ids[5].stub()->object);
    EXPECT_EQ(std::get<ObjectReference>(hatch.end()[-2].value).id, ids[0]);
    EXPECT_EQ(std::get<ObjectReference>(hatch.end()[-1].value), ObjectReference());

    // Records; the layer that only a name in extended data and paper space use stays away.
    EXPECT_EQ(layerColor(L"Ducts"), 3);
    EXPECT_EQ(layerColor(L"Site$0$Walls"), 4);
    EXPECT_EQ(layerColor(L"Unused"), -1);
    for (const auto& [index, name] :
         std::initializer_list<std::pair<TableIndex, const wchar_t*>>{{TableIndex::Linetype, L"DASHES"},
                                                                      {TableIndex::TextStyle, L"NOTES"},
                                                                      {TableIndex::RegApp, L"QUARNEL"},
                                                                      {TableIndex::DimStyle, L"SMALL"},
                                                                      {TableIndex::Block, L"INNER"},
                                                                      {TableIndex::Block, L"OUTER"},
                                                                      {TableIndex::Block, L"*D2"}}) {
        EXPECT_FALSE(named(index, name).isNull()) << std::string(name, name + wcslen(name));
    }
    const auto* const style = peek<AcDbPlainTableRecord>(named(TableIndex::DimStyle, L"SMALL"));
    EXPECT_EQ(std::get<ObjectReference>(readState<PlainRecordState>(style).groups.back().value).id,
              named(TableIndex::TextStyle, L"NOTES"));
    // The marks of the nested block are its own.
    const auto* const inner = peek<AcDbBlockTableRecord>(named(TableIndex::Block, L"INNER"));
    EXPECT_EQ(readState<BlockState>(inner).begin.stub()->object->ownerId(), inner->objectId());

    // The source is as it was, and the file written from the target reads back without a finding.
    EXPECT_EQ(exchange::dxfBytes(source), sourceBefore);
    AcDbDatabase again(false, true);
    const auto read = exchange::readDxfBytes(again, exchange::dxfBytes(db()), L"target.dxf");
    ASSERT_EQ(read.status, Acad::eOk);
    EXPECT_TRUE(read.audit.findings().empty());
    EXPECT_EQ(Dump::ofBlock(findRecord(&again, TableIndex::Block, L"Unit")), found);
}

// A second insertion finds all records there, and shares them.
TEST_F(Insertion, RecordsAreSharedBetweenInsertions) {
    Source source(richDrawing());
    const AcDbObjectId first = inserted(L"First", source);
    const AcDbObjectId second = inserted(L"Second", source);
    EXPECT_NE(first, second);
    EXPECT_EQ(Dump::ofBlock(first), Dump::ofBlock(second));
    int blocks = 0, dictionaries = 0;
    for (const AcDbObjectId id : peek<AcDbBlockTable>(db().blockTableId())->recordIds())
        blocks += recordName(id) == L"Inner";
    for (const AcDbStub* const stub : db().impl().stubs)
        dictionaries += stub->object && std::wstring_view(dxfNameOf(*stub->object)) == L"MLINESTYLE";
    EXPECT_EQ(blocks, 1);
    EXPECT_EQ(dictionaries, 2) << "Standard and WALL";
}

TEST_F(Insertion, ClashesAreResolvedAsAsked) {
    const auto prepare = [](AcDbDatabase& database, std::uint16_t color, double length) {
        addLayerTo(database, L"Pipes", color);
        const AcDbObjectId valve = addBlockTo(database, L"Valve");
        auto* const stem = new AcDbLine({0, 0, 0}, {length, 0, 0});
        stem->setLayer(findRecord(&database, TableIndex::Layer, L"Pipes"));
        appendTo(database, stem, valve);
        return valve;
    };
    const AcDbObjectId own = prepare(db(), 1, 5);
    append(new AcDbBlockReference({0, 0, 0}, own));
    Source source;
    appendTo(source, new AcDbBlockReference({1, 1, 0}, prepare(source, 2, 9)));
    const auto length = [&](AcDbObjectId block) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
        const AcDbObjectPointer<AcDbLine> stem(record->entityIds()[0], AcDb::kForRead);
        return stem->endPoint().x;
    };
    const AcDbObjectId layer = named(TableIndex::Layer, L"Pipes");

    inserted(L"Kept", source);
    EXPECT_EQ(length(own), 5);
    EXPECT_EQ(layerColor(L"PIPES"), 1);

    inserted(L"Replaced", source, AcDb::kDrcReplace);
    EXPECT_EQ(named(TableIndex::Block, L"Valve"), own);
    EXPECT_EQ(named(TableIndex::Layer, L"Pipes"), layer);
    EXPECT_EQ(length(own), 9);
    EXPECT_EQ(count(own), 1);
    EXPECT_EQ(layerColor(L"pipes"), 2);
    // Standard records are nobody's to replace.
    EXPECT_EQ(recordName(db().byLayerLinetype()), L"ByLayer");
    AcDbDatabase again(false, true);
    EXPECT_TRUE(
        exchange::readDxfBytes(again, exchange::dxfBytes(db()), L"target.dxf").audit.findings().empty());
}

TEST_F(Insertion, RedefinitionReachesTheReferencesAndCanBeTakenBack) {
    Source small, large;
    appendTo(small, new AcDbLine({0, 0, 0}, {1, 1, 0}));
    appendTo(large, new AcDbLine({0, 0, 0}, {8, 8, 0}));
    appendTo(large, new AcDbCircle({0, 0, 0}, {0, 0, 1}, 3));
    const AcDbObjectId block = inserted(L"Grille", small);
    const AcDbObjectId shown = append(new AcDbBlockReference({100, 0, 0}, block));
    const auto right = [&] {
        AcDbExtents extents;
        AcDbObjectPointer<AcDbEntity>(shown, AcDb::kForRead)->getGeomExtents(extents);
        return extents.maxPoint().x;
    };
    EXPECT_EQ(right(), 101);
    const std::string before = exchange::dxfBytes(db());
    db().transactionManager()->startTransaction();
    EXPECT_EQ(inserted(L"GRILLE", large), block);
    EXPECT_EQ(right(), 108);
    EXPECT_EQ(count(block), 2);
    db().transactionManager()->abortTransaction();
    EXPECT_EQ(right(), 101);
    EXPECT_EQ(exchange::dxfBytes(db()).size(), before.size());
    EXPECT_EQ(inserted(L"grille", large), block);
    EXPECT_EQ(right(), 108);
}

TEST_F(Insertion, WhatCannotBeInsertedChangesNothing) {
    Source source(richDrawing());
    for (const wchar_t* const name : {L"", L"a|b", L"*Model_Space", L"*U", L"x*", L" x"})
        expectRefused(Acad::eInvalidKey, name, &source);
    expectRefused(Acad::eNullObjectPointer, L"Unit", nullptr);
    expectRefused(Acad::eInvalidInput, L"Unit", &db());
    AcDbDatabase empty(false, true);
    expectRefused(Acad::eInvalidInput, L"Unit", &empty);
    // The source shows a block of the new one's name, at once or deep inside.
    expectRefused(Acad::eSelfReference, L"OUTER", &source);
    expectRefused(Acad::eSelfReference, L"inner", &source, AcDb::kDrcReplace);
    // The target's own "Inner" shows the block that is about to show it.
    const AcDbObjectId assembly = addBlock(L"Assembly");
    const AcDbObjectId inner = addBlock(L"Inner");
    append(new AcDbBlockReference({0, 0, 0}, assembly), inner);
    expectRefused(Acad::eSelfReference, L"Assembly", &source);
    inserted(L"Assembly", source, AcDb::kDrcReplace);
    // Somebody works on the definition, or on a record that would be replaced.
    {
        const AcDbObjectPointer<AcDbBlockTableRecord> reading(assembly, AcDb::kForRead);
        expectRefused(Acad::eWasOpenForRead, L"Assembly", &source);
        const AcDbObjectPointer<AcDbBlockTableRecord> writing(inner, AcDb::kForWrite);
        expectRefused(Acad::eWasOpenForWrite, L"Unit", &source, AcDb::kDrcReplace);
    }
    AcDbObjectId id;
    {
        AcDbDatabase unlocked(true, false);
        const auto before = std::exchange(
            writeAllowed, +[](const AcDbDatabase*) { return false; });
        EXPECT_EQ(unlocked.insert(id, L"Unit", &source), Acad::eLockViolation);
        writeAllowed = before;
    }
}

// Random trees of blocks: the copy reads as the source, and exploding a reference to it gives its entities.
TEST_F(Insertion, ExplodedReferenceIsTheSource) {
    std::mt19937 random(4711);
    const auto number = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int round = 0; round < 40; ++round) {
        Source source;
        for (int i = 0; i < 3; ++i)
            addLayerTo(source, (L"L" + std::to_wstring(i)).c_str(), static_cast<std::uint16_t>(i + 1));
        std::vector<AcDbObjectId> blocks;
        const auto fill = [&](AcDbObjectId owner) {
            for (int i = 0, many = number(5); i <= many; ++i) {
                const AcGePoint3d at(number(100), number(100), number(5));
                AcDbEntity* entity = nullptr;
                switch (number(blocks.empty() ? 4 : 6)) {
                    case 0: entity = new AcDbLine(at, {1, 2, 3}); break;
                    case 1: entity = new AcDbCircle(at, {0, 0, 1}, 1 + number(9)); break;
                    case 2: entity = new AcDbArc(at, 1 + number(9), 0.5, 2.5); break;
                    case 3: entity = new AcDbText(at, L"text", source.textstyle(), 2, 0.5); break;
                    default: {
                        auto* const reference = new AcDbBlockReference(
                            at, blocks[static_cast<std::size_t>(number(static_cast<int>(blocks.size())))]);
                        reference->setRotation(number(7));
                        entity = reference;
                    }
                }
                entity->setLayer(findRecord(&source, TableIndex::Layer, L"L" + std::to_wstring(number(3))));
                const AcDbObjectId id = appendTo(source, entity, owner);
                if (AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForWrite);
                    reference && number(2)) {
                    AcDbObjectId attribute;
                    auto* const text = new AcDbAttribute;
                    ASSERT_EQ(reference->appendAttribute(attribute, text), Acad::eOk);
                    text->setTag(L"TAG");
                    text->close();
                }
            }
        };
        for (int i = 0, many = number(6); i < many; ++i) {
            const std::wstring name = (number(3) ? L"B" : L"*U") + std::to_wstring(i);
            const AcDbObjectId block = addBlockTo(source, name.c_str());
            fill(block);
            blocks.push_back(block);
        }
        fill(source.modelSpaceId());

        AcDbDatabase target(true, true);
        AcDbObjectId block;
        ASSERT_EQ(target.insert(block, L"All", &source), Acad::eOk);
        EXPECT_EQ(Dump::ofBlock(block), Dump::ofBlock(source.modelSpaceId())) << "round " << round;
        const AcDbObjectId shown = appendTo(target, new AcDbBlockReference({0, 0, 0}, block));
        AcDbEntityArray parts;
        ASSERT_EQ(AcDbObjectPointer<AcDbEntity>(shown, AcDb::kForRead)->explode(parts), Acad::eOk);
        const AcArray<AcDbObjectId> wanted =
            AcDbObjectPointer<AcDbBlockTableRecord>(source.modelSpaceId(), AcDb::kForRead)->entityIds();
        ASSERT_EQ(parts.length(), wanted.length());
        for (int i = 0; i < parts.length(); ++i) {
            const std::unique_ptr<AcDbEntity> part(parts[i]);
            const AcDbObjectPointer<AcDbEntity> original(wanted[i], AcDb::kForRead);
            EXPECT_EQ(groupsOf(*part), groupsOf(*original));
        }
    }
}
