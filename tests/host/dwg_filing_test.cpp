// Filing of objects as exact values: what is written is read back whole, and what was not written so is
// refused without harm.

#include <map>
#include <random>
#include <set>

#include "host/database/built_in_classes.h"
#include "host/database/group_filer.h"
#include "host/database/loading.h"
#include "host/database/memory_filer.h"
#include "host/database/proxies.h"
#include "host/database/table_states.h"
#include "host/database/unknown_objects.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

// Every value as it is, in order.
std::wstring exactly(const DwgRecord& record) {
    struct Writer {
        std::wostringstream text;
        void operator()(bool value) { text << L"b" << value; }
        void operator()(std::int8_t value) { text << L"c" << int{value}; }
        void operator()(std::int16_t value) { text << L"s" << value; }
        void operator()(std::int32_t value) { text << L"i" << value; }
        void operator()(std::int64_t value) { text << L"l" << value; }
        void operator()(double value) { text << L"d" << std::hexfloat << value; }
        void operator()(const AcGePoint2d& p) { (*this)(p.x), (*this)(p.y); }
        void operator()(const AcGePoint3d& p) { (*this)(p.x), (*this)(p.y), (*this)(p.z); }
        void operator()(const AcGeVector3d& v) { (*this)(v.x), (*this)(v.y), (*this)(v.z); }
        void operator()(const std::wstring& value) { text << L'"' << value << L'"'; }
        void operator()(AcDbHandle handle) { text << L"h" << handle.value(); }
        void operator()(const DwgRecord::Reference& reference) {
            text << L"r" << static_cast<int>(reference.kind) << L":" << reference.id.handle().value();
        }
        void operator()(const std::vector<std::uint8_t>& bytes) {
            for (const std::uint8_t byte : bytes)
                text << L"x" << int{byte};
        }
    };
    Writer writer;
    for (const DwgRecord::Value& value : record.values) {
        std::visit(writer, value);
        writer.text << L"\n";
    }
    return writer.text.str();
}

std::wstring exactly(const AcDbObject& object) {
    const auto record = recordOf(object, AcDb::kFileFiler);
    return record ? exactly(*record) : L"(not filed)";
}

// The object's groups, but for what says which object it is.
std::wstring groupsOf(const AcDbObject& object, AcDbDatabase& database) {
    GroupFiler filer(&database);
    object.dxfOut(&filer);
    std::wostringstream text;
    for (const DxfGroup& group : filer.groups()) {
        const auto* const reference = std::get_if<ObjectReference>(&group.value);
        const bool rootsOwner = group.code == 330 && reference && reference->id.isNull();
        if (group.code == 5 || group.code == 105 || rootsOwner)
            continue;
        text << group.code << L"=";
        if (const auto* const value = std::get_if<std::wstring>(&group.value))
            text << *value;
        if (const auto* const value = std::get_if<double>(&group.value))
            text << std::hexfloat << *value;
        if (const auto* const value = std::get_if<std::int64_t>(&group.value))
            text << *value;
        if (const auto* const value = std::get_if<AcGePoint3d>(&group.value))
            text << std::hexfloat << value->x << L"," << value->y << L"," << value->z;
        if (const auto* const value = std::get_if<AcGePoint2d>(&group.value))
            text << std::hexfloat << value->x << L"," << value->y;
        if (const auto* const value = std::get_if<ObjectReference>(&group.value))
            text << value->id.handle().value();
        if (const auto* const value = std::get_if<std::vector<std::uint8_t>>(&group.value))
            for (const std::uint8_t byte : *value)
                text << byte << L" ";
        text << L"\n";
    }
    return text.str();
}

using Groups = std::vector<DxfGroup>;

DxfGroup text(short code, const wchar_t* value) {
    return {code, std::wstring(value)};
}

Groups entityGroups(const wchar_t* type, Groups own) {
    Groups groups{
        text(0, type),           text(100, L"AcDbEntity"),      text(8, L"WALLS"),
        text(6, L"ByBlock"),     {62, std::int64_t{3}},         {48, 2.5},
        {370, std::int64_t{25}}, {420, std::int64_t{0x123456}}, {284, std::int64_t{1}}};  // known to no class
    groups.insert(groups.end(), own.begin(), own.end());
    return groups;
}

