#include "host/exchange/audit.h"

#include <algorithm>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/handles.h"
#include "host/database/open_state.h"
#include "host/database/table_states.h"
#include "host/database/unknown_objects.h"

namespace drafthost::exchange {
namespace {

constexpr short kSoftOwner = 350;
constexpr short kHardOwner = 360;

bool isAlive(const AcDbStub* stub) {
    return stub && stub->object && !stub->erased;
}

// Handles of extended data and arbitrary handles may belong to anything.
bool mustExist(short code) {
    return (code >= 330 && code <= 369) || (code >= 390 && code <= 399);
}

std::wstring nameOf(const AcDbObject& object) {
    return std::wstring(dxfNameOf(object)) + L" " + handleText(object.handle());
}

// Takes what one object says of itself.
class ModuleAudit final : public AcDbAuditInfo {
public:
    explicit ModuleAudit(AuditReport& report) : report_(report) {}

    bool fixErrors() const override { return true; }
    void printError(const AcDbObject* object, const ACHAR* value, const ACHAR* validation,
                    const ACHAR* mended) override {
        const bool isMended = mended && *mended;
        std::wstring text = object ? nameOf(*object) + L": " : L"";
        text += value ? value : L"";
        if (validation && *validation)
            text += std::wstring(L": must be ") + validation;
        if (isMended)
            text += std::wstring(L": set to ") + mended;
        report_.add(AuditCode::ModuleFinding, std::move(text), 0, isMended);
        ++told_;
        toldFixed_ += isMended ? 1 : 0;
    }
    void errorsFound(int count) override { counted_ += count; }
    void errorsFixed(int count) override { countedFixed_ += count; }

    // Errors that were printed are usually counted too: only those beyond are new.
    void finish() {
        report_.addUntold(static_cast<std::size_t>(std::max(counted_ - told_, 0)),
                          static_cast<std::size_t>(std::max(countedFixed_ - toldFixed_, 0)));
    }

private:
    AuditReport& report_;
    int told_ = 0, toldFixed_ = 0;
    int counted_ = 0, countedFixed_ = 0;
};

class DatabaseAudit {
public:
    DatabaseAudit(AcDbDatabase::Impl& impl, AuditReport& report) : impl_(impl), report_(report) {}

    void run() {
        // Objects are not added here, but by index costs nothing and stays right when that changes.
        for (std::size_t i = 0; i < impl_.stubs.size(); ++i)
            if (isAlive(impl_.stubs[i]))
                check(*impl_.stubs[i]);
        for (std::size_t i = 0; i < impl_.stubs.size(); ++i)
            if (isAlive(impl_.stubs[i]))
                adoptEntries(*impl_.stubs[i]);
        for (std::size_t i = 0; i < impl_.stubs.size(); ++i)
            if (isAlive(impl_.stubs[i]) && impl_.stubs[i]->object->isA()->appName())
                auditObject(*impl_.stubs[i]);
    }

private:
    // The object may mend itself without being open, as while a file is read.
    void auditObject(AcDbStub& stub) {
        const WhateverOpen writable(*impl_.database);
        ModuleAudit audit(report_);
        const Acad::ErrorStatus status = stub.object->audit(&audit);
        audit.finish();
        if (status != Acad::eOk)
            report_.add(AuditCode::ModuleFinding,
                        nameOf(*stub.object) + L" cannot be audited: " + acadErrorStatusText(status), 0,
                        false);
    }

    void check(AcDbStub& stub) {
        ObjectState& state = *ObjectImp::of(stub.object).state;
        const AcDbHandle handle = stub.handle;
        checkId(state.extensionDictionary, handle);
        checkReactors(state, handle);
        for (ExtraGroup& extra : state.extras)
            checkGroup(extra.group, handle);
        if (auto* object = dynamic_cast<UnknownObjectState*>(&state))
            checkGroups(object->groups, handle);
        if (auto* entity = dynamic_cast<UnknownEntityState*>(&state))
            checkGroups(entity->groups, handle);
        if (auto* contents = dynamic_cast<KeptContents*>(&state))
            for (DwgRecord::Value& value : contents->record.values)
                if (auto* reference = std::get_if<DwgRecord::Reference>(&value))
                    checkId(reference->id, handle);
        if (auto* record = dynamic_cast<PlainRecordState*>(&state))
            checkGroups(record->groups, handle);
        if (auto* layer = dynamic_cast<LayerState*>(&state))
            checkId(layer->plotStyle, handle);
        if (auto* dictionary = dynamic_cast<DictionaryState*>(&state))
            checkEntries(*dictionary, handle);
    }

