// Solids that the host copies, takes back, moves, stores and reads again.

#include "entity_samples.h"
#include "solid_checks.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <numbers>
#include <random>
#include <string>

using namespace entity_samples;

namespace {

using drafthost::DwgRecord;
using drafthost::DxfGroup;
using Groups = std::vector<DxfGroup>;

Acad::ErrorStatus readInto(SolidEntity& solid, const DwgRecord& record) {
    drafthost::MemoryFiler filer(nullptr, AcDb::kCopyFiler, record);
    return solid.dwgIn(&filer);
}

Groups groupsOf(const SolidEntity& solid) {
    drafthost::GroupFiler filer(nullptr);
    EXPECT_EQ(Acad::eOk, solid.dxfOut(&filer));
    return filer.groups();
}

Acad::ErrorStatus readInto(SolidEntity& solid, const Groups& groups) {
    drafthost::GroupFiler filer(nullptr, groups);
    return solid.dxfIn(&filer);
}

std::size_t indexOf(const Groups& groups, short code, std::size_t skip = 0) {
    std::size_t i = 0;
    const auto marker = std::ranges::find_if(groups, [](const DxfGroup& group) {
        const auto* const name = std::get_if<std::wstring>(&group.value);
        return group.code == 100 && name && *name == L"qn_hvacSolid";
    });
    for (i = static_cast<std::size_t>(marker - groups.begin()); i < groups.size(); ++i) {
        if (groups[i].code == code && skip-- == 0) {
            break;
        }
    }
    EXPECT_LT(i, groups.size()) << code;
    return i;
}

class TransactionOf {
public:
    explicit TransactionOf(AcDbDatabase& database) : manager_(*database.transactionManager()) {
        EXPECT_EQ(Acad::eOk, manager_.startTransaction());
    }
    ~TransactionOf() { EXPECT_EQ(Acad::eOk, manager_.abortTransaction()); }
    SolidEntity& solid(AcDbObjectId id) {
        AcDbObject* object = nullptr;
        EXPECT_EQ(Acad::eOk, manager_.getObject(object, id, AcDb::kForWrite));
        return static_cast<SolidEntity&>(*object);
    }

private:
    AcDbTransactionManager& manager_;
};

AcGeMatrix3d skewed() {
    AcGeMatrix3d matrix = AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3).normal(), {4, 5, 6});
    matrix.entry[0][1] += 0.3;
    matrix.entry[2][2] *= -2;
    matrix.entry[1][3] = 1000.1;
    return matrix;
}

}  // namespace

class SolidFiling : public SolidTest {};

TEST_F(SolidFiling, CopiesAreEqualToTheLastBit) {
    for (const SolidPointer& solid : {crossing(), pipe(64 | kHvacCenterline), newSolid()}) {
        solid->transformBy(AcGeMatrix3d::rotation(0.3, AcGeVector3d(1, 1, 1).normal(), {1, 2, 3}));
        const std::unique_ptr<AcDbObject> copy(solid->clone());
        ASSERT_NE(nullptr, qn_hvacSolid::cast(copy.get()));
        expectSame(*solid, static_cast<SolidEntity&>(*copy));
    }
    const SolidPointer hanger = box();
    hanger->setFitting(HvacFitting::hanger);
    const SolidPointer copy = newSolid();
    ASSERT_EQ(Acad::eOk, readInto(*copy, filed(*hanger)));
    EXPECT_STREQ(L"hanger", copy->kindText());
}

TEST_F(SolidFiling, EveryChangeIsTakenBackByTheTransaction) {
    const SolidPointer wanted = crossing();
    const AcDbObjectId id = append(crossing().release());
    const std::function<void(SolidEntity&)> changes[] = {
        [](SolidEntity& solid) {
            addStraight(solid, {0, 0, 0}, {10, 0, 0}, false, 1, 1);
        },
        [](SolidEntity& solid) {
            solid.sliceLast({0, 1, 0}, {1, 1, 0}, {0, 1, 1}, {0, 9, 0});
        },
        [](SolidEntity& solid) {
            solid.subtractTransition({5, 0, -9}, true, 1, 1, {5, 0, 9}, true, 1, 1, kAlongZ, kAlongZ, 0);
        },
        [](SolidEntity& solid) { solid.clearBodies(); },
        [](SolidEntity& solid) { solid.doUnion(*pipe()); },
        [](SolidEntity& solid) { solid.setFitting(HvacFitting::takeoff); },
        [](SolidEntity& solid) { solid.transformBy(skewed()); },
        [](SolidEntity& solid) { solid.erase(); },
        [](SolidEntity& solid) {
            solid.transformBy(AcGeMatrix3d::scaling(3));
            solid.clearBodies();
            addStraight(solid, {0, 0, 0}, {10, 0, 0}, false, 1, 1);
        },
    };
    for (const auto& change : changes) {
        {
            TransactionOf transaction(database);
            change(transaction.solid(id));
        }
        const OpenSolid solid(id, AcDb::kForRead);
        ASSERT_TRUE(solid);
        expectSame(*wanted, entityOf(solid));
    }
}