// A drawing with something of every class, everywhere off the defaults.
class RichDrawing : public TagTest {
protected:
    RichDrawing() {
        acdbRegApp(L"TAG");
        const AcDbObjectId block = addBlock(L"DOOR");
        append(new AcDbCircle({1, 1, 0}, {0, 0, 1}, 2), block);
        {
            const LoadScope scope(db());
            addEntities();
            addObjects();
        }
        for (const AcDbObjectId id : entities_)
            addData(id);
    }

    AcDbObjectId load(const wchar_t* type, Groups own) {
        const LoadResult result = loadEntity(db(), AcDbObjectId(), entityGroups(type, std::move(own)));
        EXPECT_EQ(result.status, Acad::eOk) << type << L": " << result.problem;
        entities_.push_back(result.id);
        return result.id;
    }

    void addEntities() {
        const AcGePoint3d p(1.1, 2.2, 3.3), up(0, 0.6, 0.8);
        load(L"LINE", {text(100, L"AcDbLine"), {39, 1.5}, {10, p}, {11, AcGePoint3d(4, 5, 6)}, {210, up}});
        load(L"CIRCLE", {text(100, L"AcDbCircle"), {39, 0.5}, {10, p}, {40, 7.5}, {210, up}});
        load(L"ARC",
             {text(100, L"AcDbCircle"), {10, p}, {40, 7.5}, text(100, L"AcDbArc"), {50, 30.0}, {51, 200.0}});
        load(L"POINT", {text(100, L"AcDbPoint"), {10, p}, {39, 2.0}, {50, 15.0}});
        load(L"3DFACE", {text(100, L"AcDbFace"),
                         {10, p},
                         {11, AcGePoint3d(4, 5, 6)},
                         {12, AcGePoint3d(7, 8, 9)},
                         {39, 2.0},
                         {70, std::int64_t{9}}});
        load(L"LWPOLYLINE", {text(100, L"AcDbPolyline"),
                             {90, std::int64_t{2}},
                             {70, std::int64_t{1}},
                             {38, 4.0},
                             {10, AcGePoint2d(1, 2)},
                             {40, 0.1},
                             {41, 0.2},
                             {42, 0.5},
                             {10, AcGePoint2d(3, 5)}});
        load(L"TEXT", {text(100, L"AcDbText"),
                       {10, p},
                       {40, 2.5},
                       text(1, L"a text"),
                       {50, 30.0},
                       {41, 0.8},
                       {51, 10.0},
                       {71, std::int64_t{2}},
                       {72, std::int64_t{1}},
                       {11, AcGePoint3d(9, 9, 9)},
                       text(100, L"AcDbText"),
                       {73, std::int64_t{2}}});
        load(L"MTEXT", {text(100, L"AcDbMText"),
                        {10, p},
                        {40, 2.5},
                        {41, 30.0},
                        {71, std::int64_t{5}},
                        {72, std::int64_t{1}},
                        text(1, L"{\\C1;lines}\\Pof text"),
                        {11, AcGePoint3d(0, 1, 0)},
                        {73, std::int64_t{2}},
                        {44, 1.5}});
        load(L"ATTDEF", {text(100, L"AcDbText"),
                         {10, p},
                         {40, 2.5},
                         text(1, L"value"),
                         text(100, L"AcDbAttributeDefinition"),
                         text(3, L"prompt"),
                         text(2, L"NUMBER"),
                         {70, std::int64_t{8}}});
        const AcDbObjectId insert = load(L"INSERT", {text(100, L"AcDbBlockReference"),
                                                     {66, std::int64_t{1}},
                                                     text(2, L"DOOR"),
                                                     {10, p},
                                                     {41, 2.0},
                                                     {42, -3.0},
                                                     {43, 4.0},
                                                     {50, 45.0},
                                                     {70, std::int64_t{2}},
                                                     {71, std::int64_t{3}},
                                                     {44, 5.0},
                                                     {45, 6.0}});
        for (const auto* const type : {L"ATTRIB", L"SEQEND"}) {
            Groups own;
            if (std::wstring_view(type) == L"ATTRIB")
                own = {text(100, L"AcDbText"),
                       {10, p},
                       {40, 2.5},
                       text(1, L"17"),
                       text(100, L"AcDbAttribute"),
                       text(2, L"NUMBER"),
                       {70, std::int64_t{0}}};
            const LoadResult part = loadAttribute(db(), insert, entityGroups(type, own));
            ASSERT_EQ(part.status, Acad::eOk) << part.problem;
        }
        load(L"STRANGE", {text(100, L"AcDbStrange"),
                          {70, std::int64_t{3}},
                          {340, ObjectReference{db().layerZero().handle(), {}}},
                          {310, std::vector<std::uint8_t>{0, 255, 7}},
                          {12, AcGePoint2d(1, 2)}});
        entities_.push_back(addTag(L"a tag"));
    }

