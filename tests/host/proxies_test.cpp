// Objects of modules' classes: what becomes of them while their class is away, older than they are, or back.

#include "host/database/class_records.h"
#include "host/database/entity_data.h"
#include "host/database/loading.h"
#include "host/database/proxies.h"
#include "host/database/unknown_objects.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

const AcDbUnknownEntity* proxyAt(AcDbObjectId id) {
    return peek<AcDbUnknownEntity>(id);
}

void erase(AcDbObjectId id) {
    ASSERT_EQ(AcDbObjectPointer<AcDbObject>(id, AcDb::kForWrite)->erase(), Acad::eOk);
}

using Classes = TagTest;

TEST_F(Classes, AreFoundByNameWhileTheyAreThere) {
    auto* const dictionary = AcRxDictionary::cast(acrxSysRegistry()->at(ACRX_CLASS_DICTIONARY));
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->at(L"Tag"), Tag::cls);
    EXPECT_EQ(dictionary->at(L"tag"), nullptr);  // names are compared as they stand
    EXPECT_EQ(dictionary->at(nullptr), nullptr);
    EXPECT_EQ(acrxSysRegistry()->at(L"NoSuchDictionary"), nullptr);
    const std::uint32_t before = dictionary->numEntries();
    const AcRxClass* const gone = Tag::cls;
    unload();
    EXPECT_EQ(dictionary->at(L"Tag"), nullptr);
    EXPECT_EQ(dictionary->numEntries(), before - 1);
    EXPECT_FALSE(AcDbLine().isKindOf(gone));  // a module may still have the address
    EXPECT_EQ(gone->create(), nullptr);
    load();
    EXPECT_EQ(dictionary->at(L"Tag"), Tag::cls);
}

TEST_F(Classes, AreRegisteredOnceAndDerive) {
    EXPECT_EQ(newAcRxClass(L"Tag", L"AcDbEntity", 1, 1, 0, nullptr, nullptr, L"x"), nullptr);
    EXPECT_EQ(newAcRxClass(L"Other", L"AcDbEntity", 1, 1, 0, nullptr, L"tag", L"x"), nullptr);
    EXPECT_EQ(newAcRxClass(L"Other", L"AcDbEntity", 1, 1, 0, nullptr, L"LINE", L"x"), nullptr);
    EXPECT_EQ(newAcRxClass(L"Other", L"NoSuchParent", 1, 1, 0, nullptr, nullptr, L"x"), nullptr);
    EXPECT_TRUE(Tag::cls->isDerivedFrom(AcDbObject::desc()));
    EXPECT_FALSE(AcDbEntity::desc()->isDerivedFrom(Tag::cls));
    EXPECT_FALSE(Tag::cls->isDerivedFrom(AcDbCurve::desc()));
    int version = 0, maintenance = 0;
    Tag::cls->getClassVersion(version, maintenance);
    EXPECT_EQ(version * 10 + maintenance, 11);
    EXPECT_EQ(Tag::cls->proxyFlags(), kProxyEraseAllowed);
    EXPECT_STREQ(Tag::cls->appName(), kTagApplication);
}

// A class derived from another one of a module, with the same members.
AcRxClass* flagClass = nullptr;
class Flag : public Tag {
public:
    AcRxClass* isA() const override { return flagClass; }
};

TEST_F(Classes, GoTogetherWithTheOneTheyDeriveFrom) {
    flagClass = newAcRxClass(L"Flag", L"Tag", 1, 1, 0, &constructObject<Flag>, L"FLAG", nullptr);
    ASSERT_TRUE(flagClass);
    auto* const flag = new Flag;
    flag->text = L"derived";
    const AcDbObjectId id = append(flag);
    unload();
    EXPECT_EQ(acrxFindClass(L"Flag"), nullptr);
    ASSERT_TRUE(proxyAt(id));
    EXPECT_EQ(proxyAt(id)->dxfName(), L"FLAG");
    load();
    EXPECT_TRUE(proxyAt(id));  // of another class than the one that came
    flagClass = newAcRxClass(L"Flag", L"Tag", 1, 1, 0, &constructObject<Flag>, L"FLAG", nullptr);
    acrxBuildClassHierarchy();
    EXPECT_EQ(textOf(id), L"derived");
}

