#include "host/database/database_impl.h"

#include <algorithm>
#include <utility>

#include "host/database/entity_data.h"
#include "host/database/open_state.h"
#include "host/database/stub_registry.h"
#include "host/database/table_states.h"
#include "host/database/transactions.h"

using namespace drafthost;

AcDbDatabase::Impl::Impl(AcDbDatabase* owner, bool sideDatabase)
    : database(owner), noDocument(sideDatabase), transactions(std::make_unique<TransactionManager>(*this)) {
    registerDatabase(owner);
}

AcDbDatabase::Impl::~Impl() {
    unregisterDatabase(database);
    forgetMaking(database);
    forgetTableSteps(database);
    for (AcDbStub* const stub : stubs) {
        closeAll(*stub);
        stub->database =
            nullptr;  // before objects go, so that their ids are stale for each other's destructors
    }
    for (AcDbStub* const stub : stubs)
        delete std::exchange(stub->object, nullptr);
    for (AcDbObject* const object : removedWhileOpen)
        delete object;
}

AcDbStub* AcDbDatabase::Impl::find(AcDbHandle handle) const {
    const auto found = byHandle.find(handle.value());
    return found == byHandle.end() ? nullptr : found->second;
}

AcDbStub* AcDbDatabase::Impl::reserve(AcDbHandle handle) {
    if (handle.isNull())
        return nullptr;
    AcDbStub*& stub = byHandle[handle.value()];
    if (!stub) {
        stub = newStub(database, handle);
        stubs.push_back(stub);
        nextHandle = std::max(nextHandle, handle.value() + 1);
    }
    return stub;
}

Acad::ErrorStatus AcDbDatabase::Impl::add(AcDbObject* object, AcDbObjectId owner, AcDbHandle handle,
                                          AcDbObjectId& id) {
    if (!object)
        return Acad::eNullObjectPointer;
    ObjectImp& imp = ObjectImp::of(object);
    if (imp.stub)
        return Acad::eAlreadyInDb;
    if (handle.isNull())
        handle = AcDbHandle(nextHandle);
    AcDbStub* const known = find(handle);
    if (known && known->object)
        return Acad::eHandleExists;

    AcDbStub* const stub = reserve(handle);
    stub->object = object;
    stub->erased = false;
    imp.stub = stub;
    if (!owner.isNull())
        imp.state->owner = owner;
    openNew(*stub);
    id = AcDbObjectId(stub);
    if (!loading) {
        for (ChangeLog* const log : logs)
            log->added(stub);
        ++modifications;
    }
    return Acad::eOk;
}

void AcDbDatabase::Impl::remove(AcDbStub* stub) {
    AcDbObject* const object = std::exchange(stub->object, nullptr);
    if (!object)
        return;
    stub->erased = true;
    // A caller that still has the object open closes it later; until then its memory must stay.
    if (isOpen(*stub))
        removedWhileOpen.push_back(object);
    else
        delete object;
}

DatabaseSettings& AcDbDatabase::Impl::changeSettings() {
    if (!loading) {
        for (ChangeLog* const log : logs)
            log->beforeSettingsChange(settings);
        ++modifications;
    }
    return settings;
}

namespace drafthost {

bool prepareWrite(AcDbObject* object) {
    AcDbStub* const stub = ObjectImp::of(object).stub;
    if (!stub)
        return true;
    if (!stub->database)
        return false;
    AcDbDatabase::Impl& impl = stub->database->impl();
    if (impl.loading)
        return true;
    if (!stub->writer || !stub->object)
        return false;
    noteChange(*stub);
    stub->modified = true;
    return true;
}

void noteChange(AcDbStub& stub) {
    AcDbDatabase::Impl& impl = stub.database->impl();
    if (impl.loading)
        return;
    for (ChangeLog* const log : impl.logs)
        log->beforeChange(&stub);
    ++impl.modifications;
}

AcDbDatabase* databaseOrWorking(const AcDbObject& object) {
    if (AcDbDatabase* const own = object.database())
        return own;
    AcDbHostApplicationServices* const services = acdbHostApplicationServices();
    return services ? services->workingDatabase() : nullptr;
}

AcDbObjectId findRecord(const AcDbDatabase* database, TableIndex table, std::wstring_view name) {
    if (!database)
        return {};
    const auto* const object = peek<AcDbSymbolTable>(database->impl().table(table));
    AcDbObjectId id;
    if (object)
        object->getAt(std::wstring(name).c_str(), id);
    return id;
}

AcDbObjectId findRecord(const AcDbDatabase* database, TableKind table, std::wstring_view name) {
    switch (table) {
        case TableKind::Layer: return findRecord(database, TableIndex::Layer, name);
        case TableKind::Linetype: return findRecord(database, TableIndex::Linetype, name);
        case TableKind::TextStyle: return findRecord(database, TableIndex::TextStyle, name);
        case TableKind::Block: return findRecord(database, TableIndex::Block, name);
        case TableKind::None: break;
    }
    return {};
}

const std::wstring& recordName(AcDbObjectId record) {
    static const std::wstring none;
    const auto* const object = peek<AcDbSymbolTableRecord>(record);
    return object ? readState<RecordState>(object).name : none;
}

}  // namespace drafthost