    void addObjects() {
        const LoadResult object = loadObject(db(), {text(0, L"WEIRD"),
                                                    text(102, L"{ACAD_REACTORS"),
                                                    {330, ObjectReference{db().layerZero().handle(), {}}},
                                                    text(102, L"}"),
                                                    text(100, L"AcDbWeird"),
                                                    {360, ObjectReference{AcDbHandle(0x7777), {}}},
                                                    {1, std::wstring(L"text")}});
        const LoadResult dictionary =
            loadObject(db(), {text(0, L"DICTIONARY"),
                              text(100, L"AcDbDictionary"),
                              {280, std::int64_t{1}},
                              {281, std::int64_t{2}},
                              text(3, L"One"),
                              {360, ObjectReference{object.id.handle(), {}}},
                              text(3, L"Two"),
                              {350, ObjectReference{db().layerZero().handle(), {}}}});
        ASSERT_EQ(dictionary.status, Acad::eOk) << dictionary.problem;
        Groups dashes{text(0, L"LTYPE"),
                      text(100, L"AcDbSymbolTableRecord"),
                      text(100, L"AcDbLinetypeTableRecord"),
                      text(2, L"GAS"),
                      {70, std::int64_t{0}},
                      text(3, L"Gas ----"),
                      {72, std::int64_t{65}},
                      {73, std::int64_t{2}},
                      {40, 1.5},
                      {49, 1.0},
                      {74, std::int64_t{2}},
                      {75, std::int64_t{0}},
                      {340, ObjectReference{db().textstyle().handle(), {}}},
                      {46, 0.1},
                      {50, 0.0},
                      {44, -0.1},
                      {45, -0.05},
                      text(9, L"GAS"),
                      {49, -0.5},
                      {74, std::int64_t{0}}};
        const LoadResult linetype = loadRecord(db(), dashes);
        ASSERT_EQ(linetype.status, Acad::eOk) << linetype.problem;
        const LoadResult style = loadRecord(db(), {text(0, L"STYLE"),
                                                   text(100, L"AcDbSymbolTableRecord"),
                                                   text(100, L"AcDbTextStyleTableRecord"),
                                                   text(2, L"NOTES"),
                                                   {70, std::int64_t{0}},
                                                   {40, 3.5},
                                                   {41, 0.7},
                                                   {50, 12.0},
                                                   {71, std::int64_t{2}},
                                                   {42, 2.0},
                                                   text(3, L"romans.shx"),
                                                   text(4, L"big.shx")});
        ASSERT_EQ(style.status, Acad::eOk) << style.problem;
        const LoadResult layer = loadRecord(db(), {text(0, L"LAYER"),
                                                   text(100, L"AcDbSymbolTableRecord"),
                                                   text(100, L"AcDbLayerTableRecord"),
                                                   text(2, L"PIPES"),
                                                   {70, std::int64_t{4}},
                                                   {62, std::int64_t{-5}},
                                                   text(6, L"GAS"),
                                                   {290, std::int64_t{0}},
                                                   {370, std::int64_t{50}}});
        ASSERT_EQ(layer.status, Acad::eOk) << layer.problem;
    }

    void addData(AcDbObjectId id) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        ads_point point = {1, 2, 3};
        const List data(acutBuildList(1001, L"TAG", 1040, 2.5, 1000, L"text", 1011, point, 1070, 5, RTNONE));
        ASSERT_EQ(entity->setXData(data.get()), Acad::eOk);
        setReactors(id);
    }

    void setReactors(AcDbObjectId id) {
        ObjectImp::of(id.stub()->object).state->reactors = {db().layerZero(), db().modelSpaceId()};
    }

    // Everything in the drawing.
    std::vector<const AcDbObject*> objects() {
        std::vector<const AcDbObject*> all;
        for (const AcDbStub* const stub : db().impl().stubs)
            if (stub->object)
                all.push_back(stub->object);
        return all;
    }

    static std::unique_ptr<AcDbObject> freshLike(const AcDbObject& object) {
        return std::unique_ptr<AcDbObject>(AcDbObject::cast(object.isA()->create()));
    }

    static Acad::ErrorStatus readInto(AcDbObject& object, DwgRecord record) {
        MemoryFiler filer(object.database(), AcDb::kFileFiler, std::move(record));
        return object.dwgIn(&filer);
    }

