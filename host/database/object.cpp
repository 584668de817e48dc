// AcDbObject: identity, opening and closing, erasing, copying.

#include "host/api/object.h"

#include <utility>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/open_counters.h"
#include "host/database/open_state.h"
#include "host/database/proxies.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcGiDrawable, AcRxObject, nullptr, nullptr)
DRAFTHOST_DEFINE_CLASS(AcDbObject, AcGiDrawable, nullptr, nullptr)

namespace {

// Contents of an object whose class says nothing of its own to us: objects of modules.
struct PlainState : ClonedState<PlainState, ObjectState> {};

// Erases or restores what an object owns, whatever its open state.
void eraseOwned(AcDbObjectId id, bool erasing) {
    if (!id.isValid() || id.stub()->erased == erasing || id.stub()->undone)
        return;
    noteChange(*id.stub());
    id.stub()->erased = erasing;
    const auto* const dictionary = peek<AcDbDictionary>(id);
    for (int i = 0; dictionary && i < dictionary->numEntries(); ++i) {
        const ACHAR* name = nullptr;
        AcDbObjectId entry;
        if (dictionary->entryAt(i, name, entry) == Acad::eOk)
            eraseOwned(entry, erasing);
    }
}

}  // namespace

AcDbObject::AcDbObject() : AcDbObject(newImp<PlainState>()) {}
AcDbObject::AcDbObject(ObjectImp* imp) : imp_(imp) {}

AcDbObject::~AcDbObject() {
    // An object of a living database that a module deletes by mistake must not leave its stub pointing at it.
    if (imp_->stub && imp_->stub->object == this) {
        closeAll(*imp_->stub);
        imp_->stub->object = nullptr;
    }
    delete imp_;
}

AcDbObjectId AcDbObject::objectId() const {
    return AcDbObjectId(imp_->stub);
}
AcDbObjectId AcDbObject::ownerId() const {
    return imp_->state->owner;
}
AcDbHandle AcDbObject::handle() const {
    return imp_->stub ? imp_->stub->handle : AcDbHandle();
}
AcDbDatabase* AcDbObject::database() const {
    return imp_->stub ? imp_->stub->database : nullptr;
}
AcDbObjectId AcDbObject::extensionDictionary() const {
    return imp_->state->extensionDictionary;
}

void AcDbObject::setOwnerId(AcDbObjectId owner) {
    if (prepareWrite(this))
        imp_->state->owner = owner;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    object = nullptr;
    if (id.isNull())
        return Acad::eNullObjectId;
    if (!id.stub()->database)
        return Acad::eNoDatabase;
    if (!id.stub()->object)
        return Acad::ePermanentlyErased;
    if (id.stub()->erased && !openErased)
        return Acad::eWasErased;
    const Acad::ErrorStatus status = openStub(*id.stub(), mode);
    if (status == Acad::eOk)
        object = id.stub()->object;
    return status;
}

Acad::ErrorStatus AcDbObject::close() {
    AcDbStub* const stub = imp_->stub;
    if (!stub)
        return Acad::eNotInDatabase;
    if (stub->notify) {
        stub->notify = false;
    } else if (stub->writer && !stub->transactionWrite) {
        stub->writer = false;
    } else if (stub->readers > (stub->transactionRead ? 1 : 0)) {
        --stub->readers;
    } else {
        return Acad::eInvalidOpenState;  // not open, or open for a transaction that closes it itself
    }
    --openCounters().openObjects;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    AcDbStub* const stub = imp_->stub;
    if (!stub)
        return Acad::eNotInDatabase;
    if (stub->writer)
        return Acad::eWasOpenForWrite;
    if (stub->notify)
        return Acad::eWasOpenForNotify;
    if (stub->readers == 0)
        return Acad::eNotOpenForRead;
    if (stub->readers > 1)
        return Acad::eWasOpenForRead;
    if (stub->erased)
        return Acad::eWasErased;
    if (const auto status = mayWrite(*stub); status != Acad::eOk)
        return status;
    stub->readers = 0;
    stub->transactionWrite = std::exchange(stub->transactionRead, false);
    stub->writer = true;
    stub->modified = false;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    AcDbStub* const stub = imp_->stub;
    if (!stub)
        return Acad::eNotInDatabase;
    if (!stub->writer)
        return Acad::eNotOpenForWrite;
    stub->writer = false;
    stub->readers = 1;
    stub->transactionRead = std::exchange(stub->transactionWrite, false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    AcDbStub* const stub = imp_->stub;
    if (!stub)
        return Acad::eNotInDatabase;
    if (!stub->object || (stub->undone && !erasing))
        return Acad::ePermanentlyErased;
    if (stub->erased == erasing)
        return erasing ? Acad::eWasErased : Acad::eOk;
    // What was erased before its class went may come back.
    if (erasing && proxyRefuses(*this, kProxyEraseAllowed))
        return Acad::eProxyRefused;
    if (!prepareWrite(this))
        return Acad::eNotOpenForWrite;
    if (const auto status = subErase(erasing); status != Acad::eOk)
        return status;
    stub->erased = erasing;
    eraseOwned(imp_->state->extensionDictionary, erasing);
    return Acad::eOk;
}

bool AcDbObject::isErased() const {
    return imp_->stub && imp_->stub->erased;
}
bool AcDbObject::isReadEnabled() const {
    return !imp_->stub || isOpen(*imp_->stub);
}
bool AcDbObject::isWriteEnabled() const {
    return !imp_->stub || (imp_->stub->writer && imp_->stub->object);
}
bool AcDbObject::assertWriteEnabled() {
    return prepareWrite(this);
}
bool AcDbObject::isModified() const {
    return imp_->stub && imp_->stub->writer && imp_->stub->modified;
}

bool AcDbObject::isTransactionResident() const {
    return imp_->stub && (imp_->stub->transactionRead || imp_->stub->transactionWrite);
}

Acad::ErrorStatus AcDbObject::subErase(bool) {
    return Acad::eOk;
}
bool AcDbObject::subWorldDraw(AcGiWorldDraw*) {
    return true;
}
Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler*) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler*) {
    return Acad::eOk;
}

AcDbObject* AcDbObject::clone() const {
    if (isKindOf(AcDbSymbolTable::desc()) || isKindOf(AcDbBlockTableRecord::desc()))
        return nullptr;
    if (proxyRefuses(*this, kProxyCloningAllowed))
        return nullptr;
    std::unique_ptr<AcDbObject> copy;
    if (isA()->appName()) {
        // A module's object keeps its contents itself.
        const auto record = recordOf(*this, AcDb::kCopyFiler);
        if (record)
            copy = std::move(readRecord(database(), *isA(), *record, AcDb::kCopyFiler).object);
        if (!copy || copy->isA() != isA())
            return nullptr;
    } else {
        copy.reset(AcDbObject::cast(isA()->create()));
        if (!copy)
            return nullptr;
        copy->imp_->state = imp_->state->clone();
    }
    copy->imp_->state->becomeCopy();
    return copy.release();
}
