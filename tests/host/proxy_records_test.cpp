// Proxies whose class is older than they are, and proxies in files and in inserted drawings.

#include "host/database/proxies.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"
#include "tests/host/tag_entity.h"

using namespace drafthost;

namespace {

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

TEST_F(ProxyFiles, KeepRecordsThatCannotBeAsTheyStand) {
    setVersion(L"AC1024");
    const AcDbHandle handle = appendProxy(laterRecord(L"later")).handle();
    const std::string bytes = exchange::dxfBytes(db());
    Tag::newestVersion = 3;
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"300\r\nlater", "303\r\nlater"},
                                   {" 91\r\n3\r\n310", " 91\r\n9\r\n310"}}) {
        AcDbDatabase database(false, true);
        const std::string damaged = changed(bytes, from, to);
        EXPECT_EQ(read(database, damaged).audit.errorsFound(), 0u) << from;
        AcDbObjectId id;
        ASSERT_EQ(database.getAcDbObjectId(id, handle), Acad::eOk);
        EXPECT_TRUE(proxyAt(id)) << from;
        EXPECT_EQ(exchange::dxfBytes(database), damaged) << from;
    }
    AcDbDatabase other(false, true);  // the record of a class that is not the object's
    read(other, changed(bytes, "AcDbKeptRecord\r\n  1\r\nTag", "AcDbKeptRecord\r\n  1\r\nAcDbLine"));
    AcDbObjectId id;
    ASSERT_EQ(other.getAcDbObjectId(id, handle), Acad::eOk);
    EXPECT_TRUE(proxyAt(id));
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

TEST_F(ProxyFiles, InInsertedDrawingsReferToWhatCameAlong) {
    addTag(L"inserted");
    const AcDbObjectId later = appendProxy(laterRecord(L"later"));
    unload();
    AcDbDatabase target(true, true);
    AcDbObjectId block;
    ASSERT_EQ(target.insert(block, L"SHEET", &db()), Acad::eOk);
    EXPECT_FALSE(later.isErased());
    const auto ids = peek<AcDbBlockTableRecord>(block)->entityIds();
    ASSERT_EQ(ids.length(), 2);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(ids[0], AcDb::kForWrite)->setColorIndex(1), Acad::eProxyRefused);
    EXPECT_EQ(classRecords(exchange::dxfBytes(target), "TAG").size(), 1u);
    load();
    renew();
    for (const AcDbObjectId id : ids) {
        const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
        ASSERT_TRUE(tag);
        EXPECT_EQ(tag->symbol.database(), &target);
        EXPECT_TRUE(peek<AcDbBlockTableRecord>(tag->symbol));
    }
    EXPECT_EQ(textOf(ids[0]), L"inserted");
    EXPECT_EQ(textOf(ids[1]), L"later");
}

}  // namespace