TEST_F(SolidFiling, MovingAndFilingMayChangePlaces) {
    const AcGeMatrix3d matrix = skewed();
    ASSERT_LT(matrix.det(), 0);
    // Asked for its surface before or not, filed before or not.
    const SolidPointer moved = crossing(), drawn = crossing(), read = newSolid(), readMoved = newSolid();
    ASSERT_EQ(Acad::eOk, moved->transformBy(matrix));
    static_cast<void>(drawn->surface());
    ASSERT_EQ(Acad::eOk, drawn->transformBy(matrix));
    ASSERT_EQ(Acad::eOk, readInto(*readMoved, filed(*crossing())));
    ASSERT_EQ(Acad::eOk, readMoved->transformBy(matrix));
    ASSERT_EQ(Acad::eOk, readInto(*read, filed(*moved)));
    expectSame(*moved, *drawn);
    expectSame(*moved, *readMoved);
    expectSame(*moved, *read);
    expectSolid(moved->joined().mesh, 98 * -matrix.det());
    EXPECT_NEAR(volumeOf(*moved), 98 * -matrix.det(), 1e-6);
    // Bodies moved along: one more joins where they are now.
    ASSERT_TRUE(moved->doUnion(*drawn));
    EXPECT_NEAR(98 * -matrix.det(), volumeOf(*moved), 1e-6);
}

TEST_F(SolidFiling, TransformsThatLeaveNoSolidAreRefused) {
    AcGeMatrix3d flat;
    flat.entry[2][2] = 0;
    for (const AcGeMatrix3d& matrix :
         {flat, AcGeMatrix3d::scaling(1e100), AcGeMatrix3d::scaling(1e-200),
          AcGeMatrix3d::translation({1e120, 0, 0}), AcGeMatrix3d::translation({1e40, 0, 0}),
          AcGeMatrix3d::translation({1e17, 0, 0})}) {
        const SolidPointer solid = crossing();
        EXPECT_EQ(Acad::eInvalidInput, solid->transformBy(matrix));
        expectSame(*crossing(), *solid);
    }
}

