// What the record classes of the standards database ask the server, call by call.

#include "module/standards/layer_key_record.h"
#include "module/standards/layer_record.h"
#include "module/standards/layer_system_record.h"

#include "tests/module/database_session.h"

#include <comdef.h>

namespace tessary::testing {

namespace {

// tblLayer with operations that its own class does not offer.
constexpr StandardsField linkedFields[] = {
    {L"ixLayer", FieldType::number},
    {L"dSize", FieldType::real},
    {L"bPlot", FieldType::yesNo},
    {L"ixMasterDatabase", FieldType::number, true},
    {L"iMasterDatabaseIndex", FieldType::number, true},
};
constexpr StandardsTable linkedTable = {L"tblLayer", L"ixLayer", linkedFields};

class LinkedRecord : public StandardsRecord {
public:
    LinkedRecord(bool skipMasterLink, ConnectionPointer connection)
        : StandardsRecord(linkedTable, skipMasterLink, std::move(connection)) {}
    using StandardsRecord::addNew;
    void setAll() {
        set(4, 3);
        set(3, 9);
        set(2, true);
        set(1, 0.5);
    }
    void setMasterNull() { setNull(3); }
    double size() const { return value<double>(1); }
    bool plots() const { return value<bool>(2); }
    bool linkIsNull() const { return isNull(3); }
};

class StandardsRecords : public DatabaseTest {
protected:
    static Variant text(const wchar_t* value) { return variantFromString(value); }
    static Variant number(int value) { return variantFromLong(value); }
    static Variant row(std::vector<Variant> pairs) { return arrayOf(std::move(pairs)); }
    static Variant layerRow(int key, const wchar_t* name) {
        return row({text(L"ixLayer"), number(key), text(L"sName"), text(name)});
    }
    // Since the last time.
    Lines newCalls() {
        Lines calls = server.calls();
        calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(seen_));
        seen_ += calls.size();
        return calls;
    }
    void answerFlags(const char* method, std::initializer_list<VARIANT_BOOL> flags) {
        for (const VARIANT_BOOL flag : flags) {
            server.answerFlag(method, flag);
        }
    }

    ConnectionPointer connection = createConnection();
    CTblLayer layer{true, connection};

private:
    std::size_t seen_ = 0;
};

TEST_F(StandardsRecords, newRecordIsEmpty) {
    EXPECT_EQ(0, layer.ixLayer());
    EXPECT_EQ(L"", layer.sName());
    EXPECT_FALSE(layer.bPlot());
    EXPECT_FALSE(layer.iColor() || layer.sLineweight() || layer.sPlotstyle());
    const CTblLayerSystem system(true, connection);
    EXPECT_EQ(0, system.dHatchOverhang());
    EXPECT_EQ(L"", system.hatch(HatchedDuct::outside).pattern);
    EXPECT_TRUE(newCalls().empty());
}

TEST_F(StandardsRecords, seeksByKeyAndByName) {
    server.answerValue("Seek", layerRow(7, L"M-DUCT"));
    EXPECT_TRUE(layer.seekByIx(7));
    EXPECT_EQ(L"M-DUCT", layer.sName());
    answerFlags("Seek", {VARIANT_FALSE});
    EXPECT_FALSE(layer.seekByName(L"O'Hare 100% \"x\""));
    EXPECT_EQ(7, layer.ixLayer());
    CTblLayerKey key(true, connection);
    CTblLayerSystem system(true, connection);
    EXPECT_TRUE(key.seekByIx(-1));
    EXPECT_TRUE(system.seekByIx(2));
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ixLayer", "1.Seek 7", "1.SelectTable tblLayer sName",
                     "1.Seek 'O'Hare 100% \"x\"'", "1.SelectTable tblLayerKey ixLayerKey", "1.Seek -1",
                     "1.SelectTable tblLayerSystem ixLayerSystem", "1.Seek 2"}),
              newCalls());
}

