#include "host/database/proxies.h"

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

// Puts another object in the place of one: same id, same owner, same links. The replaced one is deleted.
void replaceObject(AcDbStub& stub, std::unique_ptr<AcDbObject> next) {
    ObjectImp& from = ObjectImp::of(stub.object);
    ObjectImp& to = ObjectImp::of(next.get());
    to.state->owner = from.state->owner;
    to.stub = &stub;
    from.stub = nullptr;
    delete stub.object;
    stub.object = next.release();
}

std::vector<DxfGroup> groupsOf(const AcDbObject& object) {
    GroupFiler filer(object.database());
    object.dxfOut(&filer);
    return std::move(filer.groups());
}

// Reads what another class wrote; the object is outside any database and in no log.
bool readGroups(AcDbObject& object, AcDbDatabase* database, std::vector<DxfGroup> groups) {
    GroupFiler filer(database, std::move(groups));
    return object.dxfIn(&filer) == Acad::eOk;
}

void makeProxy(AcDbStub& stub) {
    const AcRxClass* const cls = stub.object->isA();
    const std::wstring name = cls->dxfName() ? cls->dxfName() : cls->name();
    std::unique_ptr<AcDbObject> proxy;
    if (AcDbEntity::cast(stub.object))
        proxy = std::make_unique<AcDbUnknownEntity>(name);
    else
        proxy = std::make_unique<AcDbUnknownObject>(name);
    readGroups(*proxy, stub.database, groupsOf(*stub.object));
    replaceObject(stub, std::move(proxy));
}

template <class Visit>
void forEachStub(Visit visit) {
    for (const AcDbDatabase* const database : liveDatabases()) {
        for (AcDbStub* const stub : database->impl().stubs) {
            if (stub->object)
                visit(*stub);
        }
    }
}

}  // namespace

void replaceObjectsByProxies(const AcRxClass* cls) {
    forEachStub([cls](AcDbStub& stub) {
        if (stub.object->isKindOf(cls))
            makeProxy(stub);
    });
}

void replaceProxiesByObjects() {
    forEachStub([](AcDbStub& stub) {
        if (!AcDbUnknownEntity::cast(stub.object) && !AcDbUnknownObject::cast(stub.object))
            return;
        AcRxClass* const cls = findClassByDxfName(dxfNameOf(*stub.object));
        if (!cls || !cls->appName() || stub.readers > 0 || stub.writer || stub.notify)
            return;
        std::unique_ptr<AcDbObject> object(AcDbObject::cast(cls->create()));
        if (object && readGroups(*object, stub.database, groupsOf(*stub.object)))
            replaceObject(stub, std::move(object));
    });
}

}  // namespace drafthost