TEST_F(SolidFiling, DamagedRecordsAreRefusedAndChangeNothing) {
    const DwgRecord good = filed(*crossing());
    const SolidPointer solid = box();
    std::size_t header = 0;  // where the solid's own values begin
    for (header = 0; header < good.values.size(); ++header) {
        if (good.values.size() - header == 8 + 3 + 2 * 3) {
            break;
        }
    }
    ASSERT_EQ(1, std::get<std::int32_t>(good.values[header]));
    const auto damaged = [&](std::size_t index, DwgRecord::Value value) {
        DwgRecord record = good;
        record.values[header + index] = std::move(value);
        return readInto(*solid, record);
    };
    EXPECT_EQ(Acad::eMakeMeProxy, damaged(0, std::int32_t{2}));
    for (const std::int32_t wrong : {-1, 1'000'000'000}) {
        for (const std::size_t index : {1, 2, 5, 6, 7}) {
            EXPECT_NE(Acad::eOk, damaged(index, wrong)) << index;
        }
    }
    EXPECT_EQ(Acad::eInvalidInput, damaged(0, std::int32_t{0}));
    EXPECT_EQ(Acad::eFilerError, damaged(1, 1.0));
    // Points, corners and kinds.
    auto points = std::get<std::vector<std::uint8_t>>(good.values[header + 8]);
    auto corners = std::get<std::vector<std::uint8_t>>(good.values[header + 9]);
    auto kinds = std::get<std::vector<std::uint8_t>>(good.values[header + 10]);
    for (std::size_t i = 0; i < 4; ++i) {
        auto other = corners;
        other[i * 4 + 3] = 0x7f;
        EXPECT_EQ(Acad::eInvalidInput, damaged(9, other));
        other = corners;
        other[i * 4] ^= 1;
        EXPECT_EQ(Acad::eInvalidInput, damaged(9, other));
    }
    std::fill(points.begin(), points.begin() + 8, std::uint8_t{0xff});
    EXPECT_EQ(Acad::eInvalidInput, damaged(8, points));
    kinds[0] = 6;
    EXPECT_EQ(Acad::eInvalidInput, damaged(10, kinds));
    points.pop_back();
    EXPECT_EQ(Acad::eFilerError, damaged(8, points));
    for (std::size_t size = header; size < good.values.size(); ++size) {
        DwgRecord cut = good;
        cut.values.resize(size);
        EXPECT_EQ(Acad::eEndOfObject, readInto(*solid, cut));
    }
    expectSame(*box(), *solid);
    EXPECT_EQ(Acad::eOk, readInto(*solid, good));
    expectSame(*crossing(), *solid);
}

// Two boxes that run through each other and are marked so.
TEST_F(SolidFiling, BodiesThatCouldNotBeJoinedAreKeptButNeverMeasuredOrMerged) {
    const SolidPointer apart = box();
    ASSERT_TRUE(addStraight(*apart, {0, 20, 0}, {10, 20, 0}, true, 4, 2));
    Groups groups = groupsOf(*apart);
    for (std::size_t i = 8; i < 16; ++i) {
        auto& point = std::get<AcGePoint3d>(groups[indexOf(groups, 10, i)].value);
        point = point - AcGeVector3d(5, 19, 0);
    }
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(indexOf(groups, 94)), {70, std::int64_t{1}});
    const SolidPointer solid = newSolid();
    ASSERT_EQ(Acad::eOk, readInto(*solid, groups));
    EXPECT_TRUE(solid->joined().mayOverlap);
    AcDbSolidMeasures measures;
    AcDbExtents extents;
    EXPECT_EQ(Acad::eNotApplicable, solid->getSolidMeasures(measures));
    EXPECT_EQ(Acad::eOk, solid->getGeomExtents(extents));
    const SolidPointer other = box();
    EXPECT_FALSE(other->doUnion(*solid));
    EXPECT_FALSE(solid->doUnion(*other));
    EXPECT_FALSE(solid->sliceLast({1, 0, 0}, {1, 1, 0}, {1, 0, 1}, {9, 0, 0}));
    EXPECT_FALSE(
        solid->subtractTransition({5, 0, -9}, true, 1, 1, {5, 0, 9}, true, 1, 1, kAlongZ, kAlongZ, 0));
    EXPECT_TRUE(addStraight(*solid, {0, 50, 0}, {10, 50, 0}, true, 4, 2));
    EXPECT_EQ(Acad::eNotApplicable, solid->getSolidMeasures(measures));
    const SolidPointer read = newSolid(), copy = newSolid();
    ASSERT_EQ(Acad::eOk, readInto(*read, groupsOf(*solid)));
    ASSERT_EQ(Acad::eOk, readInto(*copy, filed(*solid)));
    expectSame(*solid, *read);
    expectSame(*solid, *copy);
}

TEST_F(SolidFiling, GroupsHoldEverything) {
    for (const SolidPointer& wanted : {crossing(), pipe(64 | kHvacOpenStart), newSolid()}) {
        wanted->setFitting(HvacFitting::takeoff);
        if (wanted->bodyCount() > 0) {
            ASSERT_EQ(Acad::eOk, wanted->transformBy(skewed()));
        }
        const SolidPointer read = box();
        ASSERT_EQ(Acad::eOk, readInto(*read, groupsOf(*wanted)));
        expectSame(*wanted, *read);
    }
}