private:
    std::vector<AcDbObjectId> entities_;
};

TEST_F(RichDrawing, EveryClassComesBackWhole) {
    std::set<const AcRxClass*> seen;
    for (const AcDbObject* const object : objects()) {
        const auto record = recordOf(*object, AcDb::kFileFiler);
        ASSERT_TRUE(record);
        const std::unique_ptr<AcDbObject> fresh = freshLike(*object);
        ASSERT_TRUE(fresh) << object->isA()->name();
        ASSERT_EQ(readInto(*fresh, *record), Acad::eOk) << object->isA()->name();
        EXPECT_EQ(groupsOf(*fresh, db()), groupsOf(*object, db())) << object->isA()->name();
        EXPECT_EQ(exactly(*fresh), exactly(*record)) << object->isA()->name();
        seen.insert(object->isA());
    }
    // Nothing that can be made is left out.
    for (const ClassDescriptor describe : builtInClasses()) {
        AcRxClass* const cls = describe();
        const std::unique_ptr<AcRxObject> made(cls->create());
        if (AcDbObject::cast(made.get())) {
            EXPECT_TRUE(seen.contains(cls)) << cls->name();
        }
    }
}

TEST_F(RichDrawing, ContentsThatGroupsDoNotHoldComeBackToo) {
    const auto* const blocks = peek<AcDbSymbolTable>(db().blockTableId());
    const std::unique_ptr<AcDbObject> table = freshLike(*blocks);
    ASSERT_EQ(readInto(*table, *recordOf(*blocks, AcDb::kFileFiler)), Acad::eOk);
    EXPECT_EQ(readState<TableState>(table.get()).records, readState<TableState>(blocks).records);
    EXPECT_EQ(readState<TableState>(table.get()).byName, readState<TableState>(blocks).byName);
    const auto* const space = peek<AcDbBlockTableRecord>(db().modelSpaceId());
    const std::unique_ptr<AcDbObject> block = freshLike(*space);
    ASSERT_EQ(readInto(*block, *recordOf(*space, AcDb::kFileFiler)), Acad::eOk);
    EXPECT_EQ(readState<BlockState>(block.get()).entities, readState<BlockState>(space).entities);
}

// A record that ends too early, one that has another kind of value somewhere: reading says so, and the object
// is as it was before.
TEST_F(RichDrawing, DamagedRecordsAreRefusedAndChangeNothing) {
    for (const AcDbObject* const object : objects()) {
        if (object->isA()->appName())
            continue;  // whether a module's class reads half of it is its own affair
        const DwgRecord record = *recordOf(*object, AcDb::kFileFiler);
        const std::unique_ptr<AcDbObject> fresh = freshLike(*object);
        const std::wstring before = exactly(*fresh);
        for (std::size_t at = 0; at < record.values.size(); ++at) {
            DwgRecord shorter = record;
            shorter.values.resize(at);
            ASSERT_EQ(readInto(*fresh, std::move(shorter)), Acad::eEndOfObject) << object->isA()->name();
            DwgRecord wrong = record;
            wrong.values[at] = std::int16_t{1};  // no class of the host files such a value
            ASSERT_EQ(readInto(*fresh, std::move(wrong)), Acad::eFilerError) << object->isA()->name();
            ASSERT_EQ(exactly(*fresh), before) << object->isA()->name();
        }
    }
}

TEST_F(RichDrawing, NumbersOfElementsThatCannotBeCostNothing) {
    for (const AcDbObject* const object : objects()) {
        const DwgRecord record = *recordOf(*object, AcDb::kFileFiler);
        for (std::size_t at = 0; at < record.values.size(); ++at) {
            if (!std::holds_alternative<std::int32_t>(record.values[at]) || object->isA()->appName())
                continue;
            for (const std::int32_t number : {-1, 0x7FFFFFFF}) {
                DwgRecord wrong = record;
                wrong.values[at] = number;
                const std::unique_ptr<AcDbObject> fresh = freshLike(*object);
                const std::wstring before = exactly(*fresh);
                if (readInto(*fresh, std::move(wrong)) != Acad::eOk) {
                    ASSERT_EQ(exactly(*fresh), before) << object->isA()->name();
                }
            }
        }
    }
}

