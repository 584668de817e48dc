#include "module/database/service_object.h"

#include "module/database/document_connections.h"
#include "module/database/server_connection.h"

#include <utility>

namespace tessary {

namespace {

ComPointer<DatabaseService>& serviceObject() {
    // Never destroyed: it may not be released any more when the process ends.
    static auto& service = *new ComPointer<DatabaseService>;
    return service;
}

}  // namespace

void createServiceObject() {
    ComPointer<DatabaseService> service;
    createConnectionObject(CLSID_DatabaseServiceObject, IID_DatabaseService,
                           reinterpret_cast<void**>(service.receive()));
    if (service) {
        raiseIfFailed(service->Start(), *service.get(), IID_DatabaseService);
        serviceObject() = service;
    }
}

void releaseServiceObject() {
    documentConnections().clear();
    setCurrentConnection(nullptr, L"", 0);
    // Taken out first, so that it is released also when the server reports an error.
    const ComPointer<DatabaseService> service = std::exchange(serviceObject(), nullptr);
    if (service) {
        raiseIfFailed(service->Stop(), *service.get(), IID_DatabaseService);
    }
}

}  // namespace tessary
