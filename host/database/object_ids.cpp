// Stubs, object ids and entity names.

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/stub_registry.h"

namespace drafthost {
namespace {

constexpr std::size_t kBlockSize = 1024;
// Names count up in steps of 16 from here, like addresses: small numbers and most made-up ones are no names.
constexpr std::int64_t kFirstName = 0x7ef00000000;
constexpr std::int64_t kNameStep = 16;

// All stubs of the process. Never released: ids and names outlive databases, and even static objects may hold
// them.
struct StubRegistry {
    std::vector<std::unique_ptr<AcDbStub[]>> blocks;
    std::size_t count = 0;
    std::vector<AcDbDatabase*> databases;
};

StubRegistry& registry() {
    static auto* const instance = new StubRegistry;
    return *instance;
}

}  // namespace

AcDbStub* newStub(AcDbDatabase* database, AcDbHandle handle) {
    StubRegistry& stubs = registry();
    if (stubs.count == stubs.blocks.size() * kBlockSize) {
        stubs.blocks.push_back(std::make_unique<AcDbStub[]>(kBlockSize));
    }
    AcDbStub& stub = stubs.blocks.back()[stubs.count % kBlockSize];
    stub.name = kFirstName + static_cast<std::int64_t>(stubs.count) * kNameStep;
    stub.database = database;
    stub.handle = handle;
    ++stubs.count;
    return &stub;
}

AcDbStub* findStub(const ads_name name) {
    if (!name || name[1] != 0 || name[0] < kFirstName || (name[0] - kFirstName) % kNameStep != 0)
        return nullptr;
    const auto index = static_cast<std::size_t>((name[0] - kFirstName) / kNameStep);
    if (index >= registry().count)
        return nullptr;
    AcDbStub& stub = registry().blocks[index / kBlockSize][index % kBlockSize];
    return stub.database && stub.object ? &stub : nullptr;
}

const std::vector<AcDbDatabase*>& liveDatabases() {
    return registry().databases;
}

void registerDatabase(AcDbDatabase* database) {
    registry().databases.push_back(database);
}
void unregisterDatabase(AcDbDatabase* database) {
    std::erase(registry().databases, database);
}

}  // namespace drafthost

const AcDbObjectId AcDbObjectId::kNull;

bool AcDbObjectId::isValid() const {
    return stub_ && stub_->database && stub_->object;
}
bool AcDbObjectId::isErased() const {
    return !isValid() || stub_->erased;
}
AcDbHandle AcDbObjectId::handle() const {
    return stub_ ? stub_->handle : AcDbHandle();
}
AcDbDatabase* AcDbObjectId::database() const {
    return stub_ ? stub_->database : nullptr;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    AcDbStub* const stub = drafthost::findStub(name);
    id = AcDbObjectId(stub);
    return stub ? Acad::eOk : Acad::eInvalidAdsName;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id) {
    ads_name_clear(name);
    if (id.isNull())
        return Acad::eNullObjectId;
    if (!id.isValid())
        return Acad::ePermanentlyErased;
    name[0] = id.stub()->name;
    return Acad::eOk;
}
