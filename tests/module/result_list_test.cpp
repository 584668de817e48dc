#include "module/binding/result_list.h"

#include "host/api/curves.h"
#include "module/binding/variant.h"
#include "tests/module/value_lists.h"

#include <gtest/gtest.h>

namespace tessary::testing {

namespace {

TEST(ResultList, everyBuilderAppendsAtTheEnd) {
    ResultList list;
    beginResultList(list);
    addString(list, L"text");
    addPoint(list, AcGePoint3d(1, 2, 3));
    addNamedString(list, L"a", L"b");
    addNamedReal(list, L"r", 2.5);
    addNamedPoint(list, L"p", AcGePoint3d(4, 5, 6));
    addNamedEntity(list, L"e", nullptr);
    addVariantValue(list, variantFromLong(7).get());
    addNamedVariant(list, L"v", variantFromString(L"w").get());
    EXPECT_EQ(
        "( \"text\" [1 2 3] ( \"a\" . \"b\" ) ( \"r\" . real 2.5 ) ( \"p\" . [4 5 6] ) ( \"e\" . nil ) 7 "
        "( \"v\" . \"w\" )",
        shown(list.head()));
    EXPECT_EQ(RTLE, list.tail()->restype);
    EXPECT_EQ(nullptr, list.tail()->rbnext);
}

TEST(ResultList, beginningAnewDropsWhatWasBuilt) {
    ResultList list;
    beginResultList(list);
    addString(list, L"old");
    beginResultList(list);
    EXPECT_EQ("(", shown(list.head()));
    EXPECT_EQ(list.head(), list.tail());
}

TEST(ResultList, fieldsNamedWithSKeepTheirBlanks) {
    const struct {
        const wchar_t* name;
        const wchar_t* text;
        const char* pair;
    } rows[] = {
        {L"s_note", L"  two  ", "( \"s_note\" . \"  two  \" )"},
        {L"s_note", L" ", "( \"s_note\" . \"\" )"},
        {L"s_note", L"  ", "( \"s_note\" . \"  \" )"},
        {L"S_note", L" two\t", "( \"S_note\" . \"two\" )"},
        {L"s", L" two ", "( \"s\" . \"two\" )"},
        {L"note", L" ", "( \"note\" . \"\" )"},
    };
    for (const auto& row : rows) {
        ResultList list;
        addNamedVariant(list, row.name, variantFromString(row.text).get());
        EXPECT_EQ(row.pair, shown(list.head()));
    }
}

TEST(ResultList, entityOutsideADrawingHasNoPair) {
    const AcDbLine line;
    ResultList list;
    beginResultList(list);
    addNamedEntity(list, L"e", &line);
    EXPECT_EQ("(", shown(list.head()));
}

TEST(ResultList, namedPairsAreMadeOfPlainValuesOnly) {
    ads_point given = {1, 2, 3};
    ads_real* const point = given;
    const ValueList nodes =
        makeList(int{RTREAL}, 1.5, int{RTPOINT}, point, int{RTSHORT}, -3, int{RTSTR}, L"t", int{RT3DPOINT},
                 point, int{RTLONG}, 70000, int{RTNIL}, int{RTT}, int{RTLB});
    const char* const pairs[] = {"( \"n\" . real 1.5 )", "( \"n\" . [1 2] )",   "( \"n\" . -3s )",
                                 "( \"n\" . \"t\" )",    "( \"n\" . [1 2 3] )", "( \"n\" . 70000 )"};
    const resbuf* node = nodes.get();
    for (const char* pair : pairs) {
        EXPECT_EQ(pair, shown(makeNamedPair(L"n", *node).get()));
        node = node->rbnext;
    }
    for (; node; node = node->rbnext) {
        EXPECT_EQ(nullptr, makeNamedPair(L"n", *node)) << node->restype;
    }
}

}  // namespace

}  // namespace tessary::testing
