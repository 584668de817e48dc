#include "host/database/proxies.h"

#include <utility>
#include <vector>

#include "host/database/class_records.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/open_state.h"
#include "host/database/saved_fields.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

struct PlainObject : ClonedState<PlainObject, ObjectState> {};
struct PlainEntity : ClonedState<PlainEntity, EntityState> {};

bool isEntity(const AcDbObject& object) {
    return AcDbEntity::cast(&object) != nullptr;
}

ObjectState& stateOf(const AcDbObject& object) {
    return *ObjectImp::of(&object).state;
}

// What every object or entity has.
void copyBase(const ObjectState& from, ObjectState& to, bool entity) {
    if (entity)
        static_cast<EntityState&>(to) = static_cast<const EntityState&>(from);
    else
        static_cast<ObjectState&>(to) = from;
}

std::unique_ptr<ObjectState> baseOf(const ObjectState& state, bool entity) {
    std::unique_ptr<ObjectState> base;
    if (entity)
        base = std::make_unique<PlainEntity>();
    else
        base = std::make_unique<PlainObject>();
    copyBase(state, *base, entity);
    return base;
}

// The values before the class's own; empty when the record does not begin with them.
std::optional<std::size_t> baseSize(const DwgRecord& record, bool entity) {
    const std::unique_ptr<ObjectState> base = baseOf(PlainEntity(), entity);
    MemoryFiler filer(nullptr, AcDb::kUndoFiler, record);
    if (fileStateIn(filer, *base) != Acad::eOk)
        return std::nullopt;
    return filer.position();
}

void keepRecord(AcDbObject& proxy, DwgRecord record) {
    KeptContents& contents = *keptContents(proxy);
    const auto base = baseSize(record, isEntity(proxy));
    contents.wholeRecord = !base;
    const auto own = record.values.begin() + static_cast<std::ptrdiff_t>(base.value_or(0));
    contents.record.values.assign(std::make_move_iterator(own), std::make_move_iterator(record.values.end()));
    contents.hasRecord = true;
}

// The record as the class reads it, with what every object has as the proxy has it now.
DwgRecord wholeRecord(const AcDbObject& proxy) {
    const KeptContents& contents = *keptContents(proxy);
    if (contents.wholeRecord)
        return contents.record;
    MemoryFiler filer(nullptr, AcDb::kUndoFiler);
    fileStateOut(filer, *baseOf(stateOf(proxy), isEntity(proxy)));
    DwgRecord record = std::move(filer.record());
    record.values.insert(record.values.end(), contents.record.values.begin(), contents.record.values.end());
    return record;
}

std::unique_ptr<AcDbObject> emptyProxy(const AcRxClass& cls, bool entity) {
    const std::wstring name = cls.dxfName() ? cls.dxfName() : L"";
    std::unique_ptr<AcDbObject> proxy;
    if (entity)
        proxy = std::make_unique<AcDbUnknownEntity>(name);
    else
        proxy = std::make_unique<AcDbUnknownObject>(name);
    keptContents(*proxy)->className = cls.name();
    keptContents(*proxy)->proxyFlags = cls.proxyFlags();
    return proxy;
}

std::vector<DxfGroup> groupsOf(const AcDbObject& object) {
    GroupFiler filer(object.database());
    return object.dxfOut(&filer) == Acad::eOk ? std::move(filer.groups()) : std::vector<DxfGroup>();
}

// Leaves the layer out, which the caller takes from the state that wrote the groups: by its name, one that
// was undone would be made anew.
void dropLayer(std::vector<DxfGroup>& groups) {
    bool inEntity = false;
    std::erase_if(groups, [&inEntity](const DxfGroup& group) {
        if (group.code == 100) {
            const auto* const marker = std::get_if<std::wstring>(&group.value);
            inEntity = marker && *marker == L"AcDbEntity";
        }
        return group.code == 8 && inEntity;
    });
}

// Reads what another class wrote; the object is outside any database and in no log.
bool readGroups(AcDbObject& object, AcDbDatabase* database, std::vector<DxfGroup> groups) {
    GroupFiler filer(database, std::move(groups));
    return object.dxfIn(&filer) == Acad::eOk;
}

