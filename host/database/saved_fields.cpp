#include "host/database/saved_fields.h"

#include <algorithm>
#include <utility>

#include "host/database/database_impl.h"
#include "host/database/open_state.h"
#include "host/database/proxies.h"

namespace drafthost {
namespace {

Acad::ErrorStatus readInto(AcDbObject& object, AcDbDatabase& database, DwgRecord record) {
    MemoryFiler filer(&database, AcDb::kUndoFiler, std::move(record));
    const WhateverOpen writable(database);
    return object.dwgIn(&filer);
}

}  // namespace

SavedFields* SavedFields::newest = nullptr;

SavedFields::SavedFields(const AcDbObject& object)
    : cls_(object.isA()), database_(object.database()), older_(newest) {
    if (auto record = recordOf(object, AcDb::kUndoFiler))
        record_ = std::move(*record);
    if (older_)
        older_->newer_ = this;
    newest = this;
}

SavedFields::~SavedFields() {
    if (older_)
        older_->newer_ = newer_;
    (newer_ ? newer_->older_ : newest) = older_;
}

void SavedFields::restore(AcDbStub& stub, std::unique_ptr<ObjectState> state) {
    if (cls_ && stub.object->isA() == cls_) {
        ObjectImp::of(stub.object).state = state->clone();
        if (readInto(*stub.object, *stub.database, record_) == Acad::eOk)
            return;
    }
    becomeProxy();
    if (!proxy_)
        return;
    adoptBase(*proxy_, *state);
    putBack(stub, std::move(proxy_));
}

void SavedFields::becomeProxy() {
    if (!cls_)
        return;
    const AcRxClass* const cls = std::exchange(cls_, nullptr);
    // A log may outlive its drawing.
    AcDbDatabase* const database =
        std::ranges::find(liveDatabases(), database_) == liveDatabases().end() ? nullptr : database_;
    RecordResult read = readRecord(database, *cls, record_, AcDb::kUndoFiler);
    // A class that cannot read what it filed has nothing that could be put back.
    if (read.object && read.object->isA() == cls)
        proxy_ = proxyFor(*read.object, database);
    else
        proxy_ = std::move(read.object);
    record_ = DwgRecord();
}

void SavedFields::classGoes(const AcRxClass& cls) {
    for (SavedFields* saved = newest; saved; saved = saved->older_)
        if (saved->cls_ && saved->cls_->isDerivedFrom(&cls))
            saved->becomeProxy();
}

}  // namespace drafthost
