// A client's work with a connection, slot by slot, and the automation values that come and go.

#include "tests/server_com/slot_caller.h"

namespace tessary::server {

namespace {

class Connection : public ConnectionTest {
protected:
    void createParts() {
        createAndOpen();
        ASSERT_EQ(
            execute(L"CREATE TABLE Part (ixPart COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, sName TEXT(20), "
                    L"dSize DOUBLE, bUsed YESNO DEFAULT No)"),
            "ok");
        ASSERT_EQ(execute(L"CREATE INDEX byName ON Part (sName, dSize)"), "ok");
        ASSERT_EQ(select(L"Part"), "ok");
    }
    std::string append(const std::vector<Variant>& pairs, bool stay = false) {
        return ask(20, static_cast<VARIANT>(arrayFrom(pairs)), stay ? VARIANT_TRUE : VARIANT_FALSE);
    }
    std::string addPart(const wchar_t* name, double size) { return append({L"sName", name, L"dSize", size}); }
    std::string sql(const wchar_t* statement) { return ask(47, BSTR(Bstr(statement))); }
    // The value that comes back from a field of the type.
    std::string stored(const std::wstring& type, const Variant& value) {
        EXPECT_EQ(execute((L"CREATE TABLE Value (f " + type + L")").c_str()), "ok");
        EXPECT_EQ(select(L"Value"), "ok");
        std::string record = append({L"f", value});
        EXPECT_EQ(call(45, BSTR(Bstr(L"Value")), VARIANT_FALSE), "ok");
        return record.starts_with("BSTR:f|") ? record.substr(7) : record;
    }
};

constexpr const char* duct = "BSTR:ixPart|I4:1|BSTR:sName|BSTR:duct|BSTR:dSize|R8:2.500000|BSTR:bUsed|BOOL:0";
constexpr const char* bend = "BSTR:ixPart|I4:2|BSTR:sName|BSTR:bend|BSTR:dSize|R8:1.500000|BSTR:bUsed|BOOL:0";

TEST_F(Connection, WalksAndChangesRecords) {
    createParts();
    EXPECT_EQ(flag(57) + flag(58), "yesyes");
    EXPECT_EQ(addPart(L"duct", 2.5), duct);
    EXPECT_EQ(addPart(L"bend", 1.5), bend);
    EXPECT_EQ(ask(9), duct);
    EXPECT_EQ(ask(13, LONG(1)), bend);
    EXPECT_EQ(ask(14), bend);
    EXPECT_EQ(ask(13, LONG(1)), "error 3021");
    EXPECT_EQ(flag(57) + flag(58), "yesno");
    EXPECT_EQ(flag(29), "yes");
    EXPECT_EQ(ask(21), bend);
    EXPECT_EQ(flag(29), "no");
    const Variant change = arrayFrom({L"dSize", 9});
    EXPECT_EQ(ask(37, static_cast<VARIANT>(change)),
              "BSTR:ixPart|I4:2|BSTR:sName|BSTR:bend|BSTR:dSize|R8:9.000000|BSTR:bUsed|BOOL:0");
    LONG count = 0;
    EXPECT_EQ(call(25, &count), "ok");
    EXPECT_EQ(count, 2);
    EXPECT_EQ(call(26), "ok");
    EXPECT_EQ(ask(14), "error 3167");
    EXPECT_EQ(ask(13, LONG(-1)), duct);
}

TEST_F(Connection, SeeksOneToTenKeyValues) {
    createParts();
    addPart(L"duct", 2.5);
    addPart(L"bend", 1.5);
    const Variant name(L"bend"), size(1.5), number(2), nothing;
    const VARIANT none = nothing;
    EXPECT_EQ(ask(38, static_cast<VARIANT>(number)), bend);
    EXPECT_EQ(select(L"Part", L"byName"), "ok");
    EXPECT_EQ(text(35), L"byName");
    EXPECT_EQ(text(36), L"Part");
    EXPECT_EQ(ask(38, static_cast<VARIANT>(name)), bend);
    EXPECT_EQ(ask(39, static_cast<VARIANT>(name), static_cast<VARIANT>(size)), bend);
    EXPECT_EQ(ask(39, static_cast<VARIANT>(name), static_cast<VARIANT>(number)), "error 3021");
    EXPECT_EQ(ask(40, static_cast<VARIANT>(name), static_cast<VARIANT>(size), none), "error 3001");
    const auto seekKeys = [&](LONG count) {
        return ask(41, static_cast<VARIANT>(name), static_cast<VARIANT>(size), none, none, none, none, none,
                   none, none, none, count);
    };
    EXPECT_EQ(seekKeys(1), bend);
    EXPECT_EQ(seekKeys(2), bend);
    for (const LONG count : {0L, -1L, 11L}) {
        EXPECT_EQ(seekKeys(count), "error 3001") << count;
    }
}

TEST_F(Connection, ValuesHaveTheWidthOfTheirField) {
    createAndOpen();
    EXPECT_EQ(stored(L"YESNO", 7), "BOOL:-1");
    EXPECT_EQ(stored(L"BYTE", 200), "UI1:200");
    EXPECT_EQ(stored(L"SHORT", -3), "I2:-3");
    EXPECT_EQ(stored(L"LONG", L"70000"), "I4:70000");
    EXPECT_EQ(stored(L"SINGLE", 2.5), "R4:2.500000");
    EXPECT_EQ(stored(L"DOUBLE", 2.5), "R8:2.500000");
    EXPECT_EQ(stored(L"CURRENCY", 2.5), "R8:2.500000");
    EXPECT_EQ(stored(L"DATETIME", L"1/1/1900"), "DATE:2.000000");
    EXPECT_EQ(stored(L"TEXT(9)", 12), "BSTR:12");
    EXPECT_EQ(stored(L"MEMO", Variant()), "NULL");
}

TEST_F(Connection, TakesEveryUsualKindOfVariant) {
    createAndOpen();
    Variant value;
    const auto as = [&value](VARTYPE type) -> Variant& {
        value.vt = type;
        return value;
    };
    value.llVal = 41;
    for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_INT, VT_UINT, VT_I8, VT_UI8}) {
        EXPECT_EQ(stored(L"LONG", as(type)), "I4:41") << type;
    }
    value.llVal = 1LL << 40;
    EXPECT_EQ(stored(L"DOUBLE", as(VT_I8)), "R8:1099511627776.000000");
    value.cyVal.int64 = 12500;
    EXPECT_EQ(stored(L"DOUBLE", as(VT_CY)), "R8:1.250000");
    value.date = 1.5;
    EXPECT_EQ(stored(L"DATETIME", as(VT_DATE)), "DATE:1.500000");
    value.fltVal = 0.5f;
    EXPECT_EQ(stored(L"DOUBLE", as(VT_R4)), "R8:0.500000");
    Variant decimal;
    VarDecFromR8(0.75, &decimal.decVal);
    decimal.vt = VT_DECIMAL;
    EXPECT_EQ(stored(L"DOUBLE", decimal), "R8:0.750000");
    EXPECT_EQ(stored(L"DOUBLE", as(VT_NULL)), "NULL");
    EXPECT_EQ(stored(L"DOUBLE", as(VT_ERROR)), "NULL");
    value.dblVal = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(stored(L"DOUBLE", as(VT_R8)), "error 3421");
    value.punkVal = nullptr;
    EXPECT_EQ(stored(L"DOUBLE", as(VT_UNKNOWN)), "error 3421");
    as(VT_EMPTY);
}

