// An entity that draws others as parts of itself: how they look, where they can be picked, and what is left
// to be seen when its class goes.

#include "host/database/proxy_graphics.h"
#include "host/database/unknown_objects.h"
#include "host/editor/entity_outline.h"
#include "host/graphics/display_builder.h"
#include "tests/host/database_drawing.h"

using namespace drafthost;
using graphics::Arc2d;
using graphics::buildDisplayList;
using graphics::DisplayItem;
using graphics::Polyline2d;
using graphics::Rgb;

namespace {

constexpr Rgb kRed{255, 0, 0}, kYellow{255, 255, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255},
    kWhite{255, 255, 255};

// A line from the origin along x with a symbol at its end. The symbol is in no database.
class Flag : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(Flag)
    static AcRxClass* registered;
    AcDbBlockReference symbol{AcGePoint3d(10, 0, 0), AcDbObjectId()};
    bool lineAfterSymbol = false;
    AcDbObjectId layerOfSymbol;  // null: the flag's

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override {
        const AcGePoint3d line[] = {{0, 0, 0}, {10, 0, 0}};
        worldDraw->geometry().polyline(2, line);
        worldDraw->subEntityTraits().setLayer(layerOfSymbol.isNull() ? layerId() : layerOfSymbol);
        const bool complete = worldDraw->geometry().draw(&symbol);
        if (lineAfterSymbol)
            worldDraw->geometry().polyline(2, line);
        return complete;
    }
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override {
        extents.addPoint({0, 0, 0});
        return symbol.getGeomExtents(extents);
    }
};
AcRxClass* Flag::registered = nullptr;
AcRxClass* Flag::desc() {
    return registered;
}
AcRxClass* Flag::isA() const {
    return registered;
}

class EmbeddedGraphics : public DrawingTest {
protected:
    void SetUp() override {
        Flag::registered = newAcRxClass(
            L"TestFlag", L"AcDbEntity", 1, 1, 1, []() -> AcRxObject* { return new Flag; }, L"TESTFLAG",
            L"\"Flags|Nobody|none\"");
        acrxBuildClassHierarchy();
        red_ = addLayer(L"RED", 1);
        yellow_ = addLayer(L"YELLOW", 2);
        green_ = addLayer(L"GREEN", 3);
        symbol_ = addBlock();
    }
    void TearDown() override {
        if (Flag::registered)
            deleteAcRxClass(Flag::registered);
    }
    void removeClass() {
        deleteAcRxClass(Flag::registered);
        Flag::registered = nullptr;
    }

    AcDbObjectId addLayer(const ACHAR* name, std::uint16_t color) {
        auto* const layer = new AcDbLayerTableRecord;
        layer->setColorIndex(color);
        return addRecord<AcDbLayerTable>(name, layer);
    }
    template <class Change>
    void changeLayer(AcDbObjectId layer, Change change) {
        const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForWrite);
        change(*record);
    }

    // A circle by layer on layer "0", an arc by block, a line on YELLOW.
    AcDbObjectId addBlock() {
        const AcDbObjectId block = addRecord<AcDbBlockTable, AcDbBlockTableRecord>(L"SYMBOL");
        auto* const byBlock = new AcDbArc(AcGePoint3d(), 0.5, 0, 1);
        byBlock->setColorIndex(0);
        auto* const line = new AcDbLine(AcGePoint3d(), AcGePoint3d(1, 0, 0));
        line->setLayer(yellow_);
        append(new AcDbCircle(AcGePoint3d(), AcGeVector3d::kZAxis, 1), block);
        append(byBlock, block);
        append(line, block);
        return block;
    }

    template <class Change>
    AcDbObjectId addFlag(Change change) {
        auto* const flag = new Flag;
        flag->symbol.setBlockTableRecord(symbol_);
        flag->setLayer(red_);
        change(*flag);
        return append(flag);
    }
    AcDbObjectId addFlag() {
        return addFlag([](Flag&) {});
    }

    // Colours in the order of drawing: line, circle, arc by block, line on YELLOW.
    std::vector<Rgb> colors() {
        std::vector<Rgb> result;
        for (const DisplayItem& item : buildDisplayList(db()).items)
            result.push_back(item.color);
        return result;
    }
    std::size_t outlines(AcDbObjectId id) const {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        return editor::outlineOf(*entity).lines.size();
    }

    AcDbObjectId red_, yellow_, green_, symbol_;
};

