#include "module/database/keyed_list_functions.h"

#include "host/api/resbuf.h"

#include <gtest/gtest.h>

namespace tessary::testing {

namespace {

void expectTypes(short first, short last, int lispType) {
    for (short code = first; code <= last; ++code) {
        EXPECT_EQ(lispType, lispTypeOfExtendedData(code)) << code;
    }
}

constexpr int noType = RTNONE;

TEST(ExtendedDataTypes, everyGroupCodeHasItsLispType) {
    expectTypes(0, 998, noType);
    expectTypes(999, 1003, RTSTR);
    expectTypes(1004, 1004, 1004);
    expectTypes(1005, 1009, RTSTR);
    expectTypes(1010, 1013, RT3DPOINT);
    expectTypes(1014, 1037, noType);
    expectTypes(1038, 1059, RTREAL);
    expectTypes(1060, 1070, RTSHORT);
    expectTypes(1071, 1071, RTLONG);
    expectTypes(1072, 4999, noType);
}

TEST(ExtendedDataTypes, lispTypesAndNegativeCodesStay) {
    constexpr short codes[] = {-32768, -4, -1, 5000, 5001, 5021, 32767};
    for (const short code : codes) {
        EXPECT_EQ(code, lispTypeOfExtendedData(code));
    }
}

}  // namespace

}  // namespace tessary::testing