using Proxies = TagTest;

TEST_F(Proxies, KeepWhatFilesDoNotHold) {
    const AcDbObjectId id = addTag(L"kept");
    const AcDbHandle handle = id.handle();
    AcDbObjectPointer<Tag>(id, AcDb::kForWrite)->bytes = {9, 8, 7, 6};
    unload();
    ASSERT_TRUE(proxyAt(id));
    EXPECT_EQ(proxyAt(id)->dxfName(), L"TAG");
    EXPECT_EQ(modelSpaceCount(), 1);
    load();
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->handle(), handle);
    EXPECT_EQ(tag->text, L"kept");
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_EQ(tag->bytes, (std::vector<std::uint8_t>{9, 8, 7, 6}));
    EXPECT_EQ(tag->tiny, -5);
    EXPECT_EQ(tag->small, -500);
    EXPECT_EQ(tag->ownerId(), db().modelSpaceId());
}

TEST_F(Proxies, ReferToWhatWasErasedMeanwhile) {
    const AcDbObjectId id = addTag(L"kept");
    unload();
    erase(symbol());
    load();
    AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_TRUE(tag->symbol.isErased());
}

TEST_F(Proxies, ErasedObjectsComeBackErased) {
    const AcDbObjectId id = addTag(L"kept");
    erase(id);
    unload();
    load();
    EXPECT_TRUE(id.isErased());
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead, true);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->text, L"kept");
}

TEST_F(Proxies, ChangesOfWhatEveryEntityHasAreKept) {
    unload();
    load(kProxyAllOperations);
    ASSERT_EQ(acdbRegApp(L"APP"), RTNORM);
    const AcDbObjectId id = addTag(L"kept"), other = addLayer(L"OTHER");
    unload();
    {
        const AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForWrite);
        ASSERT_EQ(proxy->setLayer(other), Acad::eOk);
        ASSERT_EQ(proxy->setColorIndex(5), Acad::eOk);
        const List data(acutBuildList(1001, L"APP", 1070, 7, RTNONE));
        ASSERT_EQ(proxy->setXData(data.get()), Acad::eOk);
    }
    load(kProxyAllOperations);
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    EXPECT_EQ(tag->text, L"kept");
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_EQ(tag->layerId(), other);
    EXPECT_EQ(tag->colorIndex(), 5);
    const List data(tag->xData(L"APP"));
    EXPECT_TRUE(data);
}

TEST_F(Proxies, ThatAreOpenWaitForTheNextTime) {
    const AcDbObjectId id = addTag(L"kept");
    unload();
    AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForRead);
    load();
    EXPECT_TRUE(proxyAt(id));
    EXPECT_STREQ(proxy->isA()->name(), L"AcDbUnknownEntity");
    proxy.close();
    acrxBuildClassHierarchy();
    EXPECT_EQ(textOf(id), L"kept");
}

TEST_F(Proxies, LeaveOpenObjectsToWhoHasThem) {
    const AcDbObjectId read = addTag(L"read"), written = addTag(L"written");
    AcDbObjectPointer<Tag> reader(read, AcDb::kForRead), writer(written, AcDb::kForWrite);
    ASSERT_EQ(writer->setText(L"written anew"), Acad::eOk);
    AcRxClass* const cls = Tag::cls;
    deleteAcRxClass(cls);  // the code stays, as that of a class does whose module goes on
    EXPECT_EQ(reader->text, L"read");
    EXPECT_TRUE(reader->objectId().isNull());
    EXPECT_EQ(reader.close(), Acad::eNotInDatabase);
    EXPECT_EQ(writer.close(), Acad::eNotInDatabase);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(written, AcDb::kForWrite).openStatus(), Acad::eOk);
    load();
    EXPECT_EQ(textOf(read), L"read");
    EXPECT_EQ(textOf(written), L"written anew");
}