TEST_F(StandardsRecords, walksInTheOrderOfTheIndexThatWasSet) {
    server.answerValue("MoveFirst", layerRow(1, L"a"));
    server.answerValue("Skip", layerRow(2, L"b"));
    server.answerValue("MoveLast", layerRow(3, L"c"));
    std::wstring names;
    layer.setIndex(L"sName");
    layer.moveFirst();
    names += layer.sName();
    layer.moveNext();
    names += layer.sName();
    layer.moveLast();
    names += layer.sName();
    answerFlags("Skip", {VARIANT_FALSE});
    layer.moveNext();
    EXPECT_EQ(L"abc", names);
    EXPECT_EQ(3, layer.ixLayer());
    EXPECT_EQ((Lines{"1.SelectTable tblLayer sName", "1.SelectTable tblLayer ", "1.MoveFirst",
                     "1.SelectTable tblLayer ", "1.Skip 1", "1.SelectTable tblLayer ", "1.MoveLast",
                     "1.SelectTable tblLayer ", "1.Skip 1"}),
              newCalls());
}

TEST_F(StandardsRecords, onlyMinusOneIsAnEnd) {
    answerFlags("IsAtEnd", {VARIANT_TRUE, VARIANT_FALSE, 1});
    answerFlags("IsAtBeginning", {VARIANT_TRUE, VARIANT_FALSE});
    EXPECT_TRUE(layer.isEOF());
    EXPECT_FALSE(layer.isEOF());
    EXPECT_FALSE(layer.isEOF());
    EXPECT_TRUE(layer.isBOF());
    EXPECT_FALSE(layer.isBOF());
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ", "1.IsAtEnd"}), (Lines{server.calls()[0], server.calls()[1]}));
    CTblLayerSystem system(true, connection);
    newCalls();
    EXPECT_TRUE(system.isEOF());
    EXPECT_EQ((Lines{"1.SelectTable tblLayerSystem ", "1.IsAtEnd"}), newCalls());
}

TEST_F(StandardsRecords, fieldsAreLoadedByNameAndType) {
    layer.loadRecord(row({text(L"sName"),
                          text(L"  O'Hare \t\n"),
                          text(L"bRGBColor"),
                          number(5),
                          text(L"iColor"),
                          Variant::null(),
                          text(L"bPlot"),
                          Variant::fromShort(-1),
                          text(L"sLinetype"),
                          Variant::null(),
                          text(L"sLineweight"),
                          text(L"25 "),
                          text(L"sPlotstyle"),
                          Variant(),
                          text(L"sNoField"),
                          number(8),
                          number(4),
                          number(9),
                          text(L"ixLayer"),
                          number(-2147483647)})
                         .get());
    EXPECT_EQ(L"  O'Hare", layer.sName());
    EXPECT_FALSE(layer.iColor());
    EXPECT_TRUE(layer.bPlot());
    EXPECT_EQ(L"", layer.sLinetype());
    EXPECT_EQ(L"25", layer.sLineweight());
    EXPECT_FALSE(layer.sPlotstyle());
    EXPECT_EQ(-2147483647, layer.ixLayer());

    // Yes is -1 and nothing else; names that are not in the row keep their values.
    layer.loadRecord(row({text(L"bPlot"), Variant::fromShort(1), text(L"iColor"), number(0),
                          text(L"sPlotstyle"), text(L""), text(L"sLinetype"), number(3)})
                         .get());
    EXPECT_FALSE(layer.bPlot());
    EXPECT_EQ(0, layer.iColor());
    EXPECT_EQ(L"", layer.sPlotstyle());
    EXPECT_EQ(L"", layer.sLinetype());
    EXPECT_EQ(L"  O'Hare", layer.sName());
    layer.loadRecord(row({text(L"bPlot"), Variant::fromBool(true)}).get());
    EXPECT_TRUE(layer.bPlot());
    layer.loadRecord(Variant::fromReal(1.5).get());
    EXPECT_TRUE(layer.bPlot());
}

