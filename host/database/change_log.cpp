#include "host/database/change_log.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include "host/database/database_impl.h"
#include "host/database/group_filer.h"

namespace drafthost {
namespace {

// Objects of modules keep their contents in members of their own; what they file is what is saved.
bool isOfModule(const AcDbObject& object) {
    return object.isA()->appName() != nullptr;
}

std::vector<DxfGroup> fields(const AcDbObject& object, AcDbDatabase* database) {
    GroupFiler filer(database, AcDb::kUndoFiler);
    object.dxfOutFields(&filer);
    return std::move(filer.groups());
}

}  // namespace

ChangeLog::Saved ChangeLog::snapshot(const AcDbStub& stub) {
    Saved saved;
    if (!stub.object)
        return saved;
    saved.state = ObjectImp::of(stub.object).state->clone();
    if (isOfModule(*stub.object))
        saved.groups = fields(*stub.object, stub.database);
    saved.erased = stub.erased;
    saved.cls = stub.object->isA();
    return saved;
}

void ChangeLog::beforeChange(AcDbStub* stub) {
    const auto [entry, isNew] = entries_.try_emplace(stub);
    if (!isNew)
        return;
    entry->second = snapshot(*stub);
    order_.push_back(stub);
}

void ChangeLog::added(AcDbStub* stub) {
    const auto [entry, isNew] = entries_.try_emplace(stub);
    if (!isNew)
        return;
    entry->second.added = true;
    order_.push_back(stub);
}

void ChangeLog::beforeSettingsChange(const DatabaseSettings& settings) {
    if (!settings_)
        settings_ = settings;
}

void ChangeLog::mergeInto(ChangeLog& older) {
    for (AcDbStub* const stub : order_) {
        if (older.entries_.try_emplace(stub, std::move(entries_[stub])).second)
            older.order_.push_back(stub);
    }
    if (settings_ && !older.settings_)
        older.settings_ = std::move(settings_);
    *this = ChangeLog();
}

ChangeLog ChangeLog::revert(AcDbDatabase& database, Removal removal) {
    ChangeLog redo;
    AcDbDatabase::Impl& impl = database.impl();
    for (AcDbStub* const stub : std::views::reverse(order_)) {
        Saved& saved = entries_[stub];
        if (!stub->object)
            continue;
        if (removal == Removal::AsErased) {
            redo.entries_.emplace(stub, snapshot(*stub));
            redo.order_.push_back(stub);
        }
        if (saved.added) {
            if (removal == Removal::ForGood)
                impl.remove(stub);
            else
                stub->erased = true;
            continue;
        }
        stub->erased = saved.erased;
        if (saved.cls != stub->object->isA())
            continue;
        ObjectImp::of(stub->object).state = std::move(saved.state);
        if (saved.groups.empty())
            continue;
        GroupFiler filer(&database, std::move(saved.groups), AcDb::kUndoFiler);
        const bool wasLoading = std::exchange(impl.loading, true);  // the object need not be open
        stub->object->dxfInFields(&filer);
        impl.loading = wasLoading;
    }
    if (settings_) {
        if (removal == Removal::AsErased)
            redo.settings_ = impl.settings;
        impl.settings = std::move(*settings_);
    }
    *this = ChangeLog();
    return redo;
}

}  // namespace drafthost