TEST_F(Connection, FieldsComeByValueOrReferenceWithAnyLowerBound) {
    createParts();
    Variant inner = 12;
    Variant byReference;
    byReference.vt = VT_BYREF | VT_I4;
    byReference.plVal = &inner.lVal;
    Variant fields = arrayFrom({L"sName", L"duct", L"dSize", byReference}, 5);
    EXPECT_EQ(ask(20, static_cast<VARIANT>(fields), VARIANT_FALSE),
              "BSTR:ixPart|I4:1|BSTR:sName|BSTR:duct|BSTR:dSize|R8:12.000000|BSTR:bUsed|BOOL:0");
    VARIANT reference;
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &fields;
    EXPECT_NE(ask(20, reference, VARIANT_FALSE).find("I4:2|BSTR:sName|BSTR:duct"), std::string::npos);
    reference.vt = VT_BYREF | VT_ARRAY | VT_VARIANT;
    reference.pparray = &fields.parray;
    EXPECT_NE(ask(20, reference, VARIANT_FALSE).find("I4:3|BSTR:sName|BSTR:duct"), std::string::npos);
    byReference.vt = VT_EMPTY;
}

TEST_F(Connection, UnusableFieldsLoseNothing) {
    createParts();
    EXPECT_EQ(addPart(L"duct", 2.5), duct);
    EXPECT_EQ(append({L"sName"}), "error 3001");
    EXPECT_EQ(append({7, L"x"}), "error 3001");
    EXPECT_EQ(append({L"sNone", L"x"}).substr(0, 6), "error ");
    EXPECT_NE(error().second.find(L"sNone"), std::wstring::npos);
    EXPECT_EQ(append({L"sName", arrayFrom({1})}), "error 3421");
    const Variant number(5);
    EXPECT_EQ(ask(20, static_cast<VARIANT>(number), VARIANT_FALSE), "error 3001");
    Variant square;
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    square.vt = VT_ARRAY | VT_VARIANT;
    square.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    EXPECT_EQ(ask(20, static_cast<VARIANT>(square), VARIANT_FALSE), "error 3001");
    EXPECT_EQ(ask(14), duct);
    LONG count = 0;
    EXPECT_EQ(call(25, &count), "ok");
    EXPECT_EQ(count, 1);
}

