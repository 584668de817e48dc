// TessaryServer.dll: the database server inside the client's process.

#include "server/com/class_factory.h"
#include "server/com/module_file.h"
#include "server/com/registration.h"
#include "server/com/server_use.h"

#include <objbase.h>
#include <olectl.h>

using namespace tessary::server;

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    if (!object) {
        return E_POINTER;
    }
    *object = nullptr;
    for (const ServerClass& serverClass : serverClasses()) {
        if (*serverClass.id == classId) {
            return factoryOf(serverClass)->QueryInterface(interfaceId, object);
        }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return serverUse().isInUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
    std::wstring problem;
    return SUCCEEDED(registerServer(ServerKind::inProcess, fileOf(thisModule()), problem)) ? S_OK
                                                                                           : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
    std::wstring problem;
    return SUCCEEDED(unregisterServer(problem)) ? S_OK : SELFREG_E_CLASS;
}