TEST_F(Proxies, EndATransactionThatHadTheObjectOpen) {
    const AcDbObjectId id = addTag(L"before");
    auto& transactions = *db().transactionManager();
    transactions.startTransaction();
    AcDbObject* object = nullptr;
    ASSERT_EQ(transactions.getObject(object, id, AcDb::kForRead, false), Acad::eOk);
    ASSERT_EQ(transactions.getObject(object, id, AcDb::kForWrite, false), Acad::eOk);
    ASSERT_EQ(Tag::cast(object)->setText(L"after"), Acad::eOk);
    unload();
    EXPECT_EQ(transactions.abortTransaction(), Acad::eOk);
    load();
    EXPECT_EQ(textOf(id), L"before");
}

// What is taken back, when the class came or went between the change and then.
class ProxyUndo : public TagTest {
protected:
    void begin() { db().transactionManager()->startTransaction(); }
    void takeBack() { EXPECT_EQ(db().transactionManager()->abortTransaction(), Acad::eOk); }

    void expectTag(AcDbObjectId id, const std::wstring& text) {
        const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
        ASSERT_TRUE(tag);
        EXPECT_EQ(tag->text, text);
        EXPECT_EQ(tag->symbol, symbol());
    }
};

TEST_F(ProxyUndo, ObjectsGetTheirMembersBack) {
    const AcDbObjectId id = addTag(L"before");
    begin();
    setText(id, L"after");
    {
        const AcDbObjectPointer<Tag> tag(id, AcDb::kForWrite);
        ASSERT_TRUE(tag->assertWriteEnabled());
        tag->symbol = AcDbObjectId();
    }
    takeBack();
    expectTag(id, L"before");
    EXPECT_EQ(AcDbObjectPointer<Tag>(id, AcDb::kForRead)->setText(L"x"), Acad::eNotOpenForWrite);
}

TEST_F(ProxyUndo, WhileTheClassIsAway) {
    const AcDbObjectId id = addTag(L"before");
    begin();
    setText(id, L"after");
    unload();
    takeBack();
    ASSERT_TRUE(proxyAt(id));
    // What a file would say now is of then, too.
    const std::vector<DxfGroup> groups = fileGroups(*proxyAt(id));
    EXPECT_TRUE(std::ranges::any_of(groups, [](const DxfGroup& group) {
        const auto* const text = std::get_if<std::wstring>(&group.value);
        return group.code == 1 && text && *text == L"before";
    }));
    load();
    expectTag(id, L"before");
}

TEST_F(ProxyUndo, AfterTheClassWentAndCame) {
    const AcDbObjectId id = addTag(L"before");
    begin();
    setText(id, L"after");
    unload();
    load();
    expectTag(id, L"after");
    const AcDbObject* const object = id.stub()->object;
    takeBack();
    expectTag(id, L"before");
    EXPECT_EQ(id.stub()->object, object);  // nobody is left with another one
}

TEST_F(ProxyUndo, OfAChangeOfTheProxyAfterTheClassCame) {
    const AcDbObjectId id = addTag(L"kept");
    unload();
    begin();
    erase(id);
    load();
    EXPECT_TRUE(id.isErased());
    takeBack();
    EXPECT_FALSE(id.isErased());
    expectTag(id, L"kept");
}

TEST_F(ProxyUndo, OfAProxyThatCameFromAFile) {
    AcDbObjectId id;
    unload();
    {
        const LoadScope scope(db());
        const LoadResult result = loadEntity(db(), AcDbObjectId(),
                                             {{0, std::wstring(L"TAG")},
                                              {100, std::wstring(L"AcDbEntity")},
                                              {8, std::wstring(L"0")},
                                              {100, std::wstring(L"Tag")},
                                              {1, std::wstring(L"from a file")}});
        ASSERT_EQ(result.status, Acad::eOk);
        id = result.id;
    }
    begin();
    erase(id);
    load();
    takeBack();
    EXPECT_EQ(textOf(id), L"from a file");
}