using Colors = std::vector<Rgb>;

TEST_F(EmbeddedGraphics, SymbolWithoutLayerLiesOnTheOneThatItsOwnerChose) {
    addFlag();
    EXPECT_EQ(colors(), (Colors{kRed, kRed, kRed, kYellow}));
}

TEST_F(EmbeddedGraphics, SymbolTakesItsLookFromItsOwnProperties) {
    addFlag([&](Flag& flag) {
        flag.setColorIndex(6);  // the owner's colour is not the symbol's
        flag.symbol.setLayer(green_, true, false);
        flag.symbol.setColorIndex(5);
        flag.lineAfterSymbol = true;
    });
    // By block is the reference's colour; layer "0" of the block is the reference's layer. The owner goes on
    // with its colour.
    EXPECT_EQ(colors(), (Colors{{255, 0, 255}, kGreen, kBlue, kYellow, {255, 0, 255}}));
}

TEST_F(EmbeddedGraphics, LayerThatTheOwnerSetStaysAfterTheSymbol) {
    addFlag([&](Flag& flag) {
        flag.layerOfSymbol = green_;
        flag.lineAfterSymbol = true;
    });
    EXPECT_EQ(colors(), (Colors{kRed, kGreen, kGreen, kYellow, kGreen}));
}

TEST_F(EmbeddedGraphics, LayersHideWhatLiesOnThem) {
    const AcDbObjectId id = addFlag([&](Flag& flag) {
        flag.symbol.setLayer(green_, true, false);
        flag.lineAfterSymbol = true;
    });
    changeLayer(yellow_, [](auto& layer) { layer.setIsFrozen(true); });
    EXPECT_EQ(colors(), (Colors{kRed, kGreen, kGreen, kRed}));
    EXPECT_EQ(outlines(id), 4u);
    changeLayer(yellow_, [](auto& layer) { layer.setIsFrozen(false); });
    changeLayer(green_, [](auto& layer) { layer.setIsOff(true); });
    EXPECT_EQ(colors(), (Colors{kRed, kYellow, kRed})) << "off hides the layer alone";
    EXPECT_EQ(outlines(id), 3u);
    changeLayer(green_, [](auto& layer) { layer.setIsFrozen(true); });
    EXPECT_EQ(colors(), (Colors{kRed, kRed})) << "frozen hides what is inside";
    EXPECT_EQ(outlines(id), 2u);
    changeLayer(red_, [](auto& layer) { layer.setIsOff(true); });
    EXPECT_EQ(colors(), Colors());
}

TEST_F(EmbeddedGraphics, NullBlocksAndZeroScalesDrawNothing) {
    const AcDbObjectId without =
        addFlag([](Flag& flag) { EXPECT_EQ(flag.symbol.setBlockTableRecord(AcDbObjectId()), Acad::eOk); });
    const AcDbObjectId shrunk = addFlag([](Flag& flag) {
        EXPECT_EQ(flag.symbol.setScaleFactors({0, 0, 0}), Acad::eOk);
    });
    EXPECT_EQ(colors(), (Colors{kRed, kRed}));
    EXPECT_EQ(outlines(without) + outlines(shrunk), 2u);
    const AcDbObjectPointer<AcDbEntity> entity(shrunk, AcDb::kForRead);
    AcDbExtents extents;
    EXPECT_EQ(entity->getGeomExtents(extents), Acad::eOk);
    EXPECT_EQ(extents.maxPoint().x, 10) << "the place of the symbol";
}