// Reads what the other object writes.
bool readGroupsOf(const AcDbObject& source, AcDbObject& object, AcDbDatabase* database) {
    std::vector<DxfGroup> groups = groupsOf(source);
    dropLayer(groups);
    if (groups.empty() || !readGroups(object, database, std::move(groups)))
        return false;
    if (isEntity(object))
        static_cast<EntityState&>(stateOf(object)).layer = static_cast<EntityState&>(stateOf(source)).layer;
    return true;
}

std::unique_ptr<AcDbObject> newObject(const AcRxClass& cls) {
    AcRxObject* const made = cls.create();
    if (AcDbObject* const object = AcDbObject::cast(made))
        return std::unique_ptr<AcDbObject>(object);
    delete made;
    return nullptr;
}

// What the proxy stands for; null when its class cannot read it.
std::unique_ptr<AcDbObject> objectFromProxy(const AcDbObject& proxy, const AcRxClass& cls,
                                            AcDbDatabase* database) {
    const auto* const entity = dynamic_cast<const UnknownEntityState*>(&stateOf(proxy));
    if (entity && !entity->subEntities.empty())
        return nullptr;  // nobody would own them
    std::unique_ptr<AcDbObject> object = newObject(cls);
    if (!object || isEntity(*object) != isEntity(proxy))
        return nullptr;
    if (keptContents(proxy)->hasRecord) {
        MemoryFiler filer(database, AcDb::kUndoFiler, wholeRecord(proxy));
        if (object->dwgIn(&filer) != Acad::eOk)
            return nullptr;
        copyBase(stateOf(proxy), stateOf(*object), isEntity(proxy));
    } else if (!readGroupsOf(proxy, *object, database)) {
        return nullptr;
    }
    stateOf(*object).owner = stateOf(proxy).owner;
    return object;
}

template <class Visit>
void forEachStub(const AcDbDatabase& database, Visit visit) {
    // By index: what is read may bring further objects with it, a layer for one.
    const auto& stubs = database.impl().stubs;
    for (std::size_t i = 0; i < stubs.size(); ++i)
        if (stubs[i]->object)
            visit(*stubs[i]);
}

// Objects whose class went while somebody had them open. Their code may be gone too, so that they can neither
// be used by anybody but through what every object has (close), nor be deleted.
std::vector<AcDbObject*>& strandedObjects() {
    static auto* const objects = new std::vector<AcDbObject*>;
    return *objects;
}

void strand(AcDbStub& stub) {
    closeAll(stub);
    ObjectImp::of(stub.object).stub = nullptr;
    strandedObjects().push_back(std::exchange(stub.object, nullptr));
}

void makeProxy(AcDbStub& stub, ProxyGraphics picture) {
    std::unique_ptr<AcDbObject> proxy = proxyFor(*stub.object, stub.database);
    if (auto* const entity = dynamic_cast<UnknownEntityState*>(&stateOf(*proxy)))
        entity->graphics = std::move(picture);
    keepClassRecord(*stub.database, *stub.object->isA());
    if (!isOpen(stub))
        return replaceObject(stub, std::move(proxy));
    strand(stub);
    ObjectImp::of(proxy.get()).stub = &stub;
    stub.object = proxy.release();
}

// Objects that were removed while they were open, and wait for the end of their database.
void dropRemoved(AcDbDatabase::Impl& impl, const AcRxClass* cls) {
    std::erase_if(impl.removedWhileOpen, [cls](AcDbObject* object) {
        if (!object->isKindOf(cls))
            return false;
        const AcDbStub* const stub = ObjectImp::of(object).stub;
        if (stub && isOpen(*stub))
            strandedObjects().push_back(object);
        else
            delete object;
        return true;
    });
}

// Reads the proxy's contents into an object that is there already.
bool readInPlace(AcDbStub& stub, const AcDbObject& proxy, const AcRxClass* cls) {
    if (!cls || stub.object->isA() != cls || !keptContents(proxy)->hasRecord)
        return false;
    const WhateverOpen writable(*stub.database);
    copyBase(stateOf(proxy), stateOf(*stub.object), isEntity(proxy));
    MemoryFiler filer(stub.database, AcDb::kUndoFiler, wholeRecord(proxy));
    const bool good = stub.object->dwgIn(&filer) == Acad::eOk;
    copyBase(stateOf(proxy), stateOf(*stub.object), isEntity(proxy));
    return good;
}

}  // namespace