TEST_F(StandardsRecords, valueThatIsMissingAtTheEndIsAnError) {
    EXPECT_THROW(layer.loadRecord(row({text(L"ixLayer"), number(4), text(L"sName")}).get()), _com_error);
    EXPECT_EQ(4, layer.ixLayer());
}

TEST_F(StandardsRecords, fieldsAreWrittenInTheTablesOrder) {
    server.answerValue("Append", layerRow(12, L"stored"));
    layer.addNew();
    layer.setPlotstyle(std::nullopt);
    layer.setLineweight(L"25");
    layer.setPlot(true);
    layer.setLinetype(L"");
    layer.setColor(300);
    layer.setName(L"O'Hare ");
    EXPECT_TRUE(layer.update());
    EXPECT_EQ(12, layer.ixLayer());
    EXPECT_EQ(L"stored", layer.sName());
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ixLayer",
                     "1.Append [ 'sName' 'O'Hare ' 'iColor' 300 'sLinetype' '' 'bPlot' short:-1 "
                     "'sLineweight' '25' 'sPlotstyle' null ] 0"}),
              newCalls());
    // Back to browsing, with nothing changed.
    layer.setName(L"x");
    layer.update();
    EXPECT_TRUE(newCalls().empty());
}

TEST_F(StandardsRecords, changedFieldsAloneAreWritten) {
    server.answerValue("Seek", layerRow(7, L"old"));
    server.answerValue("Seek", layerRow(7, L"old"));
    layer.seekByIx(7);
    newCalls();
    // Set before the editing begins: not part of it.
    layer.setPlot(false);
    layer.edit();
    layer.setColor(5);
    EXPECT_TRUE(layer.update());
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ixLayer", "1.Seek 7", "1.Replace [ 'iColor' 5 ]"}), newCalls());

    server.answerValue("Seek", row({text(L"ixLayerKey"), number(3)}));
    CTblLayerKey key(true, connection);
    key.seekByIx(3);
    newCalls();
    key.edit();
    key.setLayer(7);
    key.update();
    EXPECT_EQ((Lines{"1.SelectTable tblLayerKey ixLayerKey", "1.Seek 3", "1.Replace [ 'ixLayer' 7 ]"}),
              newCalls());
}

TEST_F(StandardsRecords, updateWithoutChangesKeepsTheMode) {
    layer.addNew();
    layer.update();
    EXPECT_TRUE(newCalls().empty());
    layer.setName(L"x");
    layer.update();
    EXPECT_EQ("1.Append [ 'sName' 'x' ] 0", server.calls().back());
    // The last of the two modes holds.
    layer.edit();
    layer.addNew();
    layer.setName(L"y");
    layer.update();
    EXPECT_EQ("1.Append [ 'sName' 'y' ] 0", server.calls().back());
}

TEST_F(StandardsRecords, declinedChangeIsLostWithoutASign) {
    answerFlags("Append", {VARIANT_FALSE});
    layer.addNew();
    layer.setName(L"refused");
    EXPECT_FALSE(layer.update());
    EXPECT_EQ(L"refused", layer.sName());
    EXPECT_EQ(0, layer.ixLayer());

    server.answerValue("Seek", layerRow(7, L"old"));
    server.answerValue("Seek", layerRow(7, L"stored"));
    layer.seekByIx(7);
    answerFlags("Replace", {VARIANT_FALSE});
    layer.edit();
    layer.setName(L"refused again");
    EXPECT_FALSE(layer.update());
    EXPECT_EQ(L"refused again", layer.sName());
    newCalls();
    layer.setName(L"not even tried");
    layer.update();
    EXPECT_TRUE(newCalls().empty());
}