TEST_F(EmbeddedGraphics, ExplodedSymbolKeepsItsLook) {
    AcDbBlockReference symbol(AcGePoint3d(10, 0, 0), symbol_);
    symbol.setColorIndex(5);
    const auto layersAndColors = [&] {
        AcDbEntityArray parts;
        EXPECT_EQ(symbol.explode(parts), Acad::eOk);
        std::vector<std::pair<AcDbObjectId, int>> looks;
        for (AcDbEntity* const part : parts) {
            const std::unique_ptr<AcDbEntity> owned(part);
            looks.emplace_back(part->layerId(), part->colorIndex());
        }
        return looks;
    };
    using Looks = std::vector<std::pair<AcDbObjectId, int>>;
    const AcDbObjectId zero = db().layerZero();
    EXPECT_EQ(layersAndColors(), (Looks{{zero, 256}, {zero, 5}, {yellow_, 256}}));
    symbol.setLayer(green_, true, false);
    EXPECT_EQ(layersAndColors(), (Looks{{green_, 256}, {green_, 5}, {yellow_, 256}}));
}

// --- the class goes ---

TEST_F(EmbeddedGraphics, ProxyLooksAsItsObjectDid) {
    addFlag([&](Flag& flag) {
        flag.symbol.setLayer(green_, true, false);
        flag.symbol.setRotation(1);
        flag.symbol.setScaleFactors({-2, 2, 2});
    });
    const auto before = buildDisplayList(db()).items;
    removeClass();
    const auto after = buildDisplayList(db()).items;
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(before[i].color, after[i].color) << i;
        ASSERT_EQ(before[i].shape.index(), after[i].shape.index()) << i;
        const auto* const arc = std::get_if<Arc2d>(&before[i].shape);
        for (int part = 0; arc && part <= 2; ++part) {
            const AcGePoint2d shown = std::get<Arc2d>(after[i].shape).at(part / 2.0);
            EXPECT_NEAR(shown.distanceTo(arc->at(part / 2.0)), 0, 1e-9) << i;
        }
        const auto* const line = std::get_if<Polyline2d>(&before[i].shape);
        for (std::size_t p = 0; line && p < line->points.size(); ++p) {
            EXPECT_NEAR(line->points[p].distanceTo(std::get<Polyline2d>(after[i].shape).points[p]), 0, 1e-9);
        }
    }
}

TEST_F(EmbeddedGraphics, ProxyFollowsItsLayersAndIsPickedWhereItIsSeen) {
    const AcDbObjectId id = addFlag([&](Flag& flag) { flag.symbol.setLayer(green_, true, false); });
    AcDbExtents before;
    const auto measure = [&](AcDbExtents& extents) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        EXPECT_EQ(entity->getGeomExtents(extents), Acad::eOk);
    };
    measure(before);
    removeClass();
    AcDbExtents after;
    measure(after);
    EXPECT_EQ(after.maxPoint().x, before.maxPoint().x);
    EXPECT_EQ(outlines(id), 4u);
    changeLayer(green_, [](auto& layer) { layer.setColorIndex(5); });
    // The part by block on layer "0" goes with the symbol's layer.
    EXPECT_EQ(colors(), (Colors{kRed, kBlue, kBlue, kYellow}));
    changeLayer(red_, [](auto& layer) { layer.setIsFrozen(true); });
    EXPECT_EQ(colors(), Colors());
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbEntityArray parts;
    EXPECT_NE(entity->explode(parts), Acad::eOk);
    EXPECT_EQ(parts.length(), 0);
}

TEST_F(EmbeddedGraphics, PictureOfAProxyIsFiledWithIt) {
    const AcDbObjectId id = addFlag();
    removeClass();
    const auto& proxy =
        readState<UnknownEntityState>(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead).object());
    MemoryFiler out(&db(), AcDb::kUndoFiler);
    ASSERT_EQ(fileStateOut(out, proxy), Acad::eOk);
    UnknownEntityState read;
    MemoryFiler in(&db(), AcDb::kUndoFiler, out.record());
    ASSERT_EQ(fileStateIn(in, read), Acad::eOk);
    MemoryFiler again(&db(), AcDb::kUndoFiler);
    ASSERT_EQ(fileStateOut(again, read), Acad::eOk);
    EXPECT_FALSE(read.graphics.empty());
    EXPECT_EQ(out.record().values.size(), again.record().values.size());
    std::size_t layers = 0;
    forEachReference(read, [&](AcDbObjectId& reference, ReferenceKind) { layers += reference == yellow_; });
    EXPECT_EQ(layers, 1u) << "the layer of a part counts as used";
}

}  // namespace
