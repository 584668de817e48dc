#include "host/database/transactions.h"

#include <ranges>

#include "host/database/open_counters.h"
#include "host/database/open_state.h"

AcDbTransactionManager::~AcDbTransactionManager() = default;

namespace drafthost {

Acad::ErrorStatus TransactionManager::startTransaction() {
    // Only the innermost level listens; its log is merged into the next one, at last into the undo step's,
    // when it ends. So an abort leaves nothing behind there.
    std::erase(impl_.logs, levels_.empty() ? impl_.undoStep : &levels_.back()->log);
    levels_.push_back(std::make_unique<Level>());
    levels_.back()->modificationsBefore = impl_.modifications;
    impl_.logs.push_back(&levels_.back()->log);
    return Acad::eOk;
}

void TransactionManager::leaveLevel() {
    std::erase(impl_.logs, &levels_.back()->log);
    levels_.pop_back();
    if (!levels_.empty())
        impl_.logs.push_back(&levels_.back()->log);
    else if (impl_.undoStep)
        impl_.logs.push_back(impl_.undoStep);
}

Acad::ErrorStatus TransactionManager::endTransaction() {
    if (levels_.empty())
        return Acad::eNoActiveTransactions;
    Level& level = *levels_.back();
    if (levels_.size() > 1) {
        Level& outer = *levels_[levels_.size() - 2];
        level.log.mergeInto(outer.log);
        outer.residents.insert(outer.residents.end(), level.residents.begin(), level.residents.end());
    } else {
        for (const Resident& resident : std::views::reverse(level.residents))
            closeResident(resident);
        if (impl_.undoStep)
            level.log.mergeInto(*impl_.undoStep);
    }
    leaveLevel();
    return Acad::eOk;
}

Acad::ErrorStatus TransactionManager::abortTransaction() {
    if (levels_.empty())
        return Acad::eNoActiveTransactions;
    Level& level = *levels_.back();
    for (const Resident& resident : std::views::reverse(level.residents))
        closeResident(resident);
    level.log.revert(*impl_.database, ChangeLog::Removal::ForGood);
    impl_.modifications = level.modificationsBefore;
    leaveLevel();
    return Acad::eOk;
}

// For an object that a transaction holds already.
Acad::ErrorStatus TransactionManager::reopen(AcDbStub& stub, AcDb::OpenMode mode) {
    if (mode != AcDb::kForWrite || stub.transactionWrite)
        return Acad::eOk;
    if (stub.readers > 1)
        return Acad::eWasOpenForRead;
    if (stub.writer)
        return Acad::eWasOpenForWrite;
    if (stub.notify)
        return Acad::eWasOpenForNotify;
    if (const auto status = mayWrite(stub); status != Acad::eOk)
        return status;
    stub.readers = 0;
    stub.transactionRead = false;
    stub.writer = stub.transactionWrite = true;
    stub.modified = false;
    levels_.back()->residents.push_back({&stub, true});
    return Acad::eOk;
}

Acad::ErrorStatus TransactionManager::getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                                bool openErased) {
    object = nullptr;
    if (levels_.empty())
        return Acad::eNoActiveTransactions;
    if (id.isNull())
        return Acad::eNullObjectId;
    if (!id.isValid())
        return Acad::ePermanentlyErased;
    if (id.database() != impl_.database)
        return Acad::eWrongDatabase;
    AcDbStub& stub = *id.stub();
    if (stub.erased && !openErased)
        return Acad::eWasErased;
    if (mode == AcDb::kForNotify)
        return Acad::eInvalidOpenState;
    if (stub.transactionRead || stub.transactionWrite) {
        if (const auto status = reopen(stub, mode); status != Acad::eOk)
            return status;
    } else {
        if (const auto status = openStub(stub, mode); status != Acad::eOk)
            return status;
        (mode == AcDb::kForWrite ? stub.transactionWrite : stub.transactionRead) = true;
        levels_.back()->residents.push_back({&stub, false});
    }
    object = stub.object;
    return Acad::eOk;
}

void TransactionManager::closeResident(const Resident& resident) {
    AcDbStub& stub = *resident.stub;
    if (resident.upgraded) {
        if (!stub.transactionWrite)
            return;  // its class went meanwhile, and nobody has it open any more
        stub.writer = stub.transactionWrite = false;
        stub.readers = 1;
        stub.transactionRead = true;
        return;
    }
    if (stub.transactionWrite)
        stub.writer = stub.transactionWrite = false;
    else if (stub.transactionRead)
        --stub.readers, stub.transactionRead = false;
    else
        return;
    --openCounters().openObjects;
}

}  // namespace drafthost