TEST_F(StandardsRecords, rowThatIsGoneIsNotReplaced) {
    server.answerValue("Seek", layerRow(7, L"old"));
    layer.seekByIx(7);
    layer.edit();
    layer.setName(L"x");
    answerFlags("Seek", {VARIANT_FALSE});
    newCalls();
    layer.update();
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ixLayer", "1.Seek 7"}), newCalls());
    EXPECT_EQ(L"x", layer.sName());
}

TEST_F(StandardsRecords, tableThatCannotBeOpenedIsLeftAlone) {
    answerFlags("SelectTable", {0, 0, 0, 0, 0, 0});
    EXPECT_FALSE(layer.seekByIx(7));
    EXPECT_TRUE(layer.isEOF() && layer.isBOF());
    layer.moveFirst();
    layer.addNew();
    layer.setName(L"x");
    layer.update();
    layer.remove();
    const Lines calls = newCalls();
    EXPECT_TRUE(std::all_of(calls.begin(), calls.end(),
                            [](const std::string& call) { return call.starts_with("1.SelectTable"); }));
}

TEST_F(StandardsRecords, removesTheLoadedRow) {
    server.answerValue("Seek", layerRow(7, L"old"));
    server.answerValue("Seek", layerRow(7, L"old"));
    layer.seekByIx(7);
    newCalls();
    layer.remove();
    EXPECT_EQ((Lines{"1.SelectTable tblLayer ixLayer", "1.SelectTable tblLayer ixLayer", "1.Seek 7",
                     "1.DeleteRecord"}),
              newCalls());
    answerFlags("Seek", {VARIANT_FALSE});
    layer.remove();
    EXPECT_EQ("1.Seek 7", server.calls().back());
}

TEST_F(StandardsRecords, masterLinkIsWrittenForTheDrawingsOwnDatabaseAlone) {
    LinkedRecord written(false, connection);
    written.addNew();
    written.setAll();
    written.update();
    EXPECT_EQ(
        "1.Append [ 'dSize' real:0.5 'bPlot' short:-1 'ixMasterDatabase' 9 'iMasterDatabaseIndex' 3 ] 0",
        server.calls().back());
    written.addNew();
    written.setMasterNull();
    written.update();
    EXPECT_EQ("1.Append [ 'ixMasterDatabase' null ] 0", server.calls().back());

    LinkedRecord skipped(true, connection);
    skipped.addNew();
    skipped.setAll();
    skipped.update();
    EXPECT_EQ("1.Append [ 'dSize' real:0.5 'bPlot' short:-1 ] 0", server.calls().back());
    // Nothing but the link: nothing to write.
    newCalls();
    skipped.addNew();
    skipped.setMasterNull();
    skipped.update();
    EXPECT_TRUE(newCalls().empty());
}