void replaceObject(AcDbStub& stub, std::unique_ptr<AcDbObject> next) {
    AcDbObject* const replaced = std::exchange(stub.object, next.release());
    ObjectImp::of(stub.object).stub = &stub;
    ObjectImp::of(replaced).stub = nullptr;
    if (!isOpen(stub)) {
        delete replaced;
        return;
    }
    closeAll(stub);
    stub.database->impl().removedWhileOpen.push_back(replaced);
}

AcRxClass* classOfProxy(const AcDbObject& object) {
    const KeptContents* const contents = keptContents(object);
    if (!contents)
        return nullptr;
    AcRxClass* cls = nullptr;
    if (!contents->className.empty())
        cls = acrxFindClass(contents->className.c_str());
    else if (!contents->dxfName.empty())
        cls = findClassByDxfName(contents->dxfName);
    if (!cls || !cls->appName())
        return nullptr;
    // A file may say both, and anything.
    const ACHAR* const name = cls->dxfName();
    return equalNames(contents->dxfName, name ? name : L"") ? cls : nullptr;
}

std::optional<DwgRecord> recordOf(const AcDbObject& object, AcDb::FilerType type) {
    MemoryFiler filer(object.database(), type);
    if (object.dwgOut(&filer) != Acad::eOk)
        return std::nullopt;
    return std::move(filer.record());
}

RecordResult readRecord(AcDbDatabase* database, const AcRxClass& cls, const DwgRecord& record,
                        AcDb::FilerType type, const IdTranslation& translation) {
    RecordResult result;
    result.object = newObject(cls);
    if (!result.object)
        return {nullptr, Acad::eNotThatKindOfClass};
    MemoryFiler filer(database, type, record);
    filer.setTranslation(translation);
    result.status = result.object->dwgIn(&filer);
    if (result.status == Acad::eMakeMeProxy) {
        DwgRecord kept = record;
        for (DwgRecord::Value& value : kept.values) {
            auto* const reference = std::get_if<DwgRecord::Reference>(&value);
            if (reference && translation && !reference->id.isNull())
                reference->id = translation(reference->id, reference->kind);
        }
        result.object = proxyFor(*result.object, database, std::move(kept));
    } else if (result.status != Acad::eOk) {
        result.object.reset();
    }
    return result;
}

std::unique_ptr<AcDbObject> proxyOfState(std::unique_ptr<ObjectState>& state) {
    if (!dynamic_cast<const KeptContents*>(state.get()))
        return nullptr;
    std::unique_ptr<AcDbObject> proxy;
    if (dynamic_cast<const UnknownEntityState*>(state.get()))
        proxy = std::make_unique<AcDbUnknownEntity>();
    else
        proxy = std::make_unique<AcDbUnknownObject>();
    ObjectImp::of(proxy.get()).state = std::move(state);
    return proxy;
}

void adoptBase(AcDbObject& proxy, const ObjectState& state) {
    copyBase(state, stateOf(proxy), isEntity(proxy));
}

std::unique_ptr<AcDbObject> proxyFor(const AcDbObject& object, AcDbDatabase* database,
                                     std::optional<DwgRecord> record) {
    const bool entity = isEntity(object);
    std::unique_ptr<AcDbObject> proxy = emptyProxy(*object.isA(), entity);
    // Groups of an object that could not be read would say what is not so.
    if (!record && object.isA()->dxfName())
        readGroupsOf(object, *proxy, database);
    copyBase(stateOf(object), stateOf(*proxy), entity);
    if (!record)
        record = recordOf(object, AcDb::kUndoFiler);  // references to erased objects included
    if (record)
        keepRecord(*proxy, std::move(*record));
    return proxy;
}

