#include "solids/entity/solid_class.h"

#include "solids/entity/solid_entity.h"

namespace solids {

namespace {

constexpr const ACHAR* kDxfName = L"QN_HVACSOLID";
// Drafters who open a drawing without the module are told this: what, who from, and where.
constexpr const ACHAR* kApplication = L"\"Solid|Quarnel Software|https://www.quarnel.example\"";
// Without the module nobody can move what a solid keeps; the rest is every entity's own.
constexpr int kProxyFlags = kProxyAllOperations & ~kProxyTransformAllowed;

AcRxClass* registeredClass = nullptr;

AcRxObject* makeSolid() {
    return new SolidEntity;
}

}  // namespace

AcRxClass* SolidEntity::desc() {
    return registeredClass;
}

AcRxClass* SolidEntity::isA() const {
    return registeredClass;
}

bool registerSolidClass() {
    if (!registeredClass || qn_hvacSolid::desc() != registeredClass) {
        registeredClass = newAcRxClass(qn_hvacSolid::className, L"AcDbEntity", 1, 1, kProxyFlags, makeSolid,
                                       kDxfName, kApplication);
    }
    if (registeredClass) {
        acrxBuildClassHierarchy();
    }
    return registeredClass != nullptr;
}

void removeSolidClass() {
    // The host still asks solids for their class while it turns them into proxies.
    if (registeredClass && qn_hvacSolid::desc() == registeredClass) {
        deleteAcRxClass(registeredClass);
    }
    registeredClass = nullptr;
}

}  // namespace solids