TEST_F(ProxyUndo, RedoesWhatItTookBackAcrossTheClass) {
    const AcDbObjectId id = addTag(L"before");
    ChangeLog log;
    db().impl().logs.push_back(&log);
    setText(id, L"after");
    unload();
    std::erase(db().impl().logs, &log);
    ChangeLog redo = log.revert(db(), ChangeLog::Removal::AsErased);
    load();
    expectTag(id, L"before");
    ChangeLog undo = redo.revert(db(), ChangeLog::Removal::AsErased);
    expectTag(id, L"after");
    unload();
    undo.revert(db(), ChangeLog::Removal::AsErased);
    load();
    expectTag(id, L"before");
}

// Records of other versions than the class's.
class Versions : public TagTest {
protected:
    // As a later version of the class files it.
    DwgRecord laterRecord(const std::wstring& text) {
        const AcDbObjectId id = addTag(text);
        Tag::writtenVersion = 3;
        DwgRecord record = *recordOf(*id.stub()->object, AcDb::kFileFiler);
        Tag::writtenVersion = 2;
        erase(id);
        return record;
    }
    AcDbObjectId appendProxy(const DwgRecord& record) {
        RecordResult made = readRecord(&db(), *Tag::cls, record);
        EXPECT_EQ(made.status, Acad::eMakeMeProxy);
        return append(AcDbEntity::cast(made.object.release()));
    }
    static void renew() {
        Tag::newestVersion = Tag::writtenVersion = 3;
        acrxBuildClassHierarchy();
    }
};

TEST_F(Versions, OfBeforeAreReadOfLaterKept) {
    DwgRecord record = laterRecord(L"later");
    for (DwgRecord::Value& value : record.values) {
        auto* const version = std::get_if<std::int32_t>(&value);
        if (!version || *version != 3)
            continue;
        *version = 1;
        break;
    }
    const RecordResult older = readRecord(&db(), *Tag::cls, record);
    ASSERT_EQ(older.status, Acad::eOk);
    EXPECT_EQ(Tag::cast(older.object.get())->text, L"later");
    record.values.resize(record.values.size() - 2);
    const RecordResult damaged = readRecord(&db(), *Tag::cls, record);
    EXPECT_EQ(damaged.status, Acad::eEndOfObject);
    EXPECT_FALSE(damaged.object);
}

TEST_F(Versions, LaterOnesStayProxiesUntilTheClassIsRenewed) {
    const AcDbObjectId id = appendProxy(laterRecord(L"later"));
    EXPECT_EQ(layerOf(id), L"0");
    acrxBuildClassHierarchy();
    EXPECT_TRUE(proxyAt(id));
    unload();
    load();
    EXPECT_TRUE(proxyAt(id));
    renew();
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->text, L"later");
    EXPECT_EQ(tag->symbol, symbol());
    EXPECT_EQ(tag->ownerId(), db().modelSpaceId());
}

TEST_F(Versions, CopiesKeepTheRecordWhereCopyingIsAllowed) {
    const AcDbObjectId id = appendProxy(laterRecord(L"later"));
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->clone(), nullptr);
    unload();
    load(kProxyCloningAllowed);
    const AcDbObjectId copy =
        append(AcDbEntity::cast(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->clone()));
    ASSERT_TRUE(proxyAt(copy));
    renew();
    EXPECT_EQ(textOf(copy), L"later");
    EXPECT_EQ(AcDbObjectPointer<Tag>(copy, AcDb::kForRead)->symbol, symbol());
}

TEST_F(Versions, IdsInKeptRecordsAreReachedAndTranslated) {
    const DwgRecord record = laterRecord(L"later");
    const AcDbObjectId other = addBlock(L"OTHER");
    const auto translation = [&](AcDbObjectId id, ReferenceKind) { return id == symbol() ? other : id; };
    RecordResult made = readRecord(&db(), *Tag::cls, record, AcDb::kFileFiler, translation);
    ASSERT_EQ(made.status, Acad::eMakeMeProxy);
    const AcDbObjectId id = append(AcDbEntity::cast(made.object.release()));
    int found = 0;
    forEachReference(*ObjectImp::of(id.stub()->object).state,
                     [&](AcDbObjectId& reference, ReferenceKind kind) {
                         if (reference != other)
                             return;
                         ++found;
                         EXPECT_EQ(kind, ReferenceKind::HardPointer);
                         reference = symbol();
                     });
    EXPECT_EQ(found, 1);
    renew();
    EXPECT_EQ(AcDbObjectPointer<Tag>(id, AcDb::kForRead)->symbol, symbol());
}

