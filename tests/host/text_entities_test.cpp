#include <gtest/gtest.h>

#include <memory>

#include "host/api/curves.h"
#include "host/api/database.h"
#include "host/api/text_entities.h"
#include "host/database/group_filer.h"
#include "host/text/mtext_layout.h"

using drafthost::DxfGroup;
using drafthost::GroupFiler;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTolerance = 1e-9;

// A drawing with the style "Arial", and texts that use it.
class TextEntities : public testing::Test {
protected:
    void SetUp() override {
        AcDbTextStyleTable* table = nullptr;
        ASSERT_EQ(drawing_.getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        auto* style = new AcDbTextStyleTableRecord();
        style->setName(L"Arial");
        style->setFileName(L"arial.ttf");
        ASSERT_EQ(table->add(style_, style), Acad::eOk);
        style->close();
        table->close();
    }

    std::unique_ptr<AcDbMText> makeMText(const wchar_t* contents, double width = 0) const {
        auto text = std::make_unique<AcDbMText>();
        EXPECT_EQ(text->setTextStyle(style_), Acad::eOk);
        text->setTextHeight(2);
        text->setWidth(width);
        text->setContents(contents);
        return text;
    }

    // A copy of the entity made by writing its groups and reading them.
    template <class T>
    std::unique_ptr<T> throughGroups(const T& entity, AcDb::FilerType type,
                                     std::vector<DxfGroup>* groups = nullptr) {
        GroupFiler out(&drawing_, type);
        EXPECT_EQ(entity.dxfOutFields(&out), Acad::eOk);
        if (groups)
            *groups = out.groups();
        GroupFiler in(&drawing_, out.groups(), type);
        auto copy = std::make_unique<T>();
        EXPECT_EQ(copy->dxfInFields(&in), Acad::eOk) << std::string(in.problem().begin(), in.problem().end());
        return copy;
    }

    AcDbDatabase drawing_{true, true};
    AcDbObjectId style_;
};

std::wstring contentsOf(const AcDbMText& text) {
    ACHAR* raw = text.contents();
    std::wstring contents = raw;
    acutDelString(raw);
    return contents;
}

AcDbExtents extentsOf(const AcDbEntity& entity) {
    AcDbExtents extents;
    EXPECT_EQ(entity.getGeomExtents(extents), Acad::eOk);
    return extents;
}

template <class Value>
const Value* valueOf(const std::vector<DxfGroup>& groups, short code) {
    for (const DxfGroup& group : groups) {
        if (group.code == code)
            return std::get_if<Value>(&group.value);
    }
    return nullptr;
}

// The last line's width, found by taking words off the end until the text has lost a line; programs measure
// so.
double lastLineWidth(AcDbMText& text) {
    std::wstring rest = contentsOf(text);
    while (rest.find(L"\\P") != rest.npos)
        rest.erase(0, rest.find(L"\\P") + 2);
    text.setContents(rest.c_str());
    const double whole = text.actualHeight(), unit = text.textHeight();
    std::wstring line;
    for (bool done = 2 * unit > whole; !done;) {
        const std::size_t blank = rest.find_last_of(L' ');
        const std::size_t start = blank == rest.npos ? 0 : blank;
        line.insert(0, rest.substr(start));
        rest.erase(start);
        text.setContents(rest.c_str());
        done = rest.empty() || whole >= text.actualHeight() + unit;
    }
    text.setContents(line.empty() ? rest.c_str() : line.c_str());
    return text.actualWidth();
}

void expectNear(const AcGePoint3d& actual, const AcGePoint3d& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-9);
    EXPECT_NEAR(actual.y, expected.y, 1e-9);
    EXPECT_NEAR(actual.z, expected.z, 1e-9);
}

}  // namespace

TEST_F(TextEntities, MeasuresOfSeveralLines) {
    const auto text = makeMText(L"HEIGHT");
    EXPECT_DOUBLE_EQ(text->actualHeight(), 2);
    EXPECT_DOUBLE_EQ(text->ascent(), 2);
    EXPECT_DOUBLE_EQ(text->descent(), 0);
    const double width = text->actualWidth();
    text->setContents(L"HEIGHT\\Pg");
    EXPECT_GE(text->actualHeight(), 4);
    EXPECT_DOUBLE_EQ(text->actualWidth(), width);
    EXPECT_GT(text->descent(), 0.3);
}

