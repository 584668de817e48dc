// The solid's class with the host, and solids while it is away.

#include "entity_samples.h"

using namespace entity_samples;

TEST(SolidClass, IsRegisteredUnderItsNamesAndFlags) {
    EXPECT_EQ(nullptr, qn_hvacSolid::desc());
    EXPECT_EQ(nullptr, qn_hvacSolid::create());
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(solids::registerSolidClass());
        ASSERT_TRUE(solids::registerSolidClass());
        const AcRxClass* const solidClass = acrxFindClass(L"qn_hvacSolid");
        ASSERT_NE(nullptr, solidClass);
        EXPECT_EQ(solidClass, qn_hvacSolid::desc());
        EXPECT_EQ(AcDbEntity::desc(), solidClass->myParent());
        EXPECT_STREQ(L"QN_HVACSOLID", solidClass->dxfName());
        EXPECT_EQ(kProxyAllOperations - kProxyTransformAllowed, solidClass->proxyFlags());
        solids::removeSolidClass();
        EXPECT_EQ(nullptr, acrxFindClass(L"qn_hvacSolid"));
    }
}

TEST(SolidClass, IsRefusedWhenSomebodyElseHasItsName) {
    AcRxClass* const other =
        newAcRxClass(qn_hvacSolid::className, L"AcDbEntity", 1, 1, 0, nullptr, L"OTHER", L"other");
    ASSERT_NE(nullptr, other);
    EXPECT_FALSE(solids::registerSolidClass());
    solids::removeSolidClass();
    EXPECT_EQ(other, acrxFindClass(qn_hvacSolid::className));
    deleteAcRxClass(other);
}

class SolidProxies : public SolidTest {};

TEST_F(SolidProxies, KeepEverythingUntilTheClassIsBack) {
    const SolidPointer wanted = crossing();
    const AcDbObjectId id = append(crossing().release());
    const AcDbObjectId empty = append(newSolid().release());
    solids::removeSolidClass();
    {
        const AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForWrite);
        ASSERT_TRUE(proxy);
        EXPECT_EQ(nullptr, qn_hvacSolid::cast(proxy.object()));
        EXPECT_EQ(Acad::eProxyRefused, proxy->transformBy(AcGeMatrix3d::translation({1, 0, 0})));
        EXPECT_EQ(Acad::eOk, proxy->setColorIndex(3));
    }
    ASSERT_TRUE(solids::registerSolidClass());
    const OpenSolid solid(id, AcDb::kForRead), nothing(empty, AcDb::kForRead);
    ASSERT_TRUE(solid);
    ASSERT_TRUE(nothing);
    EXPECT_EQ(3, solid->colorIndex());
    expectSame(*wanted, entityOf(solid));
    expectSame(*newSolid(), entityOf(nothing));
}
