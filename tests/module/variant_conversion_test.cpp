#include "module/binding/variant_conversion.h"

#include "module/binding/result_list.h"
#include "tests/module/value_lists.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace tessary::testing {

namespace {

VARIANT variantOf(VARTYPE type) {
    VARIANT value;
    VariantInit(&value);
    value.vt = type;
    return value;
}

std::string listOf(const VARIANT& value, bool trim = true) {
    return shown(variantToValueList(value, trim).get());
}

std::string listOf(const wchar_t* text, bool trim) {
    return listOf(variantFromString(text).get(), trim);
}

// The elements as LISP values, texts untouched.
std::string contents(const SafeArray& array) {
    const VariantElements elements(array.get());
    ResultList list;
    for (const VARIANT& element : elements.values()) {
        list.append(element.vt == VT_NULL ? makeList(int{RTSTR}, L"<null>")
                                          : variantToValueList(element, false));
    }
    return shown(list.head());
}

SafeArray arrayOf(std::initializer_list<Variant> values) {
    std::vector<Variant> elements(values);
    return makeVariantArray(elements);
}

Variant text(const wchar_t* value) {
    return variantFromString(value);
}

TEST(ValueToVariant, keepsTypeAndValue) {
    const ValueList nodes = makeList(int{RTREAL}, 2.5, int{RTSHORT}, -5, int{RTSTR}, L"abc", int{RTLONG},
                                     70000, int{RTNIL}, int{RTT});
    const VARTYPE types[] = {VT_R8, VT_I4, VT_BSTR, VT_I4, VT_EMPTY, VT_BOOL};
    std::vector<Variant> variants;
    const resbuf* node = nodes.get();
    for (const VARTYPE type : types) {
        Variant variant = variantFromString(L"replaced");
        ASSERT_TRUE(valueToVariant(*node, variant));
        EXPECT_EQ(type, variant.type());
        variants.push_back(variant);
        node = node->rbnext;
    }
    EXPECT_EQ(2.5, variants[0].get().dblVal);
    EXPECT_EQ(-5, variants[1].get().lVal);
    EXPECT_EQ(L"abc", textOf(variants[2].get().bstrVal));
    EXPECT_EQ(70000, variants[3].get().lVal);
    EXPECT_EQ(VARIANT_TRUE, variants[5].get().boolVal);
}

TEST(ValueToVariant, refusesWhatTheServerCannotHold) {
    for (const short type : {RTPOINT, RT3DPOINT, RTENAME, RTPICKS, RTLB, RTLE, RTDOTE, RTANG, RTVOID}) {
        const ValueList node = makeNode(type);
        Variant variant = variantFromLong(1);
        EXPECT_FALSE(valueToVariant(*node, variant)) << type;
        EXPECT_EQ(VT_I4, variant.type());
    }
}

TEST(VariantToValueList, numbersKeepTheirValue) {
    VARIANT value = variantOf(VT_I2);
    value.iVal = -7;
    EXPECT_EQ("-7", listOf(value));
    value = variantOf(VT_UI1);
    value.bVal = 200;
    EXPECT_EQ("200", listOf(value));
    value = variantOf(VT_R4);
    value.fltVal = 0.5f;
    EXPECT_EQ("real 0.5", listOf(value));
    value = variantOf(VT_R8);
    value.dblVal = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ("real 0", listOf(value));
    EXPECT_EQ("-1", listOf(Variant::fromBool(true).get()));
    EXPECT_EQ("0", listOf(Variant::fromBool(false).get()));
}

TEST(VariantToValueList, whatLispDoesNotHaveIsNil) {
    for (const int type : {int{VT_EMPTY}, int{VT_NULL}, int{VT_UNKNOWN}, int{VT_CY}, VT_ARRAY | VT_VARIANT}) {
        EXPECT_EQ("nil", listOf(variantOf(static_cast<VARTYPE>(type)))) << type;
    }
}

TEST(VariantToValueList, trimmingTakesWhiteSpaceAtBothEnds) {
    EXPECT_EQ("\"a b\"", listOf(L" \t\r\na b\n ", true));
    EXPECT_EQ("\"\"", listOf(L" \t ", true));
    EXPECT_EQ("\" a \"", listOf(L" a ", false));
    EXPECT_EQ("\"\"", listOf(L" ", false));
    EXPECT_EQ("\"  \"", listOf(L"  ", false));
    VARIANT empty = variantOf(VT_BSTR);
    empty.bstrVal = nullptr;
    EXPECT_EQ("\"\"", listOf(empty));
}

TEST(VariantToValueList, datesAreFormattedAndBadOnesNamed) {
    VARIANT value = variantOf(VT_DATE);
    value.date = 36526.0;  // the first day of 2000
    const std::string date = listOf(value);
    EXPECT_NE(std::string::npos, date.find("2000")) << date;
    value.date = 1e10;
    EXPECT_EQ("\"Invalid DateTime\"", listOf(value));
}

TEST(ListToVariantArray, structureBecomesMarkers) {
    const ValueList list =
        makeList(int{RTSHORT}, 1, int{RTLB}, int{RTSTR}, L"a", int{RTDOTE}, int{RTREAL}, 2.5, int{RTLE});
    SafeArray array;
    ASSERT_TRUE(listToVariantArray(list.get(), array));
    EXPECT_EQ("1 \"*RTLB*\" \"a\" \"*RTDOTE*\" real 2.5 \"*RTLE*\"", contents(array));
    ASSERT_TRUE(listToVariantArray(nullptr, array));
    EXPECT_EQ("", contents(array));
}

TEST(ListToVariantArray, onePointSpoilsTheWholeList) {
    ads_point given = {1, 2, 3};
    ads_real* const point = given;
    SafeArray array;
    EXPECT_FALSE(
        listToVariantArray(makeList(int{RTSHORT}, 1, int{RT3DPOINT}, point, int{RTSHORT}, 2).get(), array));
    EXPECT_EQ(nullptr, array);
}

TEST(PairsToVariantArray, pairsWithAndWithoutAListAroundThem) {
    SafeArray array;
    ASSERT_TRUE(
        pairsToVariantArray(makeList(int{RTLB}, int{RTLB}, int{RTSTR}, L"a", int{RTDOTE}, int{RTSHORT}, 1,
                                     int{RTLE}, int{RTLB}, int{RTSTR}, L"b", int{RTLE}, int{RTLE})
                                .get(),
                            array));
    EXPECT_EQ("\"a\" 1 \"b\" \"<null>\"", contents(array));
}

TEST(PairsToVariantArray, listsOfNameAndValueNeedNoDot) {
    SafeArray array;
    ASSERT_TRUE(
        pairsToVariantArray(makeList(int{RTLB}, int{RTSTR}, L"a", int{RTSHORT}, 1, int{RTLE}).get(), array));
    EXPECT_EQ("\"a\" 1", contents(array));
}

TEST(PairsToVariantArray, unusablePairsLeaveTheArrayAlone) {
    ads_point given = {1, 2, 3};
    ads_real* const point = given;
    const ValueList lists[] = {
        makeList(int{RTLB}, int{RTSTR}, L"a", int{RT3DPOINT}, point, int{RTLE}),
        makeList(int{RTSTR}, L"a", int{RTSHORT}, 1, int{RTSTR}, L"b"),
        makeList(int{RTLB}, int{RTLE}),
    };
    for (const ValueList& list : lists) {
        SafeArray array;
        EXPECT_FALSE(pairsToVariantArray(list.get(), array)) << shown(list.get());
        EXPECT_EQ(nullptr, array);
    }
}

TEST(ArrayRecords, eachMarkerBeginsARecord) {
    const SafeArray array = arrayOf({text(L"*NewRecord*"), text(L"a"), variantFromLong(1), text(L"s_b"),
                                     text(L" x "), text(L"*NewRecord*"), text(L"a"), variantFromLong(2)});
    ResultList list;
    addArrayRecords(list, array.get());
    EXPECT_EQ("( ( \"a\" . 1 ) ( \"s_b\" . \" x \" ) ) ( ( \"a\" . 2 ) )", shown(list.head()));
}

TEST(ArrayRecords, valuesBeforeTheFirstMarkerStaySingle) {
    const SafeArray array = arrayOf({text(L" a "), variantFromLong(1), text(L"*NewRecord*")});
    ResultList list;
    addArrayRecords(list, array.get());
    EXPECT_EQ("\"a\" 1 ( )", shown(list.head()));
}

TEST(ArrayPairs, lastNameWithoutAValueIsPairedWithNil) {
    const SafeArray array = arrayOf({text(L"a"), variantFromLong(1), text(L"b")});
    ResultList list;
    addArrayPairs(list, array.get());
    EXPECT_EQ("( \"a\" . 1 ) ( \"b\" . nil )", shown(list.head()));
}

TEST(ArrayValues, lowerBoundIsTheArraysOwn) {
    SAFEARRAYBOUND bound = {2, -3};
    const SafeArray array(SafeArrayCreate(VT_VARIANT, 1, &bound));
    ASSERT_NE(nullptr, array);
    for (LONG i = -3; i <= -2; ++i) {
        VARIANT value = variantFromLong(i).release();
        ASSERT_EQ(S_OK, SafeArrayPutElement(array.get(), &i, &value));
    }
    ResultList list;
    addArrayValues(list, array.get());
    EXPECT_EQ("-3 -2", shown(list.head()));
    addArrayValues(list, nullptr);
    EXPECT_EQ("-3 -2", shown(list.head()));
}

}  // namespace

}  // namespace tessary::testing
