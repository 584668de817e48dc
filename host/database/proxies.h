#pragma once

// Objects of modules' classes, while their class is away or older than they are: proxies, which keep all
// data.
//
// A proxy is an object of an unknown class (unknown_objects.h). When it is made from an object, it keeps the
// values that the class files and the groups that it writes into files. What every object or entity has
// (owner, layer, colour, extended data) is the proxy's own state: it may change meanwhile, and the object
// that comes back has it as it is then.

#include <memory>
#include <optional>

#include "host/api/entity.h"
#include "host/api/rx.h"
#include "host/database/memory_filer.h"
#include "host/database/object_imp.h"

struct AcDbStub;

namespace drafthost {

// A class is about to go: the objects of it and of classes derived from it become proxies in all databases,
// and so does what logs of changes hold of them. One that is open stays in its callers' hands as an object
// outside any database.
void replaceObjectsByProxies(const AcRxClass* cls);

// Classes have come: proxies of a class that is known now become objects of it again. Those that are open,
// and those whose class cannot read them, stay as they are.
void replaceProxiesByObjects();
void replaceProxiesByObjects(const AcDbDatabase& database);

// The class of a module that the object of an unknown class belongs to; null when it is not here.
AcRxClass* classOfProxy(const AcDbObject& object);

// What the class filed for the object; empty when it refused.
std::optional<DwgRecord> recordOf(const AcDbObject& object, AcDb::FilerType type);

struct RecordResult {
    std::unique_ptr<AcDbObject> object;  // outside any database
    Acad::ErrorStatus status = Acad::eOk;
};

// Makes an object of a module's class from what was filed for one. eMakeMeProxy: the record is newer than the
// class, and the object is a proxy that keeps it. Other failures give no object.
RecordResult readRecord(AcDbDatabase* database, const AcRxClass& cls, const DwgRecord& record,
                        AcDb::FilerType type = AcDb::kFileFiler, const IdTranslation& translation = {});

// A proxy for the object, outside any database. Keeps the given record, or else what the object files now.
// database: that the object belongs to, if not by itself.
std::unique_ptr<AcDbObject> proxyFor(const AcDbObject& object, AcDbDatabase* database,
                                     std::optional<DwgRecord> record = {});
// The proxy whose state that is, outside any database; null, with the state left alone, for states of others.
std::unique_ptr<AcDbObject> proxyOfState(std::unique_ptr<ObjectState>& state);
// Gives the proxy what every object has from a state.
void adoptBase(AcDbObject& proxy, const ObjectState& state);

// A proxy that keeps groups which its class could not read.
std::unique_ptr<AcDbObject> proxyOfGroups(AcDbDatabase& database, const std::wstring& dxfName, bool entity,
                                          std::vector<DxfGroup> groups);

// Puts contents that a proxy keeps into the place of an object of the same class or of a proxy of it,
// whatever its open state: as an object when the class is here. Nothing is logged.
void putBack(AcDbStub& stub, std::unique_ptr<AcDbObject> proxy);
// Puts another object into the place of one; the replaced one is deleted, or later when it is open.
void replaceObject(AcDbStub& stub, std::unique_ptr<AcDbObject> next);

// True for an entity whose class is away and does not allow the operation. Outside a database all is allowed.
bool proxyRefuses(const AcDbObject& object, AcRxProxyFlags operation);
// eProxyRefused when the class of a proxy does not allow one of the changes that would give the entity the
// properties of that state.
Acad::ErrorStatus mayTakeProperties(const AcDbEntity& entity, const EntityState& next);
// What the class allows; empty for objects that are no proxies, and for entities that this host just lacks.
std::optional<int> proxyFlags(const AcDbObject& object);

}  // namespace drafthost
