// What the host is told of the leader's class, and its life with the module.

#include "module/binding/configuration.h"
#include "tests/module/leader_samples.h"

#include <string>
#include <type_traits>

namespace tessary::testing {

namespace {

TEST(LeaderClass, isRegisteredUnderItsNamesAndFlags) {
    EXPECT_EQ(nullptr, acrxFindClass(L"QNLeader"));
    registerLeaderClass();
    acrxBuildClassHierarchy();
    const AcRxClass* const leaderClass = acrxFindClass(L"QNLeader");
    ASSERT_NE(nullptr, leaderClass);
    EXPECT_EQ(QNLeader::desc(), leaderClass);
    EXPECT_EQ(AcDbCurve::desc(), leaderClass->myParent());
    int version = 0, maintenanceVersion = 0;
    leaderClass->getClassVersion(version, maintenanceVersion);
    EXPECT_EQ(1, version);
    EXPECT_EQ(1, maintenanceVersion);
    EXPECT_EQ(1, leaderClass->proxyFlags());
    EXPECT_STREQ(L"QNLEADER", leaderClass->dxfName());
    const std::wstring application = leaderClass->appName();
    EXPECT_EQ(std::wstring(L"\"Leader|") + configuration::companyName + L"|" + configuration::companyAddress +
                  L"\"",
              application);
    EXPECT_EQ(2, std::ranges::count(application, L'|'));
    EXPECT_EQ(2, std::ranges::count(application, L'"'));
    registerLeaderClass();
    EXPECT_EQ(leaderClass, acrxFindClass(L"QNLeader"));
    removeLeaderClass();
    EXPECT_EQ(nullptr, acrxFindClass(L"QNLeader"));
}

TEST(LeaderClass, comesBackAfterItWasRemoved) {
    for (int i = 0; i < 3; ++i) {
        registerLeaderClass();
        EXPECT_EQ(acrxFindClass(L"QNLeader"), QNLeader::desc());
        removeLeaderClass();
        EXPECT_EQ(nullptr, QNLeader::desc());
    }
}

TEST(LeaderClass, comesBackWhenSomebodyElseRemovedIt) {
    registerLeaderClass();
    deleteAcRxClass(QNLeader::desc());
    registerLeaderClass();
    EXPECT_NE(nullptr, acrxFindClass(L"QNLeader"));
    EXPECT_EQ(acrxFindClass(L"QNLeader"), QNLeader::desc());
    removeLeaderClass();
}

class DefaultLeader : public LeaderTest {};

TEST_F(DefaultLeader, isEmptyAndAnswersWithTheHostsDefaults) {
    const std::unique_ptr<AcRxObject> made(QNLeader::desc()->create());
    QNLeader* const leader = QNLeader::cast(made.get());
    ASSERT_NE(nullptr, leader);
    EXPECT_EQ(QNLeader::desc(), leader->isA());
    EXPECT_NE(nullptr, AcDbCurve::cast(made.get()));
    EXPECT_EQ(nullptr, QNLeader::cast(std::make_unique<AcDbLine>().get()));
    for (const AcGePoint3d& point : pointsOf(*leader)) {
        expectNear(AcGePoint3d::kOrigin, point, 0);
    }
    EXPECT_TRUE(leader->blockId().isNull());
    expectPlacedSymbol(*leader);
    EXPECT_FALSE(leader->rolloverHit(0, 0, false));
    EXPECT_EQ(AcGiDrawable::kGeometry, leader->drawableType());
    EXPECT_FALSE(leader->isPlanar());
    EXPECT_EQ(Acad::eOk, leader->audit(nullptr));
    AcGePlane plane;
    AcDb::Planarity planarity{};
    EXPECT_EQ(Acad::eNotApplicable, leader->getPlane(plane, planarity));
}

}  // namespace

}  // namespace tessary::testing
