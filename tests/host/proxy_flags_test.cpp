// What may be done to an entity whose class is away.

#include "host/database/entity_data.h"
#include "host/database/loading.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

// What a class allows on its proxies: everything but the given, or nothing but it.
class ProxyFlags : public TagTest {
protected:
    struct Operation {
        AcRxProxyFlags flag;
        std::function<Acad::ErrorStatus(AcDbEntity&)> apply;
    };
    std::vector<Operation> operations() {
        const AcDbObjectId layer = addLayer(L"OTHER"), dashed = db().byBlockLinetype();
        return {
            {kProxyLayerChangeAllowed, [layer](AcDbEntity& e) { return e.setLayer(layer); }},
            {kProxyColorChangeAllowed, [](AcDbEntity& e) { return e.setColorIndex(3); }},
            {kProxyColorChangeAllowed, [](AcDbEntity& e) { return e.setTrueColor(0x10); }},
            {kProxyLinetypeChangeAllowed, [dashed](AcDbEntity& e) { return e.setLinetype(dashed); }},
            {kProxyLinetypeScaleChangeAllowed, [](AcDbEntity& e) { return e.setLinetypeScale(2); }},
            {kProxyLineWeightChangeAllowed, [](AcDbEntity& e) { return e.setLineWeight(25); }},
            {kProxyVisibilityChangeAllowed, [](AcDbEntity& e) { return e.setVisibility(false); }},
            {kProxyEraseAllowed, [](AcDbEntity& e) { return e.erase(); }},
        };
    }
    AcDbObjectId proxyWith(int flags) {
        unload();
        load(flags);
        const AcDbObjectId id = addTag(L"tag");
        unload();
        return id;
    }
};

TEST_F(ProxyFlags, AllowWhatTheySayAndNothingElse) {
    for (const Operation& operation : operations()) {
        AcDbObjectPointer<AcDbEntity> without(proxyWith(kProxyAllOperations & ~operation.flag),
                                              AcDb::kForWrite);
        EXPECT_EQ(operation.apply(*without), Acad::eProxyRefused) << operation.flag;
        EXPECT_FALSE(without->isModified());
        without.close();
        AcDbObjectPointer<AcDbEntity> only(proxyWith(operation.flag), AcDb::kForWrite);
        EXPECT_EQ(operation.apply(*only), Acad::eOk) << operation.flag;
    }
    const AcGeMatrix3d shift = AcGeMatrix3d::translation({1, 0, 0});
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(proxyWith(0), AcDb::kForWrite)->transformBy(shift),
              Acad::eProxyRefused);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(proxyWith(511), AcDb::kForWrite)->transformBy(shift),
              Acad::eNotApplicable);
}

TEST_F(ProxyFlags, AlwaysAllowDataAndOwners) {
    ASSERT_EQ(acdbRegApp(L"APP"), RTNORM);
    const AcDbObjectPointer<AcDbEntity> proxy(proxyWith(0), AcDb::kForWrite);
    const List data(acutBuildList(1001, L"APP", 1070, 7, RTNONE));
    EXPECT_EQ(proxy->setXData(data.get()), Acad::eOk);
    proxy->setOwnerId(db().modelSpaceId());
    EXPECT_TRUE(proxy->isModified());
}

TEST_F(ProxyFlags, ComeFromTheDrawingToo) {
    const LoadScope scope(db());
    db().impl().classes.push_back(
        {{1, std::wstring(L"STRANGE")}, {2, std::wstring(L"AcmeStrange")}, {90, std::int64_t{4}}});
    const auto loaded = [&](const wchar_t* type) {
        return AcDbEntity::cast(
            loadEntity(db(), AcDbObjectId(),
                       {{0, std::wstring(type)}, {100, std::wstring(L"AcDbEntity")}, {8, std::wstring(L"0")}})
                .id.stub()
                ->object);
    };
    AcDbEntity* const strange = loaded(L"STRANGE");
    EXPECT_EQ(strange->setColorIndex(1), Acad::eOk);
    EXPECT_EQ(strange->setLineWeight(25), Acad::eProxyRefused);
    EXPECT_EQ(strange->erase(), Acad::eProxyRefused);
    AcDbEntity* const lacking = loaded(L"SPLINE");  // of which no record says anything
    EXPECT_EQ(lacking->setLineWeight(25), Acad::eOk);
    EXPECT_EQ(lacking->erase(), Acad::eOk);
}

TEST_F(ProxyFlags, HoldForLispPrograms) {
    const AcDbObjectId id = proxyWith(kProxyColorChangeAllowed);
    addLayer(L"OTHER");
    ads_name name;
    ASSERT_EQ(acdbGetAdsName(name, id), Acad::eOk);
    const auto modify = [&](short code, DxfValue value) {
        std::vector<DxfGroup> groups = entityGroups(id);
        std::erase_if(groups, [code](const DxfGroup& group) { return group.code == code; });
        groups.push_back({code, std::move(value)});
        const List list(listOfGroups(groups));
        return acdbEntMod(list.get());
    };
    EXPECT_EQ(modify(62, std::int64_t{3}), RTNORM);
    EXPECT_EQ(peek<AcDbEntity>(id)->colorIndex(), 3);
    EXPECT_EQ(modify(8, std::wstring(L"OTHER")), RTERROR);
    EXPECT_EQ(layerOf(id), L"0");
    EXPECT_EQ(modify(1, std::wstring(L"another text")), RTERROR);  // the class's own
    EXPECT_EQ(acdbEntDel(name), RTERROR);
    EXPECT_FALSE(id.isErased());
    load();
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    EXPECT_EQ(tag->text, L"tag");
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_EQ(tag->colorIndex(), 3);
}

}  // namespace