TEST_F(StandardsRecords, systemHasThirtyFields) {
    CTblLayerSystem system(false, connection);
    system.addNew();
    system.setHatchOverhang(0.5);
    system.setHatchFlexDucts(true);
    system.setHatch(HatchedDuct::outside, {true, L"Custom", L"DOTS", 0.25, 2});
    system.setHatch(HatchedDuct::exhaust, {false, L"Predefined", L"ANSI31", 0, 1});
    system.setHatch(HatchedDuct::returnAir, {});
    system.setHatch(HatchedDuct::supply, {});
    system.setSuffix(L"s");
    system.setPrefix(L"p");
    system.setSolid(true);
    system.setSortOrder(4);
    system.setDescription(L"Supply Air");
    system.update();
    EXPECT_EQ(
        "1.Append [ 'sDescription' 'Supply Air' 'iSortOrder' 4 'bSolid' short:-1 'sPrefix' 'p' 'sSuffix' 's' "
        "'supplyHatchOn' short:0 'supplyHatchType' '' 'supplyHatchPattern' '' 'supplyHatchAngle' real:0 "
        "'supplyHatchScale' real:0 "
        "'returnHatchOn' short:0 'returnHatchType' '' 'returnHatchPattern' '' 'returnHatchAngle' real:0 "
        "'returnHatchScale' real:0 "
        "'exhaustHatchOn' short:0 'exhaustHatchType' 'Predefined' 'exhaustHatchPattern' 'ANSI31' "
        "'exhaustHatchAngle' real:0 'exhaustHatchScale' real:1 "
        "'outsideHatchOn' short:-1 'outsideHatchType' 'Custom' 'outsideHatchPattern' 'DOTS' "
        "'outsideHatchAngle' real:0.25 'outsideHatchScale' real:2 "
        "'bHatchFlexDucts' short:-1 'dHatchOverhang' real:0.5 ] 0",
        server.calls().back());

    system.loadRecord(
        row({text(L"ixLayerSystem"), number(5), text(L"outsideHatchAngle"), Variant::fromReal(1.5),
             text(L"supplyHatchPattern"), text(L"BRICK "), text(L"dHatchOverhang"), Variant::null(),
             text(L"bHatchFlexDucts"), Variant::fromShort(0)})
            .get());
    EXPECT_EQ(5, system.ixLayerSystem());
    EXPECT_EQ(1.5, system.hatch(HatchedDuct::outside).angle);
    EXPECT_EQ(L"Custom", system.hatch(HatchedDuct::outside).type);
    EXPECT_EQ(L"BRICK", system.hatch(HatchedDuct::supply).pattern);
    EXPECT_EQ(0, system.dHatchOverhang());
    EXPECT_FALSE(system.bHatchFlexDucts());
    EXPECT_TRUE(system.bSolid());
}

TEST_F(StandardsRecords, realsAndLinksAreLoaded) {
    LinkedRecord record(false, connection);
    EXPECT_TRUE(record.linkIsNull());
    record.loadRecord(
        row({text(L"dSize"), number(3), text(L"bPlot"), number(-1), text(L"ixMasterDatabase"), number(0)})
            .get());
    EXPECT_EQ(3, record.size());
    EXPECT_TRUE(record.plots());
    EXPECT_FALSE(record.linkIsNull());
}

TEST_F(StandardsRecords, withoutAServerNothingIsDone) {
    CTblLayer lost(true, nullptr);
    EXPECT_FALSE(lost.seekByIx(1) || lost.seekByName(L"x"));
    EXPECT_TRUE(lost.isBOF() && lost.isEOF());
    lost.setIndex(L"sName");
    lost.moveFirst();
    lost.moveNext();
    lost.moveLast();
    lost.addNew();
    lost.setName(L"x");
    lost.update();
    lost.edit();
    lost.remove();
    lost.loadRecord(layerRow(7, L"x").get());
    EXPECT_EQ(0, lost.ixLayer());
    EXPECT_EQ(L"", lost.sName());
    EXPECT_TRUE(newCalls().empty());
}

TEST_F(StandardsRecords, failingCallIsThrown) {
    const auto fails = [&](const char* method, auto operation) {
        server.failCall(method, E_FAIL);
        EXPECT_THROW(operation(), _com_error) << method;
    };
    fails("SelectTable", [&] { layer.setIndex(L"sName"); });
    fails("Seek", [&] { layer.seekByIx(1); });
    fails("MoveFirst", [&] { layer.moveFirst(); });
    fails("Skip", [&] { layer.moveNext(); });
    fails("IsAtEnd", [&] { layer.isEOF(); });
    fails("DeleteRecord", [&] { layer.remove(); });
    layer.addNew();
    layer.setName(L"x");
    fails("Append", [&] { layer.update(); });
    server.die();
    EXPECT_THROW(layer.isEOF(), _com_error);
}

TEST_F(StandardsRecords, serverIsHeldAsLongAsTheRecord) {
    {
        const CTblLayerKey key(true, createConnection());
        EXPECT_EQ(2, server.objectCount());
    }
    EXPECT_EQ(1, server.objectCount());
}

}  // namespace

}  // namespace tessary::testing
