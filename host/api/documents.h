#pragma once

// Open documents and their locks.

#include "host/api/database.h"

namespace AcAp {
enum DocLockMode {
    kNone = 0,
    kAutoWrite = 1,
    kNotLocked = 2,
    kWrite = 4,
    kProtectedAutoWrite = 0x14,
    kRead = 0x20,
    kXWrite = 0x40
};
}

class DRAFTHOST_API AcApDocument : public AcRxObject {
public:
    virtual const ACHAR* fileName() const = 0;  // full path, or "Drawing1.dxf" for a new one
    virtual AcDbDatabase* database() const = 0;
    virtual AcDbTransactionManager* transactionManager() const = 0;
    virtual AcAp::DocLockMode lockMode() const = 0;
};

// Steps through the open documents. Deleted by the caller.
class DRAFTHOST_API AcApDocumentIterator {
public:
    virtual ~AcApDocumentIterator();
    virtual bool done() const = 0;
    virtual void step() = 0;
    virtual AcApDocument* document() = 0;
};

class DRAFTHOST_API AcApDocManager : public AcRxObject {
public:
    virtual AcApDocument* curDocument() const = 0;  // whose context is running; null when none is open
    virtual AcApDocument* mdiActiveDocument() const = 0;
    virtual AcApDocument* document(const AcDbDatabase* database) const = 0;  // null for a side database
    virtual AcApDocumentIterator* newAcApDocumentIterator() = 0;
    // Locks are counted: each lockDocument needs one unlockDocument. Names may be null. eNoDocument for null.
    virtual Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode = AcAp::kWrite,
                                           const ACHAR* globalCommand = nullptr,
                                           const ACHAR* localCommand = nullptr, bool prompt = true) = 0;
    virtual Acad::ErrorStatus unlockDocument(AcApDocument* document) = 0;
};
DRAFTHOST_API AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
