#pragma once

// Nested transactions of one database.

#include <vector>

#include "host/database/change_log.h"
#include "host/database/database_impl.h"

namespace drafthost {

class TransactionManager : public AcDbTransactionManager {
public:
    explicit TransactionManager(AcDbDatabase::Impl& impl) : impl_(impl) {}
    Acad::ErrorStatus startTransaction() override;
    Acad::ErrorStatus endTransaction() override;
    Acad::ErrorStatus abortTransaction() override;
    int numActiveTransactions() const override { return static_cast<int>(levels_.size()); }
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                bool openErased) override;

private:
    // An object that this level opened, or turned from reading to writing.
    struct Resident {
        AcDbStub* stub;
        bool upgraded;
    };
    struct Level {
        ChangeLog log;
        std::vector<Resident> residents;
        std::uint64_t modificationsBefore = 0;
    };
    Acad::ErrorStatus reopen(AcDbStub& stub, AcDb::OpenMode mode);
    static void closeResident(const Resident& resident);
    void leaveLevel();

    AcDbDatabase::Impl& impl_;
    std::vector<std::unique_ptr<Level>> levels_;
};

}  // namespace drafthost
