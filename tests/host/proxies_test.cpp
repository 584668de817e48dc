// Objects of modules' classes: what becomes of them while their class is away, and when it is back.

#include "host/database/entity_data.h"
#include "host/database/loading.h"
#include "host/database/proxies.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

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

// It would stand there twice when the creation is done again.
TEST_F(ProxyUndo, DoesNotMakeALayerAnewThatWasTakenBack) {
    const AcDbObjectId id = addTag(L"text");
    ChangeLog log;
    db().impl().logs.push_back(&log);
    const AcDbObjectId layer = addLayer(L"TAKEN BACK");
    ASSERT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite)->setLayer(layer), Acad::eOk);
    std::erase(db().impl().logs, &log);
    ChangeLog redo = log.revert(db(), ChangeLog::Removal::AsErased);
    unload();
    EXPECT_TRUE(findRecord(&db(), TableIndex::Layer, L"TAKEN BACK").isNull());
    redo.revert(db(), ChangeLog::Removal::AsErased);
    EXPECT_EQ(findRecord(&db(), TableIndex::Layer, L"TAKEN BACK"), layer);
    load();
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->layerId(), layer);
}

TEST_F(Classes, ObjectsChangedByListsKeepMembersAndForeignGroups) {
    AcDbObjectId id;
    {
        const LoadScope scope(db());
        id = loadEntity(db(), AcDbObjectId(),
                        {{0, std::wstring(L"TAG")},
                         {100, std::wstring(L"AcDbEntity")},
                         {8, std::wstring(L"0")},
                         {284, std::int64_t{1}},
                         {100, std::wstring(L"Tag")},
                         {1, std::wstring(L"text")}})
                 .id;
    }
    AcDbObjectPointer<Tag>(id, AcDb::kForWrite)->symbol = addBlock(L"SYMBOL");
    for (const wchar_t* const text : {L"one", L"two"}) {
        std::vector<DxfGroup> groups = entityGroups(id);
        std::ranges::find(groups, 1, &DxfGroup::code)->value = std::wstring(text);
        ASSERT_EQ(acdbEntMod(List(listOfGroups(groups)).get()), RTNORM);
        EXPECT_EQ(textOf(id), text);
        EXPECT_FALSE(AcDbObjectPointer<Tag>(id, AcDb::kForRead)->symbol.isNull());
        EXPECT_EQ(std::ranges::count(entityGroups(id), 284, &DxfGroup::code), 1);  // known to nobody
    }
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