TEST_F(Connection, TextsKeepEveryCharacter) {
    createParts();
    const std::wstring inside(L"a\0b", 3);
    Variant value;
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocStringLen(inside.data(), 3);
    const std::string record = append({L"sName", value});
    EXPECT_NE(record.find("BSTR:a@b"), std::string::npos) << record;
}

TEST_F(Connection, ResultsOfStatements) {
    createParts();
    EXPECT_EQ(sql(L"SELECT * FROM Part"), "EMPTY");
    addPart(L"duct", 2.5);
    addPart(L"bend", 1.5);
    EXPECT_EQ(
        sql(L"SELECT sName, dSize * 2 AS dDouble, ixPart, bUsed, Null AS n FROM Part ORDER BY sName"),
        "BSTR:*NewRecord*|BSTR:sName|BSTR:bend|BSTR:dDouble|R8:3.000000|BSTR:ixPart|I4:2|BSTR:bUsed|BOOL:0|"
        "BSTR:n|NULL|"
        "BSTR:*NewRecord*|BSTR:sName|BSTR:duct|BSTR:dDouble|R8:5.000000|BSTR:ixPart|I4:1|BSTR:bUsed|BOOL:0|"
        "BSTR:n|NULL");
    EXPECT_EQ(sql(L"UPDATE Part SET bUsed = True"), "EMPTY");
    LONG count = -1;
    EXPECT_EQ(call(62, BSTR(Bstr(L"DELETE FROM Part WHERE sName = 'duct'")), &count), "ok");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(call(62, BSTR(Bstr(L"DELETE FROM Nowhere")), &count), "error 3078");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(sql(L"SELECT FROM"), "error 3075");
}

TEST_F(Connection, StoredQueriesTakeTheirParameters) {
    createParts();
    addPart(L"duct", 2.5);
    EXPECT_EQ(call(55, BSTR(Bstr(L"bySize")), BSTR(Bstr(L"SELECT sName FROM Part WHERE dSize > [least]"))),
              "ok");
    const Variant least = arrayFrom({2});
    const Variant most = arrayFrom({3.5});
    const Variant none = arrayFrom({});
    EXPECT_EQ(ask(53, BSTR(Bstr(L"bySize")), static_cast<VARIANT>(least)),
              "BSTR:*NewRecord*|BSTR:sName|BSTR:duct");
    EXPECT_EQ(ask(53, BSTR(Bstr(L"bySize")), static_cast<VARIANT>(most)), "EMPTY");
    EXPECT_EQ(ask(53, BSTR(Bstr(L"bySize")), static_cast<VARIANT>(none)), "error 3061");
}

TEST_F(Connection, TablesAreMadeChangedAndLookedAt) {
    createAndOpen();
    const Variant definition = arrayFrom({L"*RTLB*", L"sName", L"TEXT", L"*RTLE*"});
    const std::string made = call(43, BSTR(Bstr(L"Note")), static_cast<VARIANT>(definition));
    ASSERT_EQ(made, "ok") << std::filesystem::path(error().second).string();
    VARIANT_BOOL answer = 7;
    EXPECT_EQ(call(30, BSTR(Bstr(L"note")), &answer), "ok");
    EXPECT_EQ(answer, VARIANT_TRUE);
    EXPECT_EQ(call(54, BSTR(Bstr(L"Note")), BSTR(Bstr(L"sName")), VARIANT_FALSE, VARIANT_FALSE), "ok");
    EXPECT_EQ(call(34, BSTR(Bstr(L"Note")), BSTR(Bstr(L"Memo1"))), "ok");
    EXPECT_EQ(ask(46), "BSTR:Memo1");
    EXPECT_EQ(ask(31), "error 3420");
    EXPECT_EQ(select(L"Memo1"), "ok");
    EXPECT_EQ(ask(32), "BSTR:sName");
    EXPECT_NE(ask(31).find("BSTR:sName"), std::string::npos);
    EXPECT_NE(ask(60, BSTR(Bstr(L"sName"))).find("BSTR:NAME|BSTR:sName"), std::string::npos);
    EXPECT_EQ(call(59, BSTR(Bstr(L"Memo1")), BSTR(Bstr(L"sName")), &answer), "ok");
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(call(49, BSTR(Bstr(L"none")), &answer), "ok");
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(call(50, BSTR(Bstr(L"Memo1")), BSTR(Bstr(L"none"))), "error 3265");
    EXPECT_EQ(call(33, BSTR(Bstr(L"Memo1")), static_cast<VARIANT>(arrayFrom({5}))).substr(0, 6), "error ");
    EXPECT_EQ(flag(22), "yes");
    EXPECT_EQ(flag(22), "no");
    EXPECT_EQ(flag(23), "yes");
    EXPECT_EQ(call(45, BSTR(Bstr(L"Memo1")), VARIANT_FALSE), "ok");
    EXPECT_EQ(ask(46), "");
}

