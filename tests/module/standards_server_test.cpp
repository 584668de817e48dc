// The record classes on a real database: the server works in this process, from the library beside the test
// program.

#include "module/standards/layer_key_record.h"
#include "module/standards/layer_record.h"
#include "module/standards/layer_system_record.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <filesystem>

namespace tessary::testing {

namespace {

ConnectionPointer connectInProcess() {
    static const HMODULE library = LoadLibraryW(L"TessaryServer.dll");
    const auto getClass = reinterpret_cast<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(
        GetProcAddress(library, "DllGetClassObject"));
    ComPointer<IClassFactory> factory;
    ConnectionPointer connection;
    EXPECT_EQ(S_OK, getClass(CLSID_DatabaseConnectionObject, IID_IClassFactory,
                             reinterpret_cast<void**>(factory.receive())));
    EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_DatabaseConnection,
                                            reinterpret_cast<void**>(connection.receive())));
    return connection;
}

class StandardsServer : public ::testing::Test {
protected:
    StandardsServer() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        const std::wstring file = (folder_ / "standards.qn").wstring();
        EXPECT_TRUE(succeeds(*connection, &DatabaseConnection::CreateDatabase, Bstr(file).get()));
        open(connection);
        execute(L"CREATE TABLE tblLayer (ixLayer COUNTER CONSTRAINT ixLayer PRIMARY KEY, "
                L"sName TEXT(255) NOT NULL, bRGBColor YESNO NOT NULL, iColor LONG, iRed LONG, iGreen LONG, "
                L"iBlue LONG, sLinetype TEXT(255) NOT NULL DEFAULT 'Continuous', bPlot YESNO NOT NULL, "
                L"sLineweight TEXT(10), sPlotstyle TEXT(255), ixMasterDatabase LONG, "
                L"iMasterDatabaseIndex LONG)");
        execute(L"CREATE INDEX sName ON tblLayer (sName)");
    }
    ~StandardsServer() override {
        layer.reset();
        connection.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    void open(const ConnectionPointer& other) {
        VARIANT_BOOL readOnly = VARIANT_TRUE;
        EXPECT_TRUE(succeeds(*other, &DatabaseConnection::OpenForCustomization,
                             Bstr((folder_ / "standards.qn").wstring()).get(), &readOnly));
        EXPECT_EQ(VARIANT_FALSE, readOnly);
    }
    void execute(const std::wstring& statement) {
        EXPECT_TRUE(succeeds(*connection, &DatabaseConnection::ExecuteSql, Bstr(statement).get()));
    }
    // The rows of a result, field by field without names; a bar after each row.
    std::wstring ask(const std::wstring& statement) {
        Variant result;
        EXPECT_TRUE(
            succeeds(*connection, &DatabaseConnection::RunSql, Bstr(statement).get(), result.receive()));
        std::wstring text;
        const VariantElements elements(result.array());
        const std::span<const VARIANT> values = elements.values();
        for (std::size_t i = 0; i < values.size();) {
            if (textOf(values[i].bstrVal) == L"*NewRecord*") {
                text += i == 0 ? L"" : L"| ";
                ++i;
                continue;
            }
            text += valueText(values[i + 1]) + L" ";
            i += 2;
        }
        return text;
    }
    void addLayer(const wchar_t* name) {
        layer->addNew();
        layer->setName(name);
        layer->update();
    }

    ConnectionPointer connection = connectInProcess();
    std::optional<CTblLayer> layer{std::in_place, true, connection};

private:
    static std::wstring valueText(const VARIANT& value) {
        Variant text;
        const bool shows =
            value.vt != VT_NULL &&
            SUCCEEDED(VariantChangeType(text.receive(), const_cast<VARIANT*>(&value), 0, VT_BSTR));
        return shows ? textOf(text.get().bstrVal) : L"null";
    }
    struct ComApartment {
        ComApartment() { CoInitialize(nullptr); }
        ~ComApartment() { CoUninitialize(); }
    };
    ComApartment apartment_;
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() /
        (std::string("tessary-standards-") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(StandardsServer, emptyTableIsAtBothEnds) {
    layer->setIndex(L"sName");
    layer->moveFirst();
    EXPECT_TRUE(layer->isBOF());
    EXPECT_TRUE(layer->isEOF());
    EXPECT_EQ(0, layer->ixLayer());
    layer->moveNext();
    layer->moveLast();
    EXPECT_FALSE(layer->seekByIx(1));
}

TEST_F(StandardsServer, newLayerHasTheNumberAndDefaultsOfTheDatabase) {
    addLayer(L"M-DUCT");
    EXPECT_EQ(1, layer->ixLayer());
    EXPECT_EQ(L"Continuous", layer->sLinetype());
    EXPECT_FALSE(layer->iColor() || layer->sLineweight() || layer->sPlotstyle() || layer->bPlot());

    layer->edit();
    layer->setColor(300);
    layer->setPlot(true);
    layer->setLineweight(L"25");
    layer->setPlotstyle(L"");
    layer->update();
    EXPECT_EQ(L"1 M-DUCT 300 Continuous 25 ",
              ask(L"select ixLayer, sName, iColor, sLinetype, sLineweight from tblLayer where bPlot = -1"));
    CTblLayer other(true, connection);
    ASSERT_TRUE(other.seekByName(L"m-duct"));
    EXPECT_EQ(300, other.iColor());
    EXPECT_TRUE(other.bPlot());
    EXPECT_EQ(L"25", other.sLineweight());

    layer->edit();
    layer->setLineweight(std::nullopt);
    layer->setPlotstyle(std::nullopt);
    layer->setPlot(false);
    layer->update();
    EXPECT_EQ(L"null null ", ask(L"select sLineweight, sPlotstyle from tblLayer where bPlot = 0"));
}

TEST_F(StandardsServer, namesComeBackAsTheyWereWritten) {
    const std::wstring longest(255, L'\u00fc');
    for (const std::wstring& name : {std::wstring(L"O'Hare \"quoted\""), std::wstring(L"100% [x]*?"),
                                     std::wstring(L"  blanks in front"), longest}) {
        addLayer(name.c_str());
        EXPECT_EQ(name, layer->sName());
        CTblLayer other(true, connection);
        EXPECT_TRUE(other.seekByName(name));
        EXPECT_EQ(name, other.sName());
        EXPECT_EQ(layer->ixLayer(), other.ixLayer());
    }
    addLayer(L"blanks behind \t ");
    EXPECT_EQ(L"blanks behind", layer->sName());
}

TEST_F(StandardsServer, walksByNameFromEndToEnd) {
    for (const wchar_t* name : {L"c", L"a", L"B"}) {
        addLayer(name);
    }
    std::wstring walked;
    layer->setIndex(L"sName");
    for (layer->moveFirst(); !layer->isEOF(); layer->moveNext()) {
        walked += layer->sName();
    }
    EXPECT_EQ(L"aBc", walked);
    EXPECT_EQ(L"c", layer->sName());
    layer->setIndex(L"ixLayer");
    layer->moveLast();
    EXPECT_EQ(L"B", layer->sName());
    EXPECT_FALSE(layer->isBOF() || layer->isEOF());
}

TEST_F(StandardsServer, rowsThatTheDatabaseRefusesAreLost) {
    addLayer(L"first");
    layer->addNew();
    layer->setColor(4);
    layer->update();
    EXPECT_EQ(1, layer->ixLayer());
    EXPECT_EQ(4, layer->iColor());
    EXPECT_EQ(L"1 first ", ask(L"select ixLayer, sName from tblLayer"));

    const std::wstring tooLong(256, L'x');
    layer->seekByIx(1);
    layer->edit();
    layer->setName(tooLong);
    layer->setPlot(true);
    layer->update();
    EXPECT_EQ(tooLong, layer->sName());
    EXPECT_TRUE(layer->bPlot());
    EXPECT_EQ(L"first 0 ", ask(L"select sName, bPlot + 0 from tblLayer"));
}

TEST_F(StandardsServer, rowThatAnotherUserDeletedIsNeitherChangedNorRemoved) {
    addLayer(L"gone");
    addLayer(L"kept");
    layer->seekByIx(1);
    const ConnectionPointer other = connectInProcess();
    open(other);
    EXPECT_TRUE(succeeds(*other, &DatabaseConnection::ExecuteSql,
                         Bstr(L"delete from tblLayer where ixLayer = 1").get()));
    layer->edit();
    layer->setName(L"changed");
    layer->update();
    layer->remove();
    EXPECT_EQ(L"2 kept ", ask(L"select ixLayer, sName from tblLayer"));
}

TEST_F(StandardsServer, removesOneRow) {
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        addLayer(name);
    }
    layer->seekByName(L"b");
    layer->remove();
    EXPECT_EQ(L"a | c ", ask(L"select sName from tblLayer order by sName"));
    EXPECT_EQ(L"b", layer->sName());
}

TEST_F(StandardsServer, keyOfAMissingTableDoesNotTouchAnotherTable) {
    addLayer(L"a");
    CTblLayerKey key(true, connection);
    layer->seekByIx(1);
    EXPECT_FALSE(key.seekByIx(1));
    key.edit();
    key.setLayer(1);
    key.update();
    CTblLayerSystem system(true, connection);
    system.setIndex(L"iSortOrder");
    system.moveFirst();
    EXPECT_TRUE(system.isEOF());
    EXPECT_EQ(L"1 a ", ask(L"select ixLayer, sName from tblLayer"));
}

TEST_F(StandardsServer, systemIsWrittenAndLoadedWhole) {
    std::wstring hatches;
    for (const wchar_t* duct : {L"supply", L"return", L"exhaust", L"outside"}) {
        const std::wstring name = duct;
        hatches += name + L"HatchOn YESNO NOT NULL, " + name + L"HatchType TEXT(20) NOT NULL, " + name +
                   L"HatchPattern TEXT(255) NOT NULL, " + name + L"HatchAngle DOUBLE NOT NULL, " + name +
                   L"HatchScale DOUBLE NOT NULL, ";
    }
    execute(L"CREATE TABLE tblLayerSystem (ixLayerSystem COUNTER CONSTRAINT ixLayerSystem PRIMARY KEY, "
            L"sDescription TEXT(255) NOT NULL, iSortOrder LONG NOT NULL, bSolid YESNO NOT NULL, "
            L"sPrefix TEXT(255) NOT NULL, sSuffix TEXT(255) NOT NULL, " +
            hatches +
            L"bHatchFlexDucts YESNO NOT NULL, dHatchOverhang DOUBLE NOT NULL, ixMasterDatabase LONG, "
            L"iMasterDatabaseIndex LONG)");
    CTblLayerSystem system(false, connection);
    const auto hatchOf = [](int number) {
        return DuctHatch{number % 2 == 0, L"Custom", L"P" + std::to_wstring(number), number + 0.25,
                         number + 0.5};
    };
    system.addNew();
    system.setDescription(L"Supply Air");
    system.setSortOrder(-3);
    system.setSolid(true);
    system.setPrefix(L"SA");
    system.setSuffix(L"");
    for (const HatchedDuct duct :
         {HatchedDuct::supply, HatchedDuct::returnAir, HatchedDuct::exhaust, HatchedDuct::outside}) {
        system.setHatch(duct, hatchOf(static_cast<int>(duct)));
    }
    system.setHatchFlexDucts(true);
    system.setHatchOverhang(1e-9);
    system.update();

    CTblLayerSystem other(true, connection);
    ASSERT_TRUE(other.seekByIx(1));
    EXPECT_EQ(L"Supply Air", other.sDescription());
    EXPECT_EQ(-3, other.iSortOrder());
    EXPECT_TRUE(other.bSolid());
    EXPECT_EQ(L"SA", other.sPrefix());
    EXPECT_EQ(L"", other.sSuffix());
    for (const HatchedDuct duct :
         {HatchedDuct::supply, HatchedDuct::returnAir, HatchedDuct::exhaust, HatchedDuct::outside}) {
        const DuctHatch expected = hatchOf(static_cast<int>(duct));
        const DuctHatch hatch = other.hatch(duct);
        EXPECT_EQ(expected.on, hatch.on);
        EXPECT_EQ(expected.type, hatch.type);
        EXPECT_EQ(expected.pattern, hatch.pattern);
        EXPECT_EQ(expected.angle, hatch.angle);
        EXPECT_EQ(expected.scale, hatch.scale);
    }
    EXPECT_TRUE(other.bHatchFlexDucts());
    EXPECT_EQ(1e-9, other.dHatchOverhang());
}

}  // namespace

}  // namespace tessary::testing
