#include "module/binding/argument_readers.h"

#include "tests/module/value_lists.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace tessary::testing {

namespace {

// What a reader did with the cursor.
enum class Step { refused, stayed, moved };

Step step(bool accepted, ArgCursor before, ArgCursor after) {
    if (!accepted) {
        EXPECT_EQ(before, after) << "a reader that fails must not move";
        return Step::refused;
    }
    return after == before ? Step::stayed : Step::moved;
}

template <class Value>
Step tryReader(bool (*reader)(ArgCursor&, Value&), ArgCursor node) {
    ArgCursor cursor = node;
    Value value{};
    const bool accepted = reader(cursor, value);
    return step(accepted, node, cursor);
}

Step tryListReader(bool (*reader)(ArgCursor&), ArgCursor node) {
    ArgCursor cursor = node;
    const bool accepted = reader(cursor);
    return step(accepted, node, cursor);
}

Step tryEntityName(ArgCursor node) {
    ArgCursor cursor = node;
    ads_name name = {0, 0};
    const bool accepted = readEntityName(cursor, name);
    return step(accepted, node, cursor);
}

// Letters of the readers that accept a node and move on; in lower case those that accept it and stay.
// B list begin, E list end, N entity name, S string, R real, I integer, D number (double), P point, F flag, V
// variant bool
std::string acceptingReaders(ArgCursor node) {
    std::string letters;
    const auto note = [&letters](char letter, Step taken) {
        if (taken != Step::refused) {
            letters += static_cast<char>(taken == Step::moved ? letter : letter - 'A' + 'a');
        }
    };
    note('B', tryListReader(readListBegin, node));
    note('E', tryListReader(readListEnd, node));
    note('N', tryEntityName(node));
    note('S', tryReader<std::wstring>(readString, node));
    note('R', tryReader<double>(readReal, node));
    note('I', tryReader<int>(readInteger, node));
    note('D', tryReader<double>(readNumber, node));
    note('P', tryReader<AcGePoint3d>(readPoint, node));
    note('F', tryReader<bool>(readFlag, node));
    note('V', tryReader<short>(readVariantBool, node));
    return letters;
}

int integerOf(const ValueList& list) {
    ArgCursor cursor = list.get();
    int value = 0;
    EXPECT_TRUE(readInteger(cursor, value));
    return value;
}

// The point and the type of the node the cursor stands at afterwards, 0 behind the last one; "none" when
// refused.
std::string pointOf(const ValueList& list) {
    ArgCursor cursor = list.get();
    AcGePoint3d point(-1, -1, -1);
    if (!readPoint(cursor, point)) {
        EXPECT_EQ(list.get(), cursor);
        EXPECT_EQ(-1, point.x) << "a reader that fails must store nothing";
        return "none";
    }
    std::ostringstream out;
    out << point.x << " " << point.y << " " << point.z << " then " << (cursor ? cursor->restype : 0);
    return out.str();
}

// A nil follows each node; a 16-bit integer takes it for the second number of a point.
TEST(ArgumentReaders, acceptExactlyTheirNodeTypes) {
    const struct {
        short type;
        const char* readers;
    } rows[] = {
        {RTNONE_TYPE, "FV"}, {RTREAL, "RIDFV"}, {RTPOINT, "PFV"}, {RTSHORT, "IDPFV"}, {RTANG, "FV"},
        {RTSTR, "SFV"},      {RTENAME, "NFV"},  {RTPICKS, "FV"},  {RTORINT, "FV"},    {RT3DPOINT, "PFV"},
        {RTLONG, "IDFV"},    {RTVOID, "FV"},    {RTLB, "B"},      {RTLE, "Efv"},      {RTDOTE, "FV"},
        {RTNIL, "FV"},       {RTT, "FV"},       {8, "idFV"},      {10, "idPFV"},      {17, "idPFV"},
        {9, "idFV"},         {18, "idFV"},      {-1, "idFV"},     {999, "idFV"},      {1000, "FV"},
    };
    for (const auto& row : rows) {
        ValueList node = row.type == RTSTR ? makeList(int{RTSTR}, L"text") : makeNode(row.type);
        node->rbnext = makeNode(RTNIL).release();
        EXPECT_EQ(row.readers, acceptingReaders(node.get())) << "type " << row.type;
        if (row.type < 1000) {
            node->restype = RTNIL;  // the host frees group nodes by their kind of value; this one has none
        }
    }
}

TEST(ArgumentReaders, failWhenNoArgumentIsLeft) {
    ArgCursor none = nullptr;
    AcDbObjectId id;
    ads_name name = {0, 0};
    std::wstring text;
    double real = 0;
    int integer = 0;
    short variantBool = 0;
    bool flag = false;
    AcGePoint3d point;
    EXPECT_FALSE(readListBegin(none) || readListEnd(none) || readEntityName(none, name) ||
                 readObjectId(none, id) || readString(none, text) || readReal(none, real) ||
                 readInteger(none, integer) || readNumber(none, real) || readPoint(none, point) ||
                 readFlag(none, flag) || readVariantBool(none, variantBool));
    skipArg(none);
    EXPECT_EQ(nullptr, none);
}

TEST(ArgumentReaders, integersAreSignExtendedAndRealsTruncated) {
    EXPECT_EQ(-32768, integerOf(makeList(int{RTSHORT}, -32768)));
    EXPECT_EQ(-2147483647 - 1, integerOf(makeList(int{RTLONG}, std::numeric_limits<std::int32_t>::min())));
    EXPECT_EQ(2, integerOf(makeList(int{RTREAL}, 2.9)));
    EXPECT_EQ(-2, integerOf(makeList(int{RTREAL}, -2.9)));
    EXPECT_EQ(2147483647, integerOf(makeList(int{RTREAL}, 2147483647.9)));
    for (const double unfit : {2147483648.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(std::numeric_limits<int>::min(), integerOf(makeList(int{RTREAL}, unfit)));
    }
}

TEST(ArgumentReaders, groupCodeOfEntityDataIsItsOwnInteger) {
    const ValueList layer = makeList(8, L"walls");
    ArgCursor cursor = layer.get();
    int code = 0;
    double number = 0;
    EXPECT_TRUE(readInteger(cursor, code) && readNumber(cursor, number));
    EXPECT_EQ(8, code);
    EXPECT_EQ(8.0, number);
    EXPECT_EQ(layer.get(), cursor);
}

TEST(ArgumentReaders, pointsComeInEveryForm) {
    ads_point given = {1, 2, 3};
    ads_real* const point = given;
    EXPECT_EQ("1 2 0 then 0", pointOf(makeList(int{RTPOINT}, point)));
    EXPECT_EQ("1 2 3 then 5003", pointOf(makeList(int{RT3DPOINT}, point, int{RTSHORT}, 4)));
    EXPECT_EQ("1 2 3 then 0", pointOf(makeList(11, point)));
    EXPECT_EQ("1 2 0 then 0", pointOf(makeList(int{RTSHORT}, 1, int{RTSHORT}, 2)));
    EXPECT_EQ("-1 -2 -3 then 0", pointOf(makeList(int{RTSHORT}, -1, int{RTSHORT}, -2, int{RTSHORT}, -3)));
    EXPECT_EQ("1.5 70000 2 then 5001",
              pointOf(makeList(int{RTREAL}, 1.5, int{RTLONG}, 70000, int{RTSHORT}, 2, int{RTREAL}, 9.0)));
    EXPECT_EQ("1 2 0 then 5019", pointOf(makeList(int{RTSHORT}, 1, int{RTREAL}, 2.0, int{RTNIL})));
}

// After a 16-bit integer anything goes; after the other numbers a 16-bit integer does not.
TEST(ArgumentReaders, secondLooseNumberIsCheckedUnlessTheFirstIsShort) {
    EXPECT_EQ("none", pointOf(makeList(int{RTREAL}, 1.0, int{RTSTR}, L"text")));
    EXPECT_EQ("none", pointOf(makeList(int{RTREAL}, 1.0, int{RTSHORT}, 2)));
    EXPECT_EQ("none", pointOf(makeList(int{RTLONG}, 70000, int{RTSHORT}, 2)));
    EXPECT_EQ("none", pointOf(makeList(int{RTREAL}, 1.0)));
    EXPECT_EQ("none", pointOf(makeList(int{RTSTR}, L"text", int{RTREAL}, 1.0)));

    const ValueList list = makeList(int{RTSHORT}, 1, int{RTSTR}, L"text", int{RTNIL});
    ArgCursor cursor = list.get();
    AcGePoint3d point;
    EXPECT_TRUE(readPoint(cursor, point));
    EXPECT_EQ(1.0, point.x);
    EXPECT_EQ(RTNIL, cursor->restype);
}

TEST(ArgumentReaders, flagLeftOutAtTheEndOfAListIsFalse) {
    const ValueList list = makeList(int{RTLB}, int{RTLE});
    ArgCursor cursor = list.get();
    bool flag = true;
    short variantBool = 1;
    EXPECT_FALSE(readFlag(cursor, flag));
    EXPECT_TRUE(readListBegin(cursor));
    EXPECT_TRUE(readFlag(cursor, flag));
    EXPECT_TRUE(readVariantBool(cursor, variantBool));
    EXPECT_FALSE(flag);
    EXPECT_EQ(0, variantBool);
    EXPECT_TRUE(readListEnd(cursor));
    EXPECT_EQ(nullptr, cursor);
}

TEST(ArgumentReaders, onlyNilIsFalse) {
    const ValueList list = makeList(int{RTNIL}, int{RTSHORT}, 0, int{RTT});
    ArgCursor cursor = list.get();
    bool flag = true;
    short variantBool = 0;
    EXPECT_TRUE(readFlag(cursor, flag));
    EXPECT_FALSE(flag);
    EXPECT_TRUE(readFlag(cursor, flag));
    EXPECT_TRUE(flag) << "a zero is a value";
    EXPECT_TRUE(readVariantBool(cursor, variantBool));
    EXPECT_EQ(-1, variantBool);
}

TEST(ArgumentReaders, nameOfNoObjectGivesNoId) {
    ads_name madeUp = {12345, 0};
    const ValueList list = makeList(int{RTENAME}, &madeUp[0]);
    ArgCursor cursor = list.get();
    AcDbObjectId id;
    EXPECT_FALSE(readObjectId(cursor, id));
    EXPECT_EQ(list.get(), cursor);
    EXPECT_TRUE(id.isNull());
}

}  // namespace

}  // namespace tessary::testing
