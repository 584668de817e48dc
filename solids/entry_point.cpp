// The module's two exports.

#include "host/api/rx.h"
#include "solids/entity/solid_class.h"

extern "C" {

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg:
            acrxUnlockApplication(packet);
            acrxRegisterAppMDIAware(packet);
            return solids::registerSolidClass() ? AcRx::kRetOK : AcRx::kRetError;
        case AcRx::kUnloadAppMsg: solids::removeSolidClass(); break;
        default: break;
    }
    return AcRx::kRetOK;
}

std::uint32_t acrxGetApiVersion() {
    return kHostApiVersion;
}
}
