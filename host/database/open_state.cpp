#include "host/database/open_state.h"

#include "host/database/open_counters.h"
#include "host/database/table_states.h"

namespace drafthost {

bool (*writeAllowed)(const AcDbDatabase* database) = nullptr;

namespace {

bool isOnLockedLayer(const AcDbStub& stub) {
    if (!stub.object->isKindOf(AcDbEntity::desc()))
        return false;
    constexpr std::int32_t kLocked = 4;
    const auto* const layer = peek<AcDbLayerTableRecord>(readState<EntityState>(stub.object).layer);
    return layer && (readState<LayerState>(layer).flags & kLocked) != 0;
}

Acad::ErrorStatus conflict(const AcDbStub& stub, AcDb::OpenMode mode) {
    if (stub.notify)
        return Acad::eWasOpenForNotify;
    if (mode == AcDb::kForNotify)
        return Acad::eOk;
    if (stub.writer)
        return Acad::eWasOpenForWrite;
    if (mode == AcDb::kForWrite && stub.readers > 0)
        return Acad::eWasOpenForRead;
    return Acad::eOk;
}

}  // namespace

bool mayWrite(const AcDbDatabase& database) {
    const AcDbDatabase::Impl& impl = database.impl();
    return impl.loading || impl.noDocument || !writeAllowed || writeAllowed(&database);
}

Acad::ErrorStatus mayWrite(const AcDbStub& stub) {
    if (stub.database->impl().loading)
        return Acad::eOk;
    if (!mayWrite(*stub.database))
        return Acad::eLockViolation;
    return isOnLockedLayer(stub) ? Acad::eOnLockedLayer : Acad::eOk;
}

Acad::ErrorStatus openStub(AcDbStub& stub, AcDb::OpenMode mode) {
    if (const auto status = conflict(stub, mode); status != Acad::eOk)
        return status;
    switch (mode) {
        case AcDb::kForRead: ++stub.readers; break;
        case AcDb::kForNotify: stub.notify = true; break;
        case AcDb::kForWrite:
            if (const auto status = mayWrite(stub); status != Acad::eOk)
                return status;
            stub.writer = true;
            stub.modified = false;
            break;
        default: return Acad::eInvalidInput;
    }
    ++openCounters().openObjects;
    return Acad::eOk;
}

void openNew(AcDbStub& stub) {
    stub.writer = true;
    stub.modified = true;
    ++openCounters().openObjects;
}

void closeAll(AcDbStub& stub) {
    openCounters().openObjects -= stub.readers + (stub.writer ? 1 : 0) + (stub.notify ? 1 : 0);
    stub.readers = 0;
    stub.writer = stub.notify = stub.transactionRead = stub.transactionWrite = false;
}

}  // namespace drafthost
