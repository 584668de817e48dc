#pragma once

// By whom an object is open: the rules of opening and closing.

#include <utility>

#include "host/database/database_impl.h"

namespace drafthost {

// Whether anything may be changed in the database: its document is locked for writing, or needs no lock.
bool mayWrite(const AcDbDatabase& database);

// Whether the object may be changed at all: its document is locked for writing, its layer is not locked.
// eOk, eLockViolation, eOnLockedLayer.
Acad::ErrorStatus mayWrite(const AcDbStub& stub);

// Opens in the mode, or says why not.
Acad::ErrorStatus openStub(AcDbStub& stub, AcDb::OpenMode mode);

// An object that was just put into its database is open for write.
void openNew(AcDbStub& stub);

// Ends everything, without further ado: the database or the object goes away.
void closeAll(AcDbStub& stub);

// While it lives, objects of the database may be changed whatever their open state, and no log is told: as
// while a file is read.
class WhateverOpen {
public:
    explicit WhateverOpen(AcDbDatabase& database)
        : loading_(database.impl().loading), before_(std::exchange(loading_, true)) {}
    ~WhateverOpen() { loading_ = before_; }
    WhateverOpen(const WhateverOpen&) = delete;
    WhateverOpen& operator=(const WhateverOpen&) = delete;

private:
    bool& loading_;
    const bool before_;
};

inline bool isOpen(const AcDbStub& stub) {
    return stub.readers > 0 || stub.writer || stub.notify;
}

}  // namespace drafthost