TEST_F(RichDrawing, RecordsOfOtherClassesAreRefused) {
    std::map<std::wstring, const AcDbObject*> examples;
    for (const AcDbObject* const object : objects())
        examples.emplace(object->isA()->name(), object);
    const auto refuses = [&](const wchar_t* reader, const wchar_t* written) {
        const std::unique_ptr<AcDbObject> fresh = freshLike(*examples.at(reader));
        const std::wstring before = exactly(*fresh);
        EXPECT_NE(readInto(*fresh, *recordOf(*examples.at(written), AcDb::kFileFiler)), Acad::eOk)
            << reader << L" took " << written;
        EXPECT_EQ(exactly(*fresh), before);
    };
    refuses(L"AcDbLine", L"AcDbCircle");
    refuses(L"AcDbCircle", L"AcDbLine");
    refuses(L"AcDbMText", L"AcDbText");
    refuses(L"AcDbDictionary", L"AcDbLine");
    refuses(L"AcDbBlockTableRecord", L"AcDbLayerTableRecord");
    refuses(L"AcDbUnknownEntity", L"AcDbPolyline");
}

using Records = DrawingTest;

TEST_F(Records, IdsThatDoNotExistThereReadAsNullAndReadingGoesOn) {
    MemoryFiler out(&db(), AcDb::kFileFiler);
    out.writeHardPointerId(db().layerZero());
    out.writeSoftPointerId(db().modelSpaceId());
    out.writeSoftOwnershipId(AcDbObjectId());
    out.writeInt32(7);
    MemoryFiler in(&db(), AcDb::kWblockCloneFiler, std::move(out.record()));
    in.setTranslation([&](AcDbObjectId id, ReferenceKind kind) {
        EXPECT_FALSE(id.isNull());
        return kind == ReferenceKind::SoftPointer ? db().layerZero() : AcDbObjectId();
    });
    AcDbObjectId id = db().modelSpaceId();
    EXPECT_EQ(in.readHardPointerId(&id), static_cast<Acad::ErrorStatus>(13));
    EXPECT_TRUE(id.isNull());
    EXPECT_EQ(in.filerStatus(), Acad::eOk);
    EXPECT_EQ(in.readSoftPointerId(&id), Acad::eOk);
    EXPECT_EQ(id, db().layerZero());
    EXPECT_EQ(in.readSoftOwnershipId(&id), Acad::eOk);  // null was written, null is read
    std::int32_t number = 0;
    EXPECT_EQ(in.readInt32(&number), Acad::eOk);
    EXPECT_EQ(number, 7);
}

TEST_F(Records, TheFirstFailureStaysUntilItIsReset) {
    MemoryFiler out(&db(), AcDb::kFileFiler);
    out.writeHardPointerId(db().layerZero());
    out.writeString(L"text");
    MemoryFiler in(&db(), AcDb::kFileFiler, std::move(out.record()));
    AcDbObjectId id;
    EXPECT_EQ(in.readSoftPointerId(&id), Acad::eFilerError);  // another meaning was written
    ACHAR* text = nullptr;
    EXPECT_EQ(in.readString(&text), Acad::eFilerError);
    EXPECT_EQ(text, nullptr);
    in.resetFilerStatus();
    EXPECT_EQ(in.readHardPointerId(&id), Acad::eOk);
    EXPECT_EQ(id, db().layerZero());
    EXPECT_EQ(in.readString(&text), Acad::eOk);
    EXPECT_STREQ(text, L"text");
    acutDelString(text);
    EXPECT_EQ(in.readString(&text), Acad::eEndOfObject);
}

TEST_F(Records, BytesAreReadInTheSizeTheyWereWritten) {
    const std::uint8_t bytes[] = {1, 2, 3};
    MemoryFiler out(&db(), AcDb::kFileFiler);
    out.writeBytes(bytes, 3);
    out.writeBytes(nullptr, 0);
    MemoryFiler in(&db(), AcDb::kFileFiler, out.record());
    std::uint8_t read[4] = {9, 9, 9, 9};
    EXPECT_EQ(in.readBytes(read, 4), Acad::eFilerError);
    EXPECT_EQ(read[0], 9);
    MemoryFiler again(&db(), AcDb::kFileFiler, out.record());
    EXPECT_EQ(again.readBytes(read, 3), Acad::eOk);
    EXPECT_EQ(read[2], 3);
    EXPECT_EQ(again.readBytes(read, 0), Acad::eOk);
}

}  // namespace