TEST_F(SolidFiling, DamagedGroupsAreRefusedAndChangeNothing) {
    const Groups good = groupsOf(*crossing());
    const SolidPointer solid = box();
    const auto with = [&](short code, std::int64_t value, std::size_t skip = 0) {
        Groups groups = good;
        groups[indexOf(groups, code, skip)].value = value;
        return readInto(*solid, groups);
    };
    const auto without = [&](short code, std::size_t skip = 0) {
        Groups groups = good;
        groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(indexOf(groups, code, skip)));
        return readInto(*solid, groups);
    };
    EXPECT_EQ(Acad::eMakeMeProxy, with(90, 2));
    EXPECT_EQ(Acad::eInvalidInput, with(90, 0));
    for (const short count : std::initializer_list<short>{91, 92, 94, 95, 96}) {
        EXPECT_EQ(Acad::eInvalidInput, with(count, -5)) << count;
        EXPECT_EQ(Acad::eInvalidInput, with(count, 2'000'000'000)) << count;
    }
    for (const short needed : std::initializer_list<short>{90, 94, 95, 96, 10, 97, 11, 72}) {
        EXPECT_EQ(Acad::eInvalidInput, without(needed)) << needed;
    }
    EXPECT_EQ(Acad::eInvalidInput, with(97, -1, 5));
    EXPECT_EQ(Acad::eInvalidInput, with(97, 1 << 30, 5));
    EXPECT_EQ(Acad::eInvalidInput, with(71, 77));
    // Two corners of a triangle changed for each other: the surface is not closed any more.
    Groups turned = good;
    std::swap(turned[indexOf(turned, 97, 0)].value, turned[indexOf(turned, 97, 1)].value);
    EXPECT_EQ(Acad::eInvalidInput, readInto(*solid, turned));
    Groups moved = good;
    moved[indexOf(moved, 10)].value = AcGePoint3d(1e200, 0, 0);
    EXPECT_EQ(Acad::eInvalidInput, readInto(*solid, moved));
    Groups unmarked = good;
    unmarked[indexOf(unmarked, 100)].value = std::wstring(L"another");
    EXPECT_EQ(Acad::eBadDxfSequence, readInto(*solid, unmarked));
    expectSame(*box(), *solid);
}

// Numbers changed, groups left out, doubled and exchanged at random: what is read is a closed surface, or
// nothing is.
TEST_F(SolidFiling, WhateverGroupsSayTheSolidIsSound) {
    const Groups good = groupsOf(*crossing());
    const std::size_t first = indexOf(good, 100) + 1;
    std::mt19937 random(20);
    const auto any = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    int readable = 0;
    for (int round = 0; round < 3000; ++round) {
        Groups groups = good;
        for (std::size_t change = 0; change <= any(2); ++change) {
            const std::size_t at = first + any(groups.size() - first);
            const std::size_t other = first + any(groups.size() - first);
            switch (any(5)) {
                case 0: groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(at)); break;
                case 1: groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(at), groups[other]); break;
                case 2: std::swap(groups[at], groups[other]); break;
                case 3: std::swap(groups[at].code, groups[other].code); break;
                default:
                    if (auto* const number = std::get_if<std::int64_t>(&groups[at].value)) {
                        *number = static_cast<std::int64_t>(any(40)) - 10;
                    }
            }
        }
        const SolidPointer solid = box();
        if (readInto(*solid, groups) != Acad::eOk) {
            expectSame(*box(), *solid);
            continue;
        }
        ++readable;
        AcDbEntityArray faces;
        EXPECT_EQ(Acad::eOk, solid->explode(faces));
        std::ranges::for_each(faces, [](AcDbEntity* face) { delete face; });
        EXPECT_TRUE(solid->joined().mesh.empty() || isClosed(solid->joined().mesh));
    }
    EXPECT_GT(readable, 100);
    EXPECT_LT(readable, 2500);
}

TEST_F(SolidFiling, FilesHoldSolidsAndThoseThatAreDamaged) {
    const AcDbObjectId id = append(crossing().release());
    const AcDbHandle handle = id.handle();
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "solid_filing_test.dxf";
    ASSERT_EQ(Acad::eOk, database.dxfOut(file.c_str()));
    {
        AcDbDatabase read(false, true);
        ASSERT_EQ(Acad::eOk, read.readDxfFile(file.c_str()));
        AcDbObjectId found;
        ASSERT_EQ(Acad::eOk, read.getAcDbObjectId(found, handle));
        const OpenSolid solid(found, AcDb::kForRead);
        ASSERT_TRUE(solid);
        expectSame(*crossing(), entityOf(solid));
    }
    std::ifstream stream(file, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(stream)), {});
    stream.close();
    const std::size_t marker = text.rfind("qn_hvacSolid");
    const std::size_t corner = text.find("\n 97\r\n", marker) == std::string::npos
                                   ? text.find("\n 97\n", marker)
                                   : text.find("\n 97\r\n", marker);
    ASSERT_NE(std::string::npos, corner);
    const std::size_t number = text.find_first_of("0123456789", corner + 4);
    text.insert(number, "9999");
    std::ofstream(file, std::ios::binary) << text;
    AcDbDatabase read(false, true);
    ASSERT_EQ(Acad::eOk, read.readDxfFile(file.c_str()));
    AcDbObjectId found;
    ASSERT_EQ(Acad::eOk, read.getAcDbObjectId(found, handle));
    const AcDbObjectPointer<AcDbEntity> proxy(found, AcDb::kForRead);
    ASSERT_TRUE(proxy);
    EXPECT_EQ(nullptr, qn_hvacSolid::cast(proxy.object()));
    std::filesystem::remove(file);
}

TEST_F(SolidFiling, InsertedDrawingsBringSolids) {
    append(crossing().release());
    AcDbDatabase target(true, true);
    AcDbObjectId definition;
    ASSERT_EQ(Acad::eOk, target.insert(definition, L"Part", &database));
    const AcDbObjectPointer<AcDbBlockTableRecord> block(definition, AcDb::kForRead);
    ASSERT_EQ(1, block->entityIds().length());
    const OpenSolid solid(block->entityIds()[0], AcDb::kForRead);
    ASSERT_TRUE(solid);
    expectSame(*crossing(), entityOf(solid));
}
