#include <gtest/gtest.h>

#include "host/api/text_entities.h"
#include "host/database/text_states.h"
#include "host/text/mtext_layout.h"

namespace {

// Writes down what is drawn, one word a call: "color 3", "text ab", "line", "area", "background".
class Recorder : public AcGiWorldDraw, public AcGiSubEntityTraits, public AcGiWorldGeometry {
public:
    std::vector<std::wstring> calls;
    std::vector<AcGePoint3d> area, line;
    AcGePoint3d textAt;
    double textSize = 0;

    AcGiWorldGeometry& geometry() const override { return const_cast<Recorder&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<Recorder&>(*this); }
    double deviation() const override { return 0.01; }

    void setColor(std::uint16_t index) override { calls.push_back(L"color " + std::to_wstring(index)); }
    std::uint16_t color() const override { return 256; }
    void setBackgroundColor() override { calls.push_back(L"background"); }
    void setTrueColor(std::uint32_t rgb) override { calls.push_back(L"rgb " + std::to_wstring(rgb)); }
    void setLayer(AcDbObjectId) override {}
    AcDbObjectId layerId() const override { return {}; }
    void setLineType(AcDbObjectId) override {}
    AcDbObjectId lineTypeId() const override { return {}; }
    void setLineTypeScale(double) override {}
    double lineTypeScale() const override { return 1; }
    void setLineWeight(int) override {}
    int lineWeight() const override { return -1; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool) override {}

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d*,
                  std::int64_t) override {
        calls.push_back(L"line");
        line.assign(points, points + count);
        return false;
    }
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override {
        calls.push_back(L"area");
        area.assign(points, points + count);
        return false;
    }
    bool polyPolygon(std::uint32_t, const std::uint32_t*, const AcGePoint3d*) override { return false; }
    bool circle(const AcGePoint3d&, double, const AcGeVector3d&) override { return false; }
    bool circularArc(const AcGePoint3d&, double, const AcGeVector3d&, const AcGeVector3d&, double) override {
        return false;
    }
    bool text(const AcGePoint3d& position, const AcGeVector3d&, const AcGeVector3d&, const ACHAR* message,
              int length, const AcGiTextStyle& style) override {
        calls.push_back(L"text " + std::wstring(message, static_cast<std::size_t>(length)));
        textAt = position;
        textSize = style.textSize;
        return false;
    }
    bool draw(AcGiDrawable* drawable) override { return drawable->worldDraw(this); }
    void pushModelTransform(const AcGeMatrix3d&) override {}
    void popModelTransform() override {}
};

std::vector<std::wstring> drawn(AcDbEntity& entity) {
    Recorder recorder;
    EXPECT_TRUE(entity.worldDraw(&recorder));
    return recorder.calls;
}

using Calls = std::vector<std::wstring>;

}  // namespace

TEST(TextDrawing, RunsHaveTheirColorsAndTheEntitysComesBack) {
    AcDbMText text;
    text.setColorIndex(5);
    text.setContents(L"a{\\C3;b}c{\\c255;d}");
    EXPECT_EQ(drawn(text), (Calls{L"text a", L"color 3", L"text b", L"color 5", L"text c", L"rgb 16711680",
                                  L"text d", L"color 5"}));
    text.setContents(L"\\Lab\\l c");
    EXPECT_EQ(drawn(text), (Calls{L"text ab", L"text  c", L"line"}));
}

TEST(TextDrawing, BackgroundLiesBehindTheText) {
    AcDbMText text;
    text.setTextHeight(2);
    text.setContents(L"HHH");
    text.setBackgroundScaleFactor(1.5);
    text.setUseBackgroundColor(true);
    EXPECT_EQ(drawn(text), (Calls{L"text HHH"}));
    text.setBackgroundFill(true);
    Recorder recorder;
    text.worldDraw(&recorder);
    EXPECT_EQ(recorder.calls, (Calls{L"background", L"area", L"color 256", L"text HHH"}));
    ASSERT_EQ(recorder.area.size(), 4u);
    EXPECT_NEAR(recorder.area[0].x, -1, 1e-9);
    EXPECT_NEAR(recorder.area[0].y, -3, 1e-9);
    EXPECT_NEAR(recorder.area[2].x, text.actualWidth() + 1, 1e-9);
    EXPECT_NEAR(recorder.area[2].y, 1, 1e-9);
    text.setContents(L"");
    EXPECT_TRUE(drawn(text).empty());
}

TEST(TextDrawing, SingleLineTextDrawsWithoutItsCodes) {
    AcDbText text({1, 2, 0}, L"%%uab%%u 5%%d", AcDbObjectId::kNull, 3);
    Recorder recorder;
    text.worldDraw(&recorder);
    EXPECT_EQ(recorder.calls, (Calls{L"text ab", L"line", L"text  5\u00B0"}));
    EXPECT_NEAR(recorder.line.at(0).x, 1, 1e-9);
    EXPECT_NEAR(recorder.line.at(0).y, 2 + 3 * drafthost::text::kUnderline, 1e-9);
    EXPECT_NEAR(recorder.textAt.x, recorder.line.at(1).x, 1e-9);
    EXPECT_DOUBLE_EQ(recorder.textSize, 3);
}

TEST(TextDrawing, AttributesShowTagOrTextOrNothing) {
    const auto setFlags = [](AcDbText& text, std::int32_t flags) {
        auto& state = static_cast<drafthost::AttributeState&>(*drafthost::ObjectImp::of(&text).state);
        state.flags = flags;
    };
    AcDbAttributeDefinition definition;
    definition.setTag(L"ROOM");
    definition.setTextString(L"101");
    EXPECT_EQ(drawn(definition), (Calls{L"text ROOM"}));
    setFlags(definition, drafthost::AttributeState::kConstant);
    EXPECT_EQ(drawn(definition), (Calls{L"text 101"}));

    AcDbAttribute attribute;
    attribute.setTextString(L"101");
    EXPECT_EQ(drawn(attribute), (Calls{L"text 101"}));
    setFlags(attribute, drafthost::AttributeState::kInvisible);
    EXPECT_TRUE(drawn(attribute).empty());
}