// Through files.
class ProxyFiles : public Versions {
protected:
    static std::wstring tagText(const AcDbDatabase& database, AcDbHandle handle) {
        AcDbObjectId id;
        database.getAcDbObjectId(id, handle);
        return textOf(id);
    }
    static exchange::DxfReadResult read(AcDbDatabase& database, const std::string& bytes) {
        exchange::DxfReadResult result = exchange::readDxfBytes(database, bytes, L"test.dxf");
        EXPECT_EQ(result.status, Acad::eOk) << result.message;
        return result;
    }
    // The records of a class in the classes section, each from group 1 on.
    static std::vector<std::string> classRecords(const std::string& bytes, const std::string& name) {
        std::vector<std::string> found;
        const std::size_t end = bytes.find("TABLES");
        for (std::size_t at = bytes.find("CLASS\r\n"); at < end; at = bytes.find("CLASS\r\n", at + 1)) {
            std::string record = bytes.substr(at + 7, bytes.find("  0\r\n", at) - at - 7);
            std::erase(record, '\r');
            std::ranges::replace(record, '\n', ' ');
            if (record.starts_with("  1 " + name + " "))
                found.push_back(record);
        }
        return found;
    }
    static std::string changed(std::string text, const std::string& from, const std::string& to) {
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return at == std::string::npos ? text : text.replace(at, from.size(), to);
    }
    void setVersion(const wchar_t* version) {
        db().impl().settings.header.set(L"$ACADVER", {{1, std::wstring(version)}});
    }
};

TEST_F(ProxyFiles, WithoutTheClassChangeNothing) {
    setVersion(L"AC1024");
    addTag(L"one");
    addTag(L"two");
    const std::string first = exchange::dxfBytes(db());
    unload();
    AcDbDatabase without(false, true);
    EXPECT_EQ(read(without, first).audit.errorsFound(), 0u);
    const std::string second = exchange::dxfBytes(without);
    // Only that the class was away is said.
    const auto records = classRecords(second, "TAG");
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0],
              "  1 TAG   2 Tag   3 \"Tags|Example Company|www.example.com\"  90 1  91 2 280 1 281 1 ");
    EXPECT_EQ(changed(second, "280\r\n1\r\n281\r\n1", "280\r\n0\r\n281\r\n1"), first);
    load();
    AcDbDatabase with(false, true);
    read(with, second);
    EXPECT_EQ(exchange::dxfBytes(with), first);
}

TEST_F(ProxyFiles, SayOnceWhatTheClassIs) {
    addTag(L"one");
    erase(addTag(L"erased"));
    const char* const kRecord = "  1 TAG   2 Tag   3 \"Tags|Example Company|www.example.com\"  90 1 ";
    // Files of before 2004 have no counts.
    EXPECT_EQ(classRecords(exchange::dxfBytes(db()), "TAG"),
              std::vector<std::string>{kRecord + std::string("280 0 281 1 ")});
    setVersion(L"AC1018");
    const std::string bytes = exchange::dxfBytes(db());
    EXPECT_EQ(classRecords(bytes, "TAG"),
              std::vector<std::string>{kRecord + std::string(" 91 1 280 0 281 1 ")});
    unload();
    EXPECT_EQ(classRecords(exchange::dxfBytes(db()), "TAG"),
              std::vector<std::string>{kRecord + std::string(" 91 1 280 1 281 1 ")});
    load(kProxyAllOperations);  // a newer module, say
    AcDbDatabase again(false, true);
    read(again, bytes);
    EXPECT_EQ(classRecords(exchange::dxfBytes(again), "TAG").size(), 1u);
    EXPECT_NE(exchange::dxfBytes(again).find(" 90\r\n511\r\n"), std::string::npos);
    EXPECT_EQ(classRecords(bytes, "LAYOUT").size(), 1u);
}

