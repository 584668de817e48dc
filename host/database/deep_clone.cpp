#include "host/database/deep_clone.h"

#include <algorithm>
#include <utility>

#include "host/database/class_registry.h"
#include "host/database/copied_state.h"
#include "host/database/entity_parts.h"
#include "host/database/named_references.h"
#include "host/database/names.h"
#include "host/database/proxies.h"
#include "host/database/symbol_records.h"

namespace drafthost {
namespace {

bool isOwner(ReferenceKind kind) {
    return kind == ReferenceKind::SoftOwner || kind == ReferenceKind::HardOwner;
}

}  // namespace

DeepCopy::DeepCopy(AcDbDatabase& source, AcDbDatabase& target) : source_(source), target_(target) {}

DeepCopy::~DeepCopy() {
    close();
}

AcDbObjectId DeepCopy::copyOf(AcDbObjectId original) const {
    const auto found = copies_.find(original);
    return found == copies_.end() ? AcDbObjectId() : found->second;
}

void DeepCopy::setCopy(AcDbObjectId original, AcDbObjectId copy) {
    copies_[original] = copy;
}

// Objects of modules file their contents, which they may only do while they are open.
Acad::ErrorStatus DeepCopy::read(Copy& copy) {
    const AcDbObject& object = *copy.original.stub()->object;
    if (!object.isA()->appName()) {
        copy.state = ObjectImp::of(&object).state->clone();
        if (&source_ != &target_)
            nameDefaults(*copy.state, source_);
        return Acad::eOk;
    }
    const AcDbObjectPointer<AcDbObject> reading(copy.original, AcDb::kForRead);
    const bool within = &source_ == &target_;
    MemoryFiler filer(&source_, within ? AcDb::kDeepCloneFiler : AcDb::kWblockCloneFiler);
    const Acad::ErrorStatus status = object.dwgOut(&filer);
    copy.filed = std::move(filer.record());
    return status;
}

std::vector<AcDbObjectId> DeepCopy::walk(const Copy& copy) {
    std::vector<AcDbObjectId> owned;
    const auto visit = [&](AcDbObjectId id, ReferenceKind kind) {
        if (id.isErased() || id.database() != &source_ || knows(id))
            return;
        const AcDbObjectId owner = id.stub()->object->ownerId();
        if (isOwner(kind) && (owner == copy.original || owner.isNull()))
            owned.push_back(id);
        else if (kind == ReferenceKind::HardOwner || kind == ReferenceKind::HardPointer)
            wanted_.push_back(id);
    };
    if (copy.filed) {
        for (const DwgRecord::Value& value : copy.filed->values) {
            if (const auto* const reference = std::get_if<DwgRecord::Reference>(&value))
                visit(reference->id, reference->kind);
        }
    } else {
        forEachReference(*copy.state, visit);
        forEachNamedReference(*copy.state, [&](const std::wstring& name, TableIndex table) {
            visit(findRecord(&source_, table, name), ReferenceKind::HardPointer);
        });
    }
    std::ranges::reverse(owned);
    return owned;
}

Acad::ErrorStatus DeepCopy::take(AcDbObjectId original, std::unique_ptr<AcDbObject> made) {
    return takeAll({original}, std::move(made));
}

// made: for the object that comes off the stack first.
Acad::ErrorStatus DeepCopy::takeAll(std::vector<AcDbObjectId> stack, std::unique_ptr<AcDbObject> made) {
    while (!stack.empty()) {
        Copy copy;
        copy.original = stack.back();
        copy.made = std::move(made);
        stack.pop_back();
        if (knows(copy.original))
            continue;
        if (!copy.made)
            copy.made.reset(AcDbObject::cast(copy.original.stub()->object->isA()->create()));
        if (!copy.made || AcDbSymbolTableRecord::cast(copy.made.get()) ||
            AcDbSymbolTable::cast(copy.made.get())) {
            return Acad::eNotApplicable;
        }
        if (const Acad::ErrorStatus status = read(copy); status != Acad::eOk)
            return status;
        copies_[copy.original] = AcDbObjectId();
        const std::vector<AcDbObjectId> owned = walk(copy);
        stack.insert(stack.end(), owned.begin(), owned.end());
        taken_.push_back(std::move(copy));
    }
    return Acad::eOk;
}

Acad::ErrorStatus DeepCopy::takeRecord(const Record& record) {
    if (knows(record.original))
        return Acad::eOk;
    copies_[record.original] = record.present;
    Copy copy;
    copy.original = record.original;
    copy.record = record;
    if (record.present.isNull())
        copy.made.reset(newRecord(record.table));
    copy.state = ObjectImp::of(record.original.stub()->object).state->clone();
    auto& state = static_cast<RecordState&>(*copy.state);
    if (record.shape)
        record.shape(state);
    state.name = record.name;
    // A record that stays keeps the marks of its block's begin and end.
    if (auto* const block = dynamic_cast<BlockState*>(&state); block && !record.present.isNull())
        block->begin = block->end = AcDbObjectId();
    std::vector<AcDbObjectId> owned = walk(copy);
    taken_.push_back(std::move(copy));
    return takeAll(std::move(owned), nullptr);
}

std::vector<std::wstring> DeepCopy::applications() const {
    std::set<std::wstring> names;
    const auto collect = [&](const ObjectState& state) {
        for (const DxfGroup& group : state.xdata) {
            const auto* const name = std::get_if<std::wstring>(&group.value);
            if (group.code == 1001 && name)
                names.insert(*name);
        }
    };
    for (const Copy& copy : taken_)
        collect(copy.state ? *copy.state : *ObjectImp::of(copy.original.stub()->object).state);
    return {names.begin(), names.end()};
}

std::set<std::wstring> DeepCopy::dxfNames() const {
    std::set<std::wstring> names;
    for (const Copy& copy : taken_)
        names.insert(dxfNameOf(*copy.original.stub()->object));
    return names;
}

Acad::ErrorStatus DeepCopy::placeRecord(Copy& copy) {
    const Record& record = *copy.record;
    if (!record.present.isNull()) {
        copy.object = record.present.stub()->object;
        return Acad::eOk;
    }
    auto* const made = AcDbSymbolTableRecord::cast(copy.made.release());
    std::unique_ptr<AcDbSymbolTableRecord> fresh(made);
    // The marks that come along are the block's; without them the table makes new ones.
    if (auto* const block = AcDbBlockTableRecord::cast(made)) {
        auto& state = static_cast<BlockState&>(*ObjectImp::of(block).state);
        state.begin = copyOf(static_cast<const BlockState&>(*copy.state).begin);
        state.end = copyOf(static_cast<const BlockState&>(*copy.state).end);
    }
    const AcDbObjectId id = addRecord(target_, record.table, std::move(fresh), record.name);
    if (id.isNull())
        return Acad::eInvalidKey;
    copy.object = made;
    setCopy(copy.original, id);
    return Acad::eOk;
}

Acad::ErrorStatus DeepCopy::place() {
    for (Copy& copy : taken_) {
        if (copy.record)
            continue;
        AcDbObjectId id;
        const auto status = target_.impl().add(copy.made.get(), AcDbObjectId(), AcDbHandle(), id);
        if (status != Acad::eOk)
            return status;
        copy.object = copy.made.release();
        copy.open = true;
        setCopy(copy.original, id);
    }
    for (Copy& copy : taken_) {
        const auto status = copy.record ? placeRecord(copy) : Acad::eOk;
        if (status != Acad::eOk)
            return status;
    }
    return Acad::eOk;
}

AcDbObjectId DeepCopy::translated(AcDbObjectId id, ReferenceKind kind) const {
    const AcDbObjectId copy = copyOf(id);
    if (!copy.isNull())
        return copy;
    return &source_ == &target_ && !isOwner(kind) ? id : AcDbObjectId();
}

AcDbHandle DeepCopy::translatedHandle(AcDbHandle handle) const {
    const AcDbObjectId copy = copyOf(AcDbObjectId(source_.impl().find(handle)));
    if (!copy.isNull())
        return copy.handle();
    return &source_ == &target_ ? handle : AcDbHandle();
}

void DeepCopy::translate(ObjectState& state, bool idsToo) const {
    translateState(
        state, [&](AcDbObjectId id, ReferenceKind kind) { return idsToo ? translated(id, kind) : id; },
        [&](AcDbHandle handle) { return translatedHandle(handle); });
}

void DeepCopy::settleState(Copy& copy) {
    ObjectState& state = *copy.state;
    std::erase_if(state.reactors, [&](AcDbObjectId id) { return copyOf(id).isNull(); });
    forEachNamedReference(state, [&](std::wstring& name, TableIndex table) {
        const AcDbObjectId record = copyOf(findRecord(&source_, table, name));
        if (!record.isNull())
            name = recordName(record);
    });
    translate(state, true);
    closeGaps(state);
    if (auto* const entity = dynamic_cast<EntityState*>(&state); entity && entity->layer.isNull())
        entity->layer = target_.layerZero();
    if (auto* const layer = dynamic_cast<LayerState*>(&state); layer && layer->plotStyle.isNull()) {
        if (const auto* const zero = peek<AcDbLayerTableRecord>(target_.layerZero()))
            layer->plotStyle = readState<LayerState>(zero).plotStyle;
    }
    if (copy.record)
        settleRecord(copy);
    ObjectImp::of(copy.object).state = std::move(copy.state);
}

// A record keeps its place in the target; what one that is replaced owned ends.
void DeepCopy::settleRecord(Copy& copy) {
    ObjectState& state = *copy.state;
    const ObjectState& present = *ObjectImp::of(copy.object).state;
    noteChange(*ObjectImp::of(copy.object).stub);
    state.owner = present.owner;
    const bool replaces = !copy.record->present.isNull();
    if (replaces) {
        state.reactors = present.reactors;
        eraseWithEntries(present.extensionDictionary);
    }
    auto* const block = dynamic_cast<BlockState*>(&state);
    if (!block)
        return;
    if (replaces)
        eraseContents(*AcDbBlockTableRecord::cast(copy.object));
    const auto& before = static_cast<const BlockState&>(present);
    block->begin = before.begin;
    block->end = before.end;
    // Erased entities stay in the list, where undo looks for them.
    block->entities.insert(block->entities.begin(), before.entities.begin(), before.entities.end());
    for (std::size_t i = 0; i < block->entities.size(); ++i)
        block->entities[i].stub()->place = static_cast<std::uint32_t>(i);
}

Acad::ErrorStatus DeepCopy::settleFiled(Copy& copy) {
    MemoryFiler filer(&target_, AcDb::kIdXlateFiler, std::move(*copy.filed));
    filer.setTranslation([this](AcDbObjectId id, ReferenceKind kind) { return translated(id, kind); });
    if (const Acad::ErrorStatus status = copy.object->dwgIn(&filer); status != Acad::eOk)
        return status;
    ObjectState& state = *ObjectImp::of(copy.object).state;
    state.reactors.clear();
    for (const AcDbObjectId reactor : ObjectImp::of(copy.original.stub()->object).state->reactors) {
        if (const AcDbObjectId its = copyOf(reactor); !its.isNull())
            state.reactors.push_back(its);
    }
    translate(state, false);
    return Acad::eOk;
}

// Objects of modules come last: what they refer to is whole then.
Acad::ErrorStatus DeepCopy::settle() {
    for (Copy& copy : taken_) {
        if (copy.state)
            settleState(copy);
    }
    for (Copy& copy : taken_) {
        const auto status = copy.filed ? settleFiled(copy) : Acad::eOk;
        if (status != Acad::eOk)
            return status;
    }
    return Acad::eOk;
}

void DeepCopy::close() {
    for (Copy& copy : taken_) {
        if (std::exchange(copy.open, false))
            copy.object->close();
    }
}

AcDbObject* DeepCopy::keepOpen(AcDbObjectId original) {
    const auto copy = std::ranges::find(taken_, original, &Copy::original);
    if (copy == taken_.end())
        return nullptr;
    copy->open = false;
    return copy->object;
}

Acad::ErrorStatus deepClone(const AcDbEntity& entity, AcDbEntity*& copy) {
    copy = nullptr;
    AcDbDatabase* const database = entity.database();
    auto* const block = peek<AcDbBlockTableRecord>(entity.ownerId());
    if (!database || !block)
        return Acad::eNotInDatabase;
    // The entity itself says whether it may be copied: proxies need their class's leave.
    std::unique_ptr<AcDbObject> made(entity.clone());
    if (!made)
        return proxyRefuses(entity, kProxyCloningAllowed) ? Acad::eProxyRefused : Acad::eNotApplicable;
    DeepCopy copies(*database, *database);
    auto status = copies.take(entity.objectId(), std::move(made));
    if (status == Acad::eOk)
        status = copies.place();
    if (status == Acad::eOk)
        status = copies.settle();
    if (status != Acad::eOk)
        return status;
    const AcDbObjectId id = copies.copyOf(entity.objectId());
    ObjectImp::of(block).stub->modified = true;  // logs need not know: see change_log.h
    auto& entities = static_cast<BlockState&>(*ObjectImp::of(block).state).entities;
    id.stub()->place = static_cast<std::uint32_t>(entities.size());
    entities.push_back(id);
    copy = AcDbEntity::cast(copies.keepOpen(entity.objectId()));
    return Acad::eOk;
}

void eraseContents(const AcDbBlockTableRecord& block) {
    for (const AcDbObjectId id : readState<BlockState>(&block).entities) {
        const auto* const entity = id.isErased() ? nullptr : peek<AcDbEntity>(id);
        if (!entity)
            continue;
        noteChange(*id.stub());
        id.stub()->erased = true;
        eraseSubEntities(*entity, true);
        eraseWithEntries(entity->extensionDictionary());
    }
}

void eraseWithEntries(AcDbObjectId id) {
    if (id.isErased())
        return;
    noteChange(*id.stub());
    id.stub()->erased = true;
    const auto* const dictionary = peek<AcDbDictionary>(id);
    for (std::size_t i = 0; dictionary && i < readState<DictionaryState>(dictionary).entries.size(); ++i)
        eraseWithEntries(readState<DictionaryState>(dictionary).entries[i].id);
}

}  // namespace drafthost