    void note(AcDbHandle missing, AcDbHandle in) {
        report_.add(AuditCode::DanglingReference,
                    L"object " + handleText(in) + L" refers to object " + handleText(missing) +
                        L", which does not exist: the reference has been removed");
    }

    void checkId(AcDbObjectId& id, AcDbHandle in) {
        if (id.isNull() || isAlive(id.stub()))
            return;
        note(id.stub()->handle, in);
        id = AcDbObjectId();
    }

    void checkReactors(ObjectState& state, AcDbHandle in) {
        std::erase_if(state.reactors, [&](AcDbObjectId id) {
            if (isAlive(id.stub()))
                return false;
            if (!id.isNull())
                note(id.stub()->handle, in);
            return true;
        });
    }

    void checkGroup(DxfGroup& group, AcDbHandle in) {
        auto* reference = std::get_if<ObjectReference>(&group.value);
        if (!reference || !mustExist(group.code))
            return;
        const AcDbHandle handle = reference->id.isNull() ? reference->handle : reference->id.handle();
        if (handle.isNull() || isAlive(impl_.find(handle)))
            return;
        note(handle, in);
        *reference = ObjectReference();
    }

    void checkGroups(std::vector<DxfGroup>& groups, AcDbHandle in) {
        for (DxfGroup& group : groups)
            checkGroup(group, in);
    }

    void checkEntries(DictionaryState& dictionary, AcDbHandle in) {
        std::erase_if(dictionary.entries, [&](const DictionaryState::Entry& entry) {
            if (isAlive(entry.id.stub()))
                return false;
            report_.add(AuditCode::DanglingReference, L"dictionary " + handleText(in) + L": entry \"" +
                                                          entry.name +
                                                          L"\" has no object and has been removed");
            return true;
        });
    }

    // What a dictionary lists, or an object of an unknown class (a dictionary with a default) refers to as
    // its owner, belongs to it when nobody else owns it.
    void adoptEntries(AcDbStub& stub) {
        const ObjectState* const state = ObjectImp::of(stub.object).state.get();
        if (const auto* const dictionary = dynamic_cast<const DictionaryState*>(state))
            for (const DictionaryState::Entry& entry : dictionary->entries)
                adopt(*entry.id.stub(), stub);
        if (const auto* const unknown = dynamic_cast<const UnknownObjectState*>(state))
            for (const DxfGroup& group : unknown->groups) {
                const auto* const reference = std::get_if<ObjectReference>(&group.value);
                if (!reference || (group.code != kSoftOwner && group.code != kHardOwner))
                    continue;
                AcDbStub* const owned =
                    impl_.find(reference->id.isNull() ? reference->handle : reference->id.handle());
                if (isAlive(owned))
                    adopt(*owned, stub);
            }
    }

    // Old files do not name owners, which is no defect.
    void adopt(AcDbStub& owned, AcDbStub& dictionary) {
        AcDbObjectId& owner = ObjectImp::of(owned.object).state->owner;
        if (isAlive(owner.stub()))
            return;
        if (!owner.isNull())
            report_.add(AuditCode::WrongOwner, L"object " + handleText(owned.handle) + L" had owner " +
                                                   handleText(owner.handle()) +
                                                   L", which does not exist: what lists it owns it now");
        owner = AcDbObjectId(&dictionary);
    }

    AcDbDatabase::Impl& impl_;
    AuditReport& report_;
};

}  // namespace

void AuditReport::add(AuditCode code, std::wstring text, std::size_t line, bool fixed) {
    findings_.push_back({code, fixed, std::move(text), line});
    if (code == AuditCode::Completed || code == AuditCode::ObjectsLeftOut)
        return;
    ++found_;
    if (fixed)
        ++fixed_;
}

void AuditReport::addUntold(std::size_t found, std::size_t fixed) {
    found_ += found;
    fixed_ += fixed;
}

void AuditReport::forgetLines() {
    for (AuditFinding& finding : findings_)
        finding.line = 0;
}

std::wstring AuditReport::summary() const {
    return L"Auditing: " + std::to_wstring(found_) + L" errors found, " + std::to_wstring(fixed_) + L" fixed";
}

void auditDatabase(AcDbDatabase& database, AuditReport& report) {
    DatabaseAudit(database.impl(), report).run();
}

}  // namespace drafthost::exchange
