#include "host/database/change_log.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include "host/database/database_impl.h"
#include "host/database/open_state.h"
#include "host/database/proxies.h"
#include "host/database/table_states.h"

namespace drafthost {
namespace {

void eraseLast(std::vector<AcDbObjectId>& ids, AcDbObjectId id) {
    const auto found = std::ranges::find(ids.rbegin(), ids.rend(), id);
    if (found != ids.rend())
        ids.erase(std::next(found).base());
}

// An object that ends for good leaves the list that it was put at the end of.
void leaveOwner(const AcDbStub& stub, AcDbObjectId id) {
    const AcDbObjectId owner = ObjectImp::of(stub.object).state->owner;
    if (const auto* const block = peek<AcDbBlockTableRecord>(owner))
        eraseLast(static_cast<BlockState&>(*ObjectImp::of(block).state).entities, id);
    const auto* const table = peek<AcDbSymbolTable>(owner);
    if (!table)
        return;
    auto& state = static_cast<TableState&>(*ObjectImp::of(table).state);
    eraseLast(state.records, id);
    std::erase_if(state.byName, [id](const auto& entry) { return entry.second == id; });
}

}  // namespace

ChangeLog::Saved ChangeLog::snapshot(const AcDbStub& stub) {
    Saved saved;
    if (!stub.object)
        return saved;
    saved.state = ObjectImp::of(stub.object).state->clone();
    if (stub.object->isA()->appName())
        saved.fields = std::make_unique<SavedFields>(*stub.object);
    saved.erased = stub.erased;
    saved.undone = stub.undone;
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

bool ChangeLog::holdsOpenObject() const {
    return std::ranges::any_of(order_, [](const AcDbStub* stub) { return stub->object && isOpen(*stub); });
}

void ChangeLog::forgetRemoved() {
    std::erase_if(order_, [this](AcDbStub* stub) { return !stub->object && entries_.erase(stub) > 0; });
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

// The object may have become a proxy meanwhile, or a proxy an object.
void ChangeLog::restore(AcDbStub& stub, Saved& saved) {
    if (saved.fields)
        return saved.fields->restore(stub, std::move(saved.state));
    if (std::unique_ptr<AcDbObject> proxy = proxyOfState(saved.state))
        return putBack(stub, std::move(proxy));
    ObjectImp::of(stub.object).state = std::move(saved.state);
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
            if (removal == Removal::ForGood) {
                leaveOwner(*stub, AcDbObjectId(stub));
                impl.remove(stub);
            } else {
                stub->erased = stub->undone = true;
            }
            continue;
        }
        stub->erased = saved.erased;
        stub->undone = saved.undone;
        restore(*stub, saved);
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