std::unique_ptr<AcDbObject> proxyOfGroups(AcDbDatabase& database, const std::wstring& dxfName, bool entity,
                                          std::vector<DxfGroup> groups) {
    std::unique_ptr<AcDbObject> proxy;
    if (entity)
        proxy = std::make_unique<AcDbUnknownEntity>(dxfName);
    else
        proxy = std::make_unique<AcDbUnknownObject>(dxfName);
    if (!readGroups(*proxy, &database, std::move(groups)))
        proxy.reset();
    return proxy;
}

void putBack(AcDbStub& stub, std::unique_ptr<AcDbObject> proxy) {
    const AcRxClass* const cls = classOfProxy(*proxy);
    if (readInPlace(stub, *proxy, cls))
        return;
    if (auto object = cls ? objectFromProxy(*proxy, *cls, stub.database) : nullptr)
        return replaceObject(stub, std::move(object));
    if (stub.object->isA() == proxy->isA())
        std::swap(ObjectImp::of(stub.object).state, ObjectImp::of(proxy.get()).state);
    else
        replaceObject(stub, std::move(proxy));
}

void replaceObjectsByProxies(const AcRxClass* cls) {
    SavedFields::classGoes(*cls);
    for (const AcDbDatabase* const database : liveDatabases()) {
        // All pictures before the first proxy: those of blocks that show each other would hold one another's,
        // which double with every proxy.
        std::vector<std::pair<AcDbStub*, ProxyGraphics>> pictures;
        forEachStub(*database, [&](AcDbStub& stub) {
            if (stub.object->isKindOf(cls))
                pictures.emplace_back(&stub, ProxyGraphics::of(AcDbObjectId(&stub)));
        });
        for (auto& [stub, picture] : pictures)
            makeProxy(*stub, std::move(picture));
        dropRemoved(database->impl(), cls);
    }
}

void replaceProxiesByObjects(const AcDbDatabase& database) {
    forEachStub(database, [](AcDbStub& stub) {
        const AcRxClass* const cls = classOfProxy(*stub.object);
        if (!cls || isOpen(stub))
            return;
        if (auto object = objectFromProxy(*stub.object, *cls, stub.database))
            replaceObject(stub, std::move(object));
    });
}

void replaceProxiesByObjects() {
    for (const AcDbDatabase* const database : liveDatabases())
        replaceProxiesByObjects(*database);
}

std::optional<int> proxyFlags(const AcDbObject& object) {
    const KeptContents* const contents = keptContents(object);
    if (!contents)
        return std::nullopt;
    if (const AcRxClass* const cls = classOfProxy(object))
        return cls->proxyFlags();
    if (contents->proxyFlags >= 0)
        return contents->proxyFlags;
    const AcDbDatabase* const database = object.database();
    const ClassGroups* const record = database ? findClassRecord(*database, contents->dxfName) : nullptr;
    if (!record)
        return std::nullopt;
    return proxyFlagsIn(*record);
}

bool proxyRefuses(const AcDbObject& object, AcRxProxyFlags operation) {
    if (!AcDbUnknownEntity::cast(&object) || !object.database())
        return false;
    const auto flags = proxyFlags(object);
    return flags && (*flags & operation) == 0;
}

Acad::ErrorStatus mayTakeProperties(const AcDbEntity& entity, const EntityState& next) {
    const auto& present = readState<EntityState>(&entity);
    const auto refused = [&entity](bool changed, AcRxProxyFlags operation) {
        return changed && proxyRefuses(entity, operation);
    };
    const bool colored = next.color != present.color || next.trueColor != present.trueColor;
    const bool any = refused(next.layer != present.layer, kProxyLayerChangeAllowed) ||
                     refused(colored, kProxyColorChangeAllowed) ||
                     refused(next.linetype != present.linetype, kProxyLinetypeChangeAllowed) ||
                     refused(next.linetypeScale != present.linetypeScale, kProxyLinetypeScaleChangeAllowed) ||
                     refused(next.lineWeight != present.lineWeight, kProxyLineWeightChangeAllowed) ||
                     refused(next.invisible != present.invisible, kProxyVisibilityChangeAllowed);
    return any ? Acad::eProxyRefused : Acad::eOk;
}

}  // namespace drafthost