TEST_F(ProxyFiles, HoldRecordsThatNoClassCouldWriteGroupsFor) {
    const AcDbObjectId id = appendProxy(laterRecord(L"later"));
    setVersion(L"AC1024");
    const std::string bytes = exchange::dxfBytes(db());
    AcDbDatabase between(false, true);
    EXPECT_EQ(read(between, bytes).audit.errorsFound(), 0u);
    EXPECT_EQ(exchange::dxfBytes(between), bytes);
    unload();
    AcDbDatabase without(false, true);
    read(without, bytes);
    load();
    Tag::newestVersion = 3;
    AcDbDatabase renewed(false, true);
    read(renewed, exchange::dxfBytes(without));
    EXPECT_EQ(tagText(renewed, id.handle()), L"later");
    AcDbObjectId read;
    renewed.getAcDbObjectId(read, id.handle());
    const AcDbObjectPointer<Tag> tag(read, AcDb::kForRead);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->symbol.handle(), symbol().handle());
    EXPECT_EQ(tag->symbol.database(), &renewed);
    EXPECT_EQ(tag->bytes, (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(ProxyFiles, AreReadThoughTheClassCannotReadAnObject) {
    const AcDbHandle handle = addTag(L"good").handle();
    const std::string bytes = exchange::dxfBytes(db());
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"100\r\nTag\r\n", "100\r\nTog\r\n"},
                                   {"  1\r\ngood", "  1\r\nfrom the future"}}) {
        const std::string damaged = changed(bytes, from, to);
        AcDbDatabase database(false, true);
        const exchange::DxfReadResult result = read(database, damaged);
        ASSERT_EQ(result.audit.findings().size(), 1u);
        EXPECT_EQ(result.audit.findings()[0].code, exchange::AuditCode::UnreadableObject);
        AcDbObjectId id;
        ASSERT_EQ(database.getAcDbObjectId(id, handle), Acad::eOk);
        EXPECT_TRUE(proxyAt(id));
        EXPECT_EQ(exchange::dxfBytes(database), damaged);
    }
}

TEST_F(ProxyFiles, AreAuditedByTheirObjects) {
    const AcDbHandle handle = addTag(L"text").handle();
    const std::string bytes = changed(exchange::dxfBytes(db()), "  1\r\ntext", "  1\r\n");
    AcDbDatabase database(false, true);
    const exchange::DxfReadResult result = read(database, bytes);
    ASSERT_EQ(result.audit.findings().size(), 1u);
    EXPECT_EQ(result.audit.findings()[0].code, exchange::AuditCode::ModuleFinding);
    EXPECT_TRUE(result.audit.findings()[0].text.ends_with(L": no text: must be a text: set to ?"));
    EXPECT_EQ(result.audit.summary(), L"Auditing: 1 errors found, 1 fixed");
    EXPECT_EQ(tagText(database, handle), L"?");
    EXPECT_EQ(database.impl().modifications, 0u);
}

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

TEST_F(Proxies, CopiesOfObjectsHaveAllMembersAndNoPlace) {
    const AcDbObjectId id = addTag(L"kept");
    AcDbObjectPointer<Tag>(id, AcDb::kForWrite)->setColorIndex(4);
    ObjectImp::of(id.stub()->object).state->reactors = {db().layerZero()};
    const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
    const std::unique_ptr<AcDbObject> copy(tag->clone());
    ASSERT_TRUE(Tag::cast(copy.get()));
    EXPECT_EQ(Tag::cast(copy.get())->text, L"kept");
    EXPECT_EQ(Tag::cast(copy.get())->symbol, symbol());
    EXPECT_EQ(Tag::cast(copy.get())->colorIndex(), 4);
    EXPECT_TRUE(copy->ownerId().isNull());
    EXPECT_TRUE(readState<ObjectState>(copy.get()).reactors.empty());
    Tag::writtenVersion = 3;  // which it cannot read itself
    EXPECT_EQ(tag->clone(), nullptr);
}

}  // namespace