TEST_F(Connection, StateOfTheDatabase) {
    SHORT version = 0;
    EXPECT_EQ(slot(63, &version), S_OK);
    EXPECT_EQ(version, 1);
    EXPECT_EQ(flag(15) + flag(16) + flag(28) + flag(44), "yesnonoyes");
    EXPECT_EQ(text(17), L"");
    EXPECT_EQ(open(L"plan.qn"), L"");
    EXPECT_EQ(errorCode(), 3024);
    createAndOpen();
    EXPECT_EQ(flag(15) + flag(16) + flag(28) + flag(44), "yesyesyesno");
    EXPECT_EQ(text(17), file(L"plan.qn"));
    EXPECT_EQ(open(L"plan.qn", false, true), file(L"plan.qn"));
    EXPECT_EQ(flag(28) + flag(44), "noyes");
    EXPECT_EQ(execute(L"CREATE TABLE T (f LONG)"), "error 3027");
    EXPECT_EQ(open(L"plan.qn", true), L"");
    EXPECT_EQ(errorCode(), 3051);
    EXPECT_EQ(flag(16), "no");
    VARIANT_BOOL readOnly = 7;
    EXPECT_EQ(call(56, BSTR(Bstr(file(L"plan.qn"))), &readOnly), "ok");
    EXPECT_EQ(readOnly, VARIANT_FALSE);
    EXPECT_EQ(flag(24), "yes");
    EXPECT_EQ(call(51, BSTR(Bstr(file(L"plan.qn"))), BSTR(Bstr(file(L"copy.qn")))), "ok");
    EXPECT_TRUE(std::filesystem::exists(file(L"copy.qn")));
    EXPECT_EQ(call(42, BSTR(Bstr(file(L"copy.qn")))), "error 3204");
}

TEST_F(Connection, ClosingKeepsTheReasonOfAFailedOpening) {
    EXPECT_EQ(open(L"none.qn"), L"");
    EXPECT_EQ(flag(24), "yes");
    EXPECT_EQ(errorCode(), 3024);
    EXPECT_EQ(flag(29), "yes");
}

TEST_F(Connection, ClosingForgetsWhatWentWrongInTheDatabase) {
    createParts();
    EXPECT_EQ(select(L"Nothing"), "error 3078");
    EXPECT_EQ(flag(24), "yes");
    EXPECT_EQ(flag(29), "no");
    EXPECT_EQ(text(17), L"");
}

TEST_F(Connection, LinksTables) {
    createParts();
    addPart(L"duct", 2.5);
    EXPECT_EQ(call(42, BSTR(Bstr(file(L"other.qn")))), "ok");
    EXPECT_EQ(open(L"other.qn"), file(L"other.qn"));
    VARIANT_BOOL linked = 7;
    EXPECT_EQ(call(52, BSTR(Bstr(L"Far")), BSTR(Bstr(file(L"plan.qn"))), BSTR(Bstr(L"Part")), &linked), "ok");
    EXPECT_EQ(linked, VARIANT_TRUE);
    EXPECT_EQ(sql(L"SELECT sName FROM Far"), "BSTR:*NewRecord*|BSTR:sName|BSTR:duct");
    EXPECT_EQ(call(52, BSTR(Bstr(L"Far2")), BSTR(Bstr(file(L"none.qn"))), BSTR(Bstr(L"Part")), &linked),
              "error 3024");
    EXPECT_EQ(linked, VARIANT_FALSE);
}

}  // namespace

}  // namespace tessary::server