TEST_F(TextEntities, LastLineIsFoundByTakingWordsOff) {
    const auto word = makeMText(L" ccc dd");
    const double expected = word->actualWidth();
    const auto text = makeMText(L"first\\Paaaa bbb ccc dd");
    const auto measure = makeMText(L"aaaa bbb");
    text->setWidth(measure->actualWidth() * 1.05);
    EXPECT_NEAR(lastLineWidth(*text), expected, kTolerance);
    const auto single = makeMText(L"only one");
    const double whole = single->actualWidth();
    EXPECT_NEAR(lastLineWidth(*single), whole, kTolerance);
}

TEST_F(TextEntities, SettersRefuseWhatIsNoText) {
    const auto text = makeMText(L"abc");
    const double nan = std::nan("");
    EXPECT_EQ(text->setContents(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(text->setTextHeight(0), Acad::eInvalidInput);
    EXPECT_EQ(text->setTextHeight(nan), Acad::eInvalidInput);
    EXPECT_EQ(text->setWidth(-1), Acad::eInvalidInput);
    EXPECT_EQ(text->setLocation({0, nan, 0}), Acad::eInvalidInput);
    EXPECT_EQ(text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(0)), Acad::eInvalidInput);
    EXPECT_EQ(text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(10)), Acad::eInvalidInput);
    EXPECT_EQ(text->attachment(), AcDbMText::kTopLeft);
    EXPECT_EQ(text->setNormal({0, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(text->setDirection({0, 0, 5}), Acad::eInvalidInput);
    EXPECT_EQ(text->setDirection({nan, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(text->setTextStyle(drawing_.layerZero()), Acad::eWrongObjectType);
    EXPECT_EQ(text->textStyle(), style_);
    EXPECT_EQ(text->setLineSpacingFactor(5), Acad::eInvalidInput);
    EXPECT_EQ(text->setBackgroundScaleFactor(0.5), Acad::eInvalidInput);

    AcDbText line({0, 0, 0}, L"abc", style_, 2);
    EXPECT_EQ(line.setHeight(nan), Acad::eInvalidInput);
    EXPECT_EQ(line.setHorizontalMode(6), Acad::eInvalidInput);
    EXPECT_EQ(line.setRotation(nan), Acad::eInvalidInput);
    EXPECT_EQ(line.setTextString(nullptr), Acad::eInvalidInput);
    EXPECT_DOUBLE_EQ(line.height(), 2);
}

TEST_F(TextEntities, DirectionNormalAndRotation) {
    const auto text = makeMText(L"abc");
    EXPECT_EQ(text->setDirection({0, 3, 0}), Acad::eOk);
    EXPECT_NEAR(text->direction().y, 1, kTolerance);
    EXPECT_NEAR(text->rotation(), kPi / 2, kTolerance);
    text->setRotation(kPi);
    EXPECT_NEAR(text->direction().x, -1, kTolerance);
    EXPECT_EQ(text->setNormal({0, -2, 0}), Acad::eOk);
    EXPECT_NEAR(text->normal().y, -1, kTolerance);
    EXPECT_NEAR(text->direction().dotProduct(text->normal()), 0, kTolerance);
}

TEST_F(TextEntities, BackgroundFlagsAreIndependentOfTheirOrder) {
    const auto text = makeMText(L"abc");
    text->setBackgroundFill(false);
    text->setUseBackgroundColor(true);
    EXPECT_FALSE(text->backgroundFillOn());
    EXPECT_TRUE(text->useBackgroundColorOn());
    text->setBackgroundFill(true);
    text->setBackgroundScaleFactor(1.25);
    std::vector<DxfGroup> groups;
    const auto copy = throughGroups(*text, AcDb::kFileFiler, &groups);
    EXPECT_TRUE(copy->backgroundFillOn() && copy->useBackgroundColorOn());
    EXPECT_DOUBLE_EQ(copy->backgroundScaleFactor(), 1.25);
    ASSERT_TRUE(valueOf<std::int64_t>(groups, 90));
    EXPECT_EQ(*valueOf<std::int64_t>(groups, 90), 3);
}

TEST_F(TextEntities, LongContentsAreFiledInPieces) {
    for (const std::size_t length : {0u, 1u, 249u, 250u, 251u, 500u, 1234u}) {
        SCOPED_TRACE(length);
        std::wstring contents;
        while (contents.size() < length)
            contents.push_back(static_cast<wchar_t>(L'a' + contents.size() % 26));
        const auto text = makeMText(contents.c_str());
        std::vector<DxfGroup> groups;
        EXPECT_EQ(contentsOf(*throughGroups(*text, AcDb::kFileFiler, &groups)), contents);
        std::size_t pieces = 0, last = 0;
        for (const DxfGroup& group : groups) {
            if (group.code == 3 || group.code == 1) {
                EXPECT_LE(std::get<std::wstring>(group.value).size(), 250u);
            }
            pieces += group.code == 3;
            last += group.code == 1;
        }
        EXPECT_EQ(pieces, length == 0 ? 0 : (length - 1) / 250);
        EXPECT_EQ(last, 1u);
    }
    const std::wstring pair = std::wstring(249, L'x') + L"\xD83D\xDE00" + L"y";
    EXPECT_EQ(contentsOf(*throughGroups(*makeMText(pair.c_str()), AcDb::kFileFiler)), pair);
}

TEST_F(TextEntities, MTextKeepsItsDataThroughGroups) {
    const auto text = makeMText(L"abc\\Pdef", 12);
    text->setLocation({1, 2, 3});
    text->setRotation(0.7);
    text->setAttachment(AcDbMText::kMiddleRight);
    text->setLineSpacingFactor(1.5);
    for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kBagFiler}) {
        const auto copy = throughGroups(*text, type);
        expectNear(copy->location(), {1, 2, 3});
        EXPECT_NEAR(copy->rotation(), 0.7, kTolerance);
        EXPECT_EQ(copy->attachment(), AcDbMText::kMiddleRight);
        EXPECT_DOUBLE_EQ(copy->width(), 12);
        EXPECT_DOUBLE_EQ(copy->lineSpacingFactor(), 1.5);
        EXPECT_EQ(copy->textStyle(), style_);
        EXPECT_DOUBLE_EQ(copy->actualHeight(), text->actualHeight());
    }
}

// Group 50 is degrees in files; of 11 and 50 the last one counts.
TEST_F(TextEntities, LastDirectionGroupCounts) {
    const auto read = [&](std::vector<DxfGroup> groups, AcDb::FilerType type) {
        groups.insert(groups.begin(), {{100, std::wstring(L"AcDbEntity")},
                                       {8, std::wstring(L"0")},
                                       {100, std::wstring(L"AcDbMText")},
                                       {40, 2.0},
                                       {1, std::wstring(L"a")}});
        GroupFiler in(&drawing_, std::move(groups), type);
        AcDbMText text;
        EXPECT_EQ(text.dxfInFields(&in), Acad::eOk);
        return text.rotation();
    };
    const DxfGroup upward{11, AcGePoint3d(0, 4, 0)};
    EXPECT_NEAR(read({upward, {50, 180.0}}, AcDb::kFileFiler), kPi, kTolerance);
    EXPECT_NEAR(read({{50, 180.0}, upward}, AcDb::kFileFiler), kPi / 2, kTolerance);
    EXPECT_NEAR(read({{50, 0.5}}, AcDb::kBagFiler), 0.5, kTolerance);
}

TEST_F(TextEntities, BadGroupsLeaveTheTextAsItWas) {
    const auto text = makeMText(L"kept");
    const std::vector<DxfGroup> bad[] = {{{40, 0.0}},
                                         {{40, -1.0}},
                                         {{71, std::int64_t{12}}},
                                         {{41, -3.0}},
                                         {{11, AcGePoint3d(0, 0, 0)}},
                                         {{44, 0.0}},
                                         {{40, std::wstring(L"x")}}};
    for (const std::vector<DxfGroup>& groups : bad) {
        std::vector<DxfGroup> all{{100, std::wstring(L"AcDbEntity")},
                                  {100, std::wstring(L"AcDbMText")},
                                  {1, std::wstring(L"lost")}};
        all.insert(all.end(), groups.begin(), groups.end());
        GroupFiler in(&drawing_, all);
        EXPECT_NE(text->dxfInFields(&in), Acad::eOk) << groups[0].code;
        EXPECT_FALSE(in.problem().empty());
        EXPECT_EQ(contentsOf(*text), L"kept");
        EXPECT_DOUBLE_EQ(text->textHeight(), 2);
    }
}

// The embedded copy that newer files append has groups of the same codes.
TEST_F(TextEntities, EmbeddedObjectIsKeptApart) {
    std::vector<DxfGroup> groups{{100, std::wstring(L"AcDbEntity")}, {100, std::wstring(L"AcDbMText")},
                                 {10, AcGePoint3d(1, 2, 0)},         {40, 2.0},
                                 {1, std::wstring(L"own")},          {101, std::wstring(L"Embedded Object")},
                                 {10, AcGePoint3d(1, 0, 0)},         {40, 77.0}};
    GroupFiler in(&drawing_, groups);
    AcDbMText text;
    ASSERT_EQ(text.dxfInFields(&in), Acad::eOk);
    expectNear(text.location(), {1, 2, 0});
    EXPECT_DOUBLE_EQ(text.textHeight(), 2);
    std::vector<DxfGroup> written;
    throughGroups(text, AcDb::kFileFiler, &written);
    EXPECT_EQ(*valueOf<std::wstring>(written, 101), L"Embedded Object");
    EXPECT_DOUBLE_EQ(std::get<double>(written.back().value), 77.0);
    text.setContents(L"changed");
    throughGroups(text, AcDb::kFileFiler, &written);
    EXPECT_FALSE(valueOf<std::wstring>(written, 101));
}

TEST_F(TextEntities, TextKeepsItsDataThroughGroups) {
    AcDbText text({1, 2, 0}, L"abc %%d", style_, 2, 0.5);
    text.setHorizontalMode(2);
    text.setVerticalMode(3);
    text.setAlignmentPoint({10, 10, 0});
    for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kBagFiler}) {
        std::vector<DxfGroup> groups;
        const auto copy = throughGroups(text, type, &groups);
        EXPECT_STREQ(copy->textString(), L"abc %%d");
        EXPECT_NEAR(copy->rotation(), 0.5, kTolerance);
        EXPECT_EQ(copy->horizontalMode(), 2);
        EXPECT_EQ(copy->verticalMode(), 3);
        expectNear(copy->alignmentPoint(), {10, 10, 0});
        expectNear(copy->position(), text.position());
        const double angle = *valueOf<double>(groups, 50);
        EXPECT_NEAR(angle, type == AcDb::kFileFiler ? 0.5 * 180 / kPi : 0.5, kTolerance);
    }
}

TEST_F(TextEntities, AttributesKeepTheirDataThroughGroups) {
    const auto make = [&](const wchar_t* subclass) {
        return std::vector<DxfGroup>{{100, std::wstring(L"AcDbEntity")},
                                     {100, std::wstring(L"AcDbText")},
                                     {10, AcGePoint3d(1, 2, 0)},
                                     {40, 3.0},
                                     {1, std::wstring(L"value")},
                                     {72, std::int64_t{1}},
                                     {11, AcGePoint3d(5, 6, 0)},
                                     {100, std::wstring(subclass)},
                                     {280, std::int64_t{0}},
                                     {2, std::wstring(L"TAG")},
                                     {70, std::int64_t{9}},
                                     {73, std::int64_t{0}},
                                     {74, std::int64_t{2}},
                                     {280, std::int64_t{1}}};
    };
    GroupFiler in(&drawing_, make(L"AcDbAttribute"));
    AcDbAttribute attribute;
    ASSERT_EQ(attribute.dxfInFields(&in), Acad::eOk);
    std::vector<DxfGroup> groups;
    const auto copy = throughGroups(attribute, AcDb::kFileFiler, &groups);
    EXPECT_STREQ(copy->tag(), L"TAG");
    EXPECT_STREQ(copy->textString(), L"value");
    EXPECT_EQ(copy->flags(), 9);
    EXPECT_EQ(copy->verticalMode(), 2);
    EXPECT_EQ(*valueOf<std::int64_t>(groups, 280), 0);  // the version stands first
    EXPECT_EQ(std::get<std::int64_t>(groups.back().value), 1);

    GroupFiler definitionIn(&drawing_, make(L"AcDbAttributeDefinition"));
    AcDbAttributeDefinition definition;
    ASSERT_EQ(definition.dxfInFields(&definitionIn), Acad::eOk);
    EXPECT_STREQ(throughGroups(definition, AcDb::kBagFiler)->tag(), L"TAG");
}

TEST_F(TextEntities, JustifiedTextIsPlacedFromItsAlignmentPoint) {
    AcDbText text({0, 0, 0}, L"HIH", style_, 2);
    const double width = extentsOf(text).maxPoint().x;
    text.setAlignmentPoint({100, 50, 0});
    text.setHorizontalMode(2);
    expectNear(text.position(), {100 - width, 50, 0});
    text.setVerticalMode(3);
    expectNear(text.position(), {100 - width, 48, 0});
    text.setHorizontalMode(1);
    text.setVerticalMode(2);
    expectNear(text.position(), {100 - width / 2, 49, 0});
    text.setRotation(kPi / 2);
    expectNear(text.position(), {101, 50 - width / 2, 0});

    AcDbText fit({10, 10, 0}, L"HIH", style_, 2);
    fit.setAlignmentPoint({10, 30, 0});
    fit.setHorizontalMode(5);
    EXPECT_NEAR(extentsOf(fit).maxPoint().y, 30, 1e-6);
    EXPECT_NEAR(extentsOf(fit).minPoint().x, 8, 1e-6);
    fit.setHorizontalMode(3);
    EXPECT_NEAR(extentsOf(fit).maxPoint().y, 30, 1e-6);
    EXPECT_NEAR(10 - extentsOf(fit).minPoint().x, 2 * 20 / width, 1e-6);
}

TEST_F(TextEntities, EmptyTextHasItsPointAsExtents) {
    AcDbText text({3, 4, 5}, L"", style_, 2);
    expectNear(extentsOf(text).minPoint(), {3, 4, 5});
    expectNear(extentsOf(text).maxPoint(), {3, 4, 5});
    const auto paragraph = makeMText(L"");
    paragraph->setLocation({6, 7, 8});
    expectNear(extentsOf(*paragraph).maxPoint(), {6, 7, 8});
}

// A mirrored text covers the mirrored box and still reads from left to right.
TEST_F(TextEntities, MirroringKeepsTextReadable) {
    AcDbText line({1, 0, 0}, L"HIH", style_, 2);
    const double width = extentsOf(line).maxPoint().x - 1;
    ASSERT_EQ(line.transformBy(AcGeMatrix3d::mirroring({0, 0, 0}, {0, 1, 0})), Acad::eOk);
    expectNear(line.position(), {-1 - width, 0, 0});
    EXPECT_NEAR(line.rotation(), 0, kTolerance);
    EXPECT_NEAR(line.normal().z, 1, kTolerance);
    ASSERT_EQ(line.transformBy(AcGeMatrix3d::mirroring({0, 0, 0}, {1, 0, 0})), Acad::eOk);
    expectNear(line.position(), {-1 - width, -2, 0});

    for (int attachment = 1; attachment <= 9; ++attachment) {
        SCOPED_TRACE(attachment);
        const auto text = makeMText(L"HIH\\PHIH");
        text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(attachment));
        text->setLocation({5, 5, 0});
        const AcDbExtents before = extentsOf(*text);
        ASSERT_EQ(text->transformBy(AcGeMatrix3d::mirroring({0, 0, 0}, {0, 1, 0})), Acad::eOk);
        const AcDbExtents after = extentsOf(*text);
        expectNear(after.minPoint(), {-before.maxPoint().x, before.minPoint().y, 0});
        expectNear(after.maxPoint(), {-before.minPoint().x, before.maxPoint().y, 0});
        EXPECT_NEAR(text->direction().x, 1, kTolerance);
    }
}

TEST_F(TextEntities, ScalingScalesHeightWidthAndHeightCodes) {
    const auto text = makeMText(L"HI {\\H3;HI} {\\H2x;I}", 40);
    const AcDbExtents before = extentsOf(*text);
    ASSERT_EQ(text->transformBy(AcGeMatrix3d::scaling(10)), Acad::eOk);
    EXPECT_NEAR(text->textHeight(), 20, kTolerance);
    EXPECT_NEAR(text->width(), 400, kTolerance);
    EXPECT_NEAR(extentsOf(*text).maxPoint().x, 10 * before.maxPoint().x, 1e-5);
    EXPECT_NEAR(extentsOf(*text).minPoint().y, 10 * before.minPoint().y, 1e-5);

    AcGeMatrix3d skewed;
    skewed.entry[0][0] = 2;
    EXPECT_EQ(text->transformBy(skewed), Acad::eNonUniformScale);
    EXPECT_NEAR(text->textHeight(), 20, kTolerance);
}

TEST_F(TextEntities, ExplodingGivesTheDrawnRuns) {
    const auto text = makeMText(L"ab{\\C3;cd}\\P\\Lef\\l \\S1/2;");
    text->setLocation({10, 20, 0});
    AcDbEntityArray parts;
    ASSERT_EQ(text->explode(parts), Acad::eOk);
    std::vector<std::unique_ptr<AcDbEntity>> owned(parts.begin(), parts.end());
    ASSERT_EQ(parts.length(), 6);  // ab, cd, underlined ef, 1, 2, the bar
    const AcDbText* first = AcDbText::cast(parts[0]);
    ASSERT_TRUE(first);
    EXPECT_STREQ(first->textString(), L"ab");
    expectNear(first->position(), {10, 18, 0});
    EXPECT_EQ(parts[1]->colorIndex(), 3);
    EXPECT_STREQ(AcDbText::cast(parts[2])->textString(), L"%%uef");
    EXPECT_TRUE(AcDbLine::cast(parts[5]));
    AcDbExtents together;
    for (const auto& part : owned)
        part->getGeomExtents(together);
    EXPECT_NEAR(together.maxPoint().x, extentsOf(*text).maxPoint().x, 1e-9);
}
