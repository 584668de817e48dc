#include "module/leader/leader_class.h"

#include "module/binding/configuration.h"
#include "module/leader/leader_entity.h"

#include <string>

namespace tessary {

namespace {

constexpr const ACHAR* className = L"QNLeader";

// Found when it is asked for first, forgotten when the class is removed.
AcRxClass* cachedClass = nullptr;

// The class of that name in the host, whoever registered it; null when there is none.
AcRxClass* registeredClass() {
    const auto* const classes = AcRxDictionary::cast(acrxSysRegistry()->at(ACRX_CLASS_DICTIONARY));
    return AcRxClass::cast(classes->at(className));
}

AcRxObject* makeDefaultLeader() {
    return new QNLeader;
}

// Drafters who open a drawing without the add-in are told this: what, who from, and where.
std::wstring applicationName() {
    return std::wstring(L"\"Leader|") + configuration::companyName + L"|" + configuration::companyAddress +
           L"\"";
}

}  // namespace

AcRxClass* QNLeader::desc() {
    if (!cachedClass) {
        cachedClass = registeredClass();
    }
    return cachedClass;
}

AcRxClass* QNLeader::isA() const {
    return desc();
}

void QNLeader::rxInit() {
    if (cachedClass) {
        const AcRxClass* const registered = registeredClass();
        if (registered == cachedClass) {
            return;
        }
        if (registered) {
            acrx_abort(L"Class mismatch");
        }
    }
    cachedClass = newAcRxClass(className, L"AcDbCurve", 1, 1, kProxyEraseAllowed, makeDefaultLeader,
                               L"QNLEADER", applicationName().c_str());
    // Somebody else's class has the name: his objects would be taken for leaders.
    if (!cachedClass) {
        acrx_abort(L"Class mismatch");
    }
}

void registerLeaderClass() {
    QNLeader::rxInit();
}

void removeLeaderClass() {
    // The host still asks leaders for their class while it turns them into proxies.
    deleteAcRxClass(QNLeader::desc());
    cachedClass = nullptr;
}

}  // namespace tessary
